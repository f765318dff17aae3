// The splash and About window: its place over the main window at both screen factors,
// its text, the icon's bubbles on it, and a tap that closes it. The icon itself must read
// at the sizes desktops show it.

#include "gui/splash_window.h"

#include <QDir>
#include <QPainter>
#include <QSvgRenderer>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

struct GeometryCase {
  const char* name;
  int factor;
  QSize mainWindow;
  QRect expected;
};

class SplashGeometryTest : public ::testing::TestWithParam<GeometryCase> {};

TEST_P(SplashGeometryTest, CentredAcrossAndBelowTheMiddle) {
  const GeometryCase& c = GetParam();
  EXPECT_EQ(SplashGeometry(c.factor, c.mainWindow), c.expected);
  SplashWindow splash(c.factor, c.mainWindow);
  EXPECT_EQ(splash.size(), c.expected.size());
}

INSTANTIATE_TEST_SUITE_P(
    Screens, SplashGeometryTest,
    ::testing::Values(
        // (294 - 151) / 2 + 22 = 93
        GeometryCase{"Qvga", 1, QSize(240, 294), QRect(0, 93, 240, 151)},
        // (588 - 302) / 2 + 22 = 165
        GeometryCase{"Vga", 2, QSize(480, 588), QRect(0, 165, 480, 302)},
        // (481 - 240) / 2 = 120 and (640 - 151) / 2 = 244, both truncated
        GeometryCase{"OddWideWindow", 1, QSize(481, 640), QRect(120, 266, 240, 151)},
        // (320 - 302) / 2 + 22 = 31 would end at 333: it moves up to end at 320
        GeometryCase{"ShortWindow", 2, QSize(720, 320), QRect(120, 18, 480, 302)}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SplashWindow, LinesStartWithTheVersionAndEndWithTheHint) {
  const QStringList lines = SplashWindow::Lines();
  ASSERT_EQ(lines.size(), 4);  // at 100, 110, 120 and 130: the fourth ends at the bottom
  EXPECT_EQ(lines.first(), u"Kelvane Tolv v1.4"_s);
  EXPECT_EQ(lines.last(), u"Tap logo to continue..."_s);
}

TEST(SplashWindow, TapAnywhereEndsTheModalRun) {
  for (const QPoint tap : {QPoint(10, 10), QPoint(470, 295)}) {
    SplashWindow splash(2, QSize(480, 588));
    QTimer::singleShot(0, &splash, [&] { QTest::mouseClick(&splash, Qt::LeftButton, {}, tap); });
    QTimer::singleShot(3000, &splash, [&] { splash.reject(); });  // a failure ends too
    EXPECT_EQ(splash.exec(), QDialog::Accepted) << tap.x() << "," << tap.y();
    EXPECT_FALSE(splash.isVisible());
  }
}

bool Near(QColor a, QColor b, int tolerance) {
  return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
         std::abs(a.blue() - b.blue()) <= tolerance;
}

// Both bubbles show at every size: enough amber, enough white, and the corners are clear.
TEST(AppIcon, BothBubblesShowFromSixteenToFortyEightPixels) {
  for (int size : {16, 24, 32, 48}) {
    SCOPED_TRACE(size);
    const QImage icon = AppIcon().pixmap(size).toImage();
    ASSERT_EQ(icon.size(), QSize(size, size));
    int amber = 0;
    int white = 0;
    for (int y = 0; y < size; ++y) {
      for (int x = 0; x < size; ++x) {
        amber += Near(icon.pixelColor(x, y), QColor(0xf2, 0xa5, 0x41), 24);
        white += Near(icon.pixelColor(x, y), QColor(0xf4, 0xf7, 0xfb), 24);
      }
    }
    EXPECT_GE(amber, size * size / 12);
    EXPECT_GE(white, size * size / 12);
    EXPECT_EQ(icon.pixelColor(0, 0).alpha(), 0);
  }
}

// The splash's emblem is the icon's "bubbles" drawn into its place, above the text.
TEST(SplashWindow, TheEmblemIsTheIconsBubbles) {
  for (int factor : {1, 2}) {
    SCOPED_TRACE(factor);
    SplashWindow splash(factor, QSize(240 * factor, 294 * factor));
    const QImage shot = splash.grab().toImage();
    const QRect emblem = SplashEmblemRect(factor);
    ASSERT_TRUE(shot.rect().contains(emblem));
    EXPECT_LT(emblem.bottom(), 100 * factor);
    QImage bubbles(emblem.size(), QImage::Format_ARGB32_Premultiplied);
    bubbles.fill(Qt::transparent);
    QPainter painter(&bubbles);
    QSvgRenderer(QString::fromUtf16(kIconResource)).render(&painter, u"bubbles"_s, QRectF(bubbles.rect()));
    painter.end();
    int opaque = 0;
    int same = 0;
    for (int y = 0; y < bubbles.height(); ++y) {
      for (int x = 0; x < bubbles.width(); ++x) {
        if (bubbles.pixelColor(x, y).alpha() < 255) continue;
        ++opaque;
        same += Near(shot.pixelColor(emblem.topLeft() + QPoint(x, y)), bubbles.pixelColor(x, y), 3);
      }
    }
    EXPECT_GT(opaque, emblem.width() * emblem.height() / 3);
    EXPECT_GE(same, opaque * 99 / 100);
  }
}

TEST(SplashScreenshots, BothFactors) {
  QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR));
  for (int factor : {1, 2}) {
    SplashWindow splash(factor, QSize(240 * factor, 294 * factor));
    splash.show();
    QCoreApplication::processEvents();
    const QImage image = splash.grab().toImage();
    EXPECT_EQ(image.size(), QSize(240 * factor, 151 * factor));
    EXPECT_TRUE(image.save(QStringLiteral(TOLV_SCREENSHOT_DIR "/splash_factor%1.png").arg(factor)));
  }
  for (int size : {16, 32, 48, 128})
    AppIcon().pixmap(size).save(QStringLiteral(TOLV_SCREENSHOT_DIR "/icon_%1.png").arg(size));
}

}  // namespace
