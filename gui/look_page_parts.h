#pragma once
// Colour swatches of the "View" page and "Select color": the scheme's 0x00BBGGRR values
// as Qt colours and as small framed squares.

#include <QColor>
#include <QIcon>

QColor ColourOf(quint32 colourRef);
quint32 ColourRefOf(const QColor& colour);

// A square of the colour with a thin dark frame, `side` pixels.
QIcon SwatchIcon(quint32 colourRef, int side);
