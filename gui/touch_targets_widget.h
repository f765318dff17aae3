#pragma once
// Touch targets: the menu bar, its menus, the pop-up menus, the prompts' and message
// boxes' buttons and the input line's buttons grow with the screen factor as the text
// does. Their font is 13 x factor pixels, as the input line's is, and nothing a finger
// taps is less than 20 x factor pixels tall, the input line's own height on a pocket
// screen: 20 pixels at 240 x 320, 40 at 480 x 640.

#include <QFont>

class QLabel;
class QString;
class QVBoxLayout;
class QWidget;

constexpr int TouchHeight(int factor) { return 20 * (factor < 1 ? 1 : factor); }

// The application's face at 13 x factor pixels.
QFont TouchFont(int factor);

// Gives `root` and every menu and button inside it the touch font and heights. Menus
// made later (a pop-up built for one tap) are fitted when they are made.
void FitForTouch(QWidget* root, int factor);

// A label added to `layout` that wraps rather than widening its dialog past a 240-pixel
// screen (some prompts' texts are longer than that in some fonts), with its buddy field.
QLabel* AddWrappedLabel(QVBoxLayout* layout, const QString& text, QWidget* buddy = nullptr);
