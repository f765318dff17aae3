#pragma once
// Pieces the "View", "Screen" and "Sounds" pages of the settings dialog and the colour
// picker share: a page body that scrolls rather than clips, fields as tall as a finger
// needs, and colour swatches.

#include <QColor>
#include <QIcon>

class QScrollArea;
class QVBoxLayout;
class QWidget;

// 0x00BBGGRR as the colour scheme stores it.
QColor ColourOf(quint32 colourRef);
quint32 ColourRefOf(const QColor& colour);

// A square of the colour with a thin dark frame, `side` pixels.
QIcon SwatchIcon(quint32 colourRef, int side);

// Fills `page` with a frameless scroll area and returns the column inside it, so a page
// taller than a pocket screen scrolls vertically and never sideways.
QVBoxLayout* ScrollingColumn(QWidget* page, int factor);

// The touch font and least height for every button, combo box, field and slider under
// `root`.
void FitControlsForTouch(QWidget* root, int factor);
