#include "views/time_format.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

struct StampCase {
  QTime time;
  const char16_t* expected;
};

TEST(TimeStampTest, HourAndMinuteTwoDigitsThenOneBlank) {
  const StampCase cases[] = {
      {QTime(9, 5), u"[09:05] "},   {QTime(0, 0), u"[00:00] "}, {QTime(23, 59, 59), u"[23:59] "},
      {QTime(12, 30), u"[12:30] "}, {QTime(), u"[00:00] "},
  };
  for (const auto& c : cases)
    EXPECT_EQ(TimeStamp(c.time), QString::fromUtf16(c.expected)) << c.time.toString().toStdString();
}

TEST(TimeStampTest, NowHasTheSameShape) {
  EXPECT_TRUE(
      QRegularExpression(u"^\\[([01]\\d|2[0-3]):[0-5]\\d\\] $"_s).match(TimeStamp()).hasMatch());
}

struct ServerTimeCase {
  qint64 seconds;
  const char16_t* expected;
};

// Expected texts worked out by hand from the calendar rules, not by the code.
TEST(FormatServerTimeTest, ProgramsOwnCalendar) {
  const ServerTimeCase cases[] = {
      {0, u"Thu Jan 1 1970 0:000:000"},
      {1000000000, u"Sun Sep 9 2001 1:46:40"},  // 11574 days and 6400 s
      {3607, u"Thu Jan 1 1970 1:000:07"},       // minutes 0 print as "000"
      {59, u"Thu Jan 1 1970 0:000:59"},
      {600 + 10, u"Thu Jan 1 1970 0:10:10"},
      {1204880700, u"Fri Mar 7 2008 9:05:000"},
      {68214896, u"Tue Feb 29 1972 12:34:56"},  // first leap day
      {68256000, u"Wed Mar 1 1972 0:000:000"},
      {99792000, u"Thu Mar 1 1973 0:000:000"},  // 1973 has no 29 February
      {94694399, u"Sun Dec 31 1972 23:59:59"},  // day 366 of a leap year
      {951782400, u"Tue Feb 29 2000 0:000:000"},
      {4107542399, u"Sun Feb 28 2100 23:59:59"},
      // No century rule: 2100 has a 29 February here, one day before the real 1 March.
      {4107542400, u"Mon Feb 29 2100 0:000:000"},
      {4107628800, u"Tue Mar 1 2100 0:000:000"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FormatServerTime(c.seconds), QString::fromUtf16(c.expected)) << c.seconds;
}

TEST(FormatServerTimeTest, NegativeCountsRunTheCalendarBackwards) {
  const ServerTimeCase cases[] = {
      {-1, u"Wed Dec 31 1969 23:59:59"},
      {-86400, u"Wed Dec 31 1969 0:000:000"},
      {-58060800, u"Thu Feb 29 1968 0:000:000"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FormatServerTime(c.seconds), QString::fromUtf16(c.expected)) << c.seconds;
}

TEST(FormatServerTimeTest, HugeCountsGiveADateWithoutOverflow) {
  // 10^9 four-year cycles of 1461 days: 1 January of year 1970 + 4 * 10^9, and
  // (1461 * 10^9 + 3) mod 7 = (5 * 6 + 3) mod 7 = 5, a Saturday.
  EXPECT_EQ(FormatServerTime(qint64(1461) * 86400 * 1000000000),
            u"Sat Jan 1 4000001970 0:000:000"_s);
  const QRegularExpression shape(
      u"^(Mon|Tue|Wed|Thu|Fri|Sat|Sun) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
      u"([1-9]|[12]\\d|3[01]) -?\\d+ (1?\\d|2[0-3]):(0\\d\\d|0[1-9]|[1-5]\\d):(0\\d\\d|0[1-9]|[1-5]\\d)$"_s);
  for (qint64 s : {std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::min(),
                   std::numeric_limits<qint64>::min() + 1, qint64(-1) << 40, qint64(1) << 62})
    EXPECT_TRUE(shape.match(FormatServerTime(s)).hasMatch()) << FormatServerTime(s).toStdString();
}

}  // namespace
