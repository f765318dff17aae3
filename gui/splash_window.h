#pragma once
// The splash shown at start (when the "Splash at startup" option is on) and by
// Help / About: the logo with the version and a hint, closed by a tap anywhere.

#include <QDialog>
#include <QIcon>
#include <QRect>
#include <QSize>
#include <QStringList>

// The program's icon, two chat bubbles, compiled in from data/icons/tolv.svg. The
// splash draws the same bubbles; its group in the file is "bubbles".
inline constexpr char16_t kIconResource[] = u":/icons/tolv.svg";
QIcon AppIcon();

// Where the splash stands in the main window's coordinates: 240 x 151 times the screen
// factor, centred across, and a little below the middle so that it clears the menu bar.
// On a window too short for that, it moves up until its bottom edge is the window's.
QRect SplashGeometry(int factor, QSize mainWindow);

// Where the splash draws the icon's bubbles, in its own pixels.
QRect SplashEmblemRect(int factor);

class SplashWindow : public QDialog {
  Q_OBJECT

 public:
  // `mainWindow` is the main window's size; with a `parent`, the splash is placed over it.
  SplashWindow(int factor, QSize mainWindow, QWidget* parent = nullptr);

  // The text over the logo, top line first.
  static QStringList Lines();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  int factor_;
};
