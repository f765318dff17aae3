#include "gui/splash_window.h"

#include "settings/settings_defaults.h"

#include <QFontMetrics>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QRadialGradient>
#include <QSvgRenderer>
#include <QtGlobal>

using namespace Qt::StringLiterals;

namespace {

// The logo is drawn for a 240 x 151 screen and scaled by the screen factor.
constexpr int kLogoWidth = 240;
constexpr int kLogoHeight = 151;
constexpr int kTextLeft = 5;
constexpr int kFirstLineTop = 100;
constexpr int kLineStep = 10;
constexpr int kTextHeight = 12;
// The bubbles stand in this box of the logo, above the text, keeping their proportions.
constexpr QRectF kEmblemBox(14, 12, 100, 80);
constexpr QStringView kBubbles = u"bubbles";

const QColor kNavy(0x0b, 0x1f, 0x3a);
const QColor kAmber(0xf2, 0xa5, 0x41);

void DrawBackground(QPainter& painter) {
  QLinearGradient sky(0, 0, 0, kLogoHeight);
  sky.setColorAt(0, QColor(0x2b, 0x7b, 0xb9));
  sky.setColorAt(0.55, QColor(0x17, 0x4a, 0x7c));
  sky.setColorAt(1, kNavy);
  painter.fillRect(QRectF(0, 0, kLogoWidth, kLogoHeight), sky);
  QRadialGradient glow(QPointF(190, 10), 130);
  glow.setColorAt(0, QColor(255, 255, 255, 70));
  glow.setColorAt(1, QColor(255, 255, 255, 0));
  painter.fillRect(QRectF(0, 0, kLogoWidth, kLogoHeight), glow);
}

// The name beside the icon's bubbles.
void DrawWordmark(QPainter& painter) {
  QFont wordmark(u"Tahoma"_s);
  wordmark.setStyleHint(QFont::SansSerif);
  wordmark.setBold(true);
  wordmark.setPixelSize(36);
  painter.setFont(wordmark);
  painter.setPen(Qt::white);
  painter.drawText(QRectF(122, 20, 112, 46), Qt::AlignLeft | Qt::AlignBottom, u"Tolv"_s);
  painter.fillRect(QRectF(124, 70, 100, 3), kAmber);
}

// The lines stand 10 pixels apart, so the font is sized by its whole line height (as
// a 12-pixel font cell), not by its em, or neighbouring lines would run into each other.
QFont TextFont(int factor) {
  QFont font(u"Tahoma"_s);
  font.setStyleHint(QFont::SansSerif);
  const int cell = kTextHeight * factor;
  font.setPixelSize(cell);
  const int height = QFontMetrics(font).height();
  if (height > cell) font.setPixelSize(qMax(1, cell * cell / height));
  return font;
}

}  // namespace

QIcon AppIcon() { return QIcon(QString::fromUtf16(kIconResource)); }

QRect SplashGeometry(int factor, QSize mainWindow) {
  const int width = kLogoWidth * factor;
  const int height = kLogoHeight * factor;
  const int top = (mainWindow.height() - height) / 2 + 22;
  return {(mainWindow.width() - width) / 2, qMax(0, qMin(top, mainWindow.height() - height)),
          width, height};
}

// Whole pixels, so that the bubbles are drawn the same on every splash of a factor.
QRect SplashEmblemRect(int factor) {
  QSvgRenderer icon(QString::fromUtf16(kIconResource));
  const QSizeF bubbles = icon.boundsOnElement(kBubbles.toString()).size();
  if (bubbles.isEmpty()) return {};
  const QSizeF fitted = bubbles.scaled(kEmblemBox.size(), Qt::KeepAspectRatio) * factor;
  const QPointF centre = kEmblemBox.center() * factor;
  return QRectF(centre - QPointF(fitted.width(), fitted.height()) / 2, fitted).toRect();
}

SplashWindow::SplashWindow(int factor, QSize mainWindow, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), factor_(qMax(1, factor)) {
  const QRect geometry = SplashGeometry(factor_, mainWindow);
  setFixedSize(geometry.size());
  move(parent ? parent->mapToGlobal(geometry.topLeft()) : geometry.topLeft());
}

QStringList SplashWindow::Lines() {
  return {QString::fromUtf16(kClientVersionText), u"IRC for small screens"_s,
          u"Qt "_s + QString::fromLatin1(qVersion()), u"Tap logo to continue..."_s};
}

void SplashWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.save();
  painter.scale(factor_, factor_);
  DrawBackground(painter);
  DrawWordmark(painter);
  painter.restore();
  QSvgRenderer(QString::fromUtf16(kIconResource))
      .render(&painter, kBubbles.toString(), SplashEmblemRect(factor_));

  const QFont font = TextFont(factor_);
  painter.setFont(font);
  painter.setPen(Qt::white);
  const int ascent = QFontMetrics(font).ascent();
  int top = kFirstLineTop * factor_;
  for (const QString& line : Lines()) {
    painter.drawText(QPoint(kTextLeft * factor_, top + ascent), line);
    top += kLineStep * factor_;
  }
}

// A tap anywhere, on the logo or the text, closes it.
void SplashWindow::mousePressEvent(QMouseEvent* event) {
  event->accept();
  accept();
}
