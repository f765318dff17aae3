#include "views/screen_metrics.h"

#include "settings/settings_store.h"

int ScreenFactor(int width, int height) {
  const int unit = width <= height ? 240 : 320;
  return width <= unit ? 1 : width / unit;
}

FontHeights PlanFontHeights(const SettingsStore& settings, int factor) {
  const auto sizes = static_cast<quint32>(settings.GetDword(u"FontSize"));
  const int scaled = settings.GetDword(u"VGA") != 0 ? 1 : factor;
  FontHeights heights;
  heights.tab = 13 * scaled;
  heights.input = 13 * factor;
  heights.text = (int(sizes & 15) + 11) * scaled;
  heights.list = (int((sizes >> 4) & 15) + 11) * scaled;
  return heights;
}
