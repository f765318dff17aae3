// The screen factor from the window's size, and the font heights it gives with the
// "FontSize" and "VGA" settings.

#include "views/screen_metrics.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

TEST(ScreenMetrics, FactorAndFontHeights) {
  const struct {
    int width, height, fontSize, vga;
    int factor;
    FontHeights heights;
  } cases[] = {
      {240, 320, 34, 0, 1, {13, 13, 13, 13}},  {480, 640, 34, 0, 2, {26, 26, 26, 26}},
      {320, 240, 34, 0, 1, {13, 13, 13, 13}},  {640, 480, 34, 0, 2, {26, 26, 26, 26}},
      {479, 640, 34, 0, 1, {13, 13, 13, 13}},  {720, 1280, 34, 0, 3, {39, 39, 39, 39}},
      {480, 640, 34, 1, 2, {13, 26, 13, 13}},  {240, 320, 0x5A, 0, 1, {13, 13, 21, 16}},
      {480, 640, 0xFF, 0, 2, {26, 26, 52, 52}}, {241, 100, 34, 0, 1, {13, 13, 13, 13}},
  };
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  InitialiseDefaults(store);
  for (const auto& c : cases) {
    store.SetDword(u"FontSize", c.fontSize);
    store.SetDword(u"VGA", c.vga);
    const int factor = ScreenFactor(c.width, c.height);
    EXPECT_EQ(factor, c.factor) << c.width << "x" << c.height;
    const FontHeights h = PlanFontHeights(store, factor);
    EXPECT_EQ((std::array{h.tab, h.input, h.text, h.list}),
              (std::array{c.heights.tab, c.heights.input, c.heights.text, c.heights.list}))
        << c.width << "x" << c.height << " FontSize " << c.fontSize << " VGA " << c.vga;
  }
}

}  // namespace
