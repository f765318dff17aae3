// The texts of time, and the sizes that follow the screen.

#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "views/screen_metrics.h"
#include "views/time_format.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

// Worked out by hand. Minutes and seconds of 0 print as "000"; 2100 has a 29 February.
TEST(TimeFormat, StampsAndTheProgramsOwnCalendar) {
  EXPECT_EQ(TimeStamp(QTime(9, 5, 59)) + TimeStamp(QTime()), u"[09:05] [00:00] "_s);
  const std::pair<qint64, QString> cases[] = {
      {0, u"Thu Jan 1 1970 0:000:000"_s}, {3607, u"Thu Jan 1 1970 1:000:07"_s},
      {610, u"Thu Jan 1 1970 0:10:10"_s}, {1000000000, u"Sun Sep 9 2001 1:46:40"_s},
      {68214896, u"Tue Feb 29 1972 12:34:56"_s}, {99792000, u"Thu Mar 1 1973 0:000:000"_s},
      {94694399, u"Sun Dec 31 1972 23:59:59"_s}, {951782400, u"Tue Feb 29 2000 0:000:000"_s},
      {4107542400, u"Mon Feb 29 2100 0:000:000"_s}, {4107628800, u"Tue Mar 1 2100 0:000:000"_s},
      {-1, u"Wed Dec 31 1969 23:59:59"_s}, {-86400, u"Wed Dec 31 1969 0:000:000"_s},
      {-58060800, u"Thu Feb 29 1968 0:000:000"_s},
      // 10^9 four-year cycles of 1461 days; (1461 * 10^9 + 3) mod 7 = 5, a Saturday.
      {qint64(1461) * 86400 * 1000000000, u"Sat Jan 1 4000001970 0:000:000"_s},
  };
  for (const auto& [seconds, expected] : cases) EXPECT_EQ(FormatServerTime(seconds), expected) << seconds;
  // The ends of the range give a date, not an overflow.
  EXPECT_EQ(FormatServerTime(std::numeric_limits<qint64>::max()), u"Sun Apr 25 292271025015 15:30:07"_s);
  EXPECT_EQ(FormatServerTime(std::numeric_limits<qint64>::min()), u"Sun Sep 8 -292271021076 8:29:52"_s);
}

// The factor is the width over 240 (portrait) or 320 (landscape); "FontSize" packs the
// text and list heights; "VGA" keeps all but the input line at the factor-1 size.
TEST(ScreenMetrics, FactorAndFontHeights) {
  const struct {
    int width, height, fontSize, vga, factor;
    std::array<int, 4> heights;  // tab, input, text, list
  } cases[] = {
      {240, 320, 34, 0, 1, {13, 13, 13, 13}}, {640, 480, 34, 0, 2, {26, 26, 26, 26}},
      {479, 640, 34, 0, 1, {13, 13, 13, 13}}, {720, 1280, 34, 0, 3, {39, 39, 39, 39}},
      {480, 640, 34, 1, 2, {13, 26, 13, 13}}, {240, 320, 0x5A, 0, 1, {13, 13, 21, 16}},
      {480, 640, 0xFF, 0, 2, {26, 26, 52, 52}}, {241, 100, 34, 0, 1, {13, 13, 13, 13}},
  };
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  InitialiseDefaults(store);
  for (const auto& c : cases) {
    store.SetDword(u"FontSize", c.fontSize);
    store.SetDword(u"VGA", c.vga);
    EXPECT_EQ(ScreenFactor(c.width, c.height), c.factor) << c.width << "x" << c.height;
    const FontHeights h = PlanFontHeights(store, c.factor);
    EXPECT_EQ((std::array{h.tab, h.input, h.text, h.list}), c.heights) << c.width << " " << c.fontSize;
  }
}

}  // namespace
