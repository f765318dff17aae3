// The splash and About window: its place over the main window at both screen factors,
// its text, and a tap that closes it.

#include "app/splash_window.h"

#include <QDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

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
        GeometryCase{"OddWideWindow", 1, QSize(481, 640), QRect(120, 266, 240, 151)}),
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
}

}  // namespace
