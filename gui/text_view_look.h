#pragma once
// What a conversation's text is drawn with besides its font, shared by the text view and
// the balloon: the sixteen colours of the colour codes and the background picture.

#include <QColor>
#include <QImage>

#include <array>

class SettingsStore;

using Palette16 = std::array<QColor, 16>;

// "mColors"; the shipped colours when the value is damaged.
Palette16 CodeColours(const SettingsStore& settings);
// The colour a run names: a palette index 0-15 or a hex colour (see formatted_text.h).
QColor CodeColour(const Palette16& codes, int code);
// The picture blended towards white, or a null image when the picture is off or unreadable.
QImage BackgroundPicture(const SettingsStore& settings);
