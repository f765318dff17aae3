// The splash's place over the main window, and the icon both show.

#include "gui/splash_window.h"

#include <gtest/gtest.h>

namespace {

// Centred across and 22 pixels a factor below the middle, but never past the window's
// bottom: on a short window it moves up. Odd sizes are truncated.
TEST(SplashWindow, CentredAcrossAndBelowTheMiddleOfTheMainWindow) {
  const std::tuple<int, QSize, QRect> cases[] = {
      {1, QSize(240, 294), QRect(0, 93, 240, 151)},   // (294 - 151) / 2 + 22 = 93
      {2, QSize(480, 588), QRect(0, 165, 480, 302)},  // (588 - 302) / 2 + 22 = 165
      {1, QSize(481, 640), QRect(120, 266, 240, 151)},
      {2, QSize(720, 320), QRect(120, 18, 480, 302)},  // 31 + 302 would end past 320
  };
  for (const auto& [factor, window, expected] : cases) {
    EXPECT_EQ(SplashGeometry(factor, window), expected) << factor << " " << window.width();
    EXPECT_EQ(SplashWindow(factor, window).size(), expected.size());
  }
}

// The icon's two bubbles, amber and white, read at the smallest and largest desktop sizes.
TEST(AppIcon, BothBubblesShowFromSixteenToFortyEightPixels) {
  for (int size : {16, 48}) {
    const QImage icon = AppIcon().pixmap(size).toImage();
    const auto near = [](QColor c, int r, int g, int b) {
      return std::max({std::abs(c.red() - r), std::abs(c.green() - g), std::abs(c.blue() - b)}) <= 24;
    };
    int amber = 0, white = 0;
    for (int y = 0; y < size; ++y) {
      for (int x = 0; x < size; ++x) {
        amber += near(icon.pixelColor(x, y), 0xf2, 0xa5, 0x41);
        white += near(icon.pixelColor(x, y), 0xf4, 0xf7, 0xfb);
      }
    }
    EXPECT_GE(std::min(amber, white), size * size / 12) << size;
    EXPECT_EQ(icon.pixelColor(0, 0).alpha(), 0) << size;
  }
}

}  // namespace
