#include "views/time_format.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kSecondsPerDay = 86400;
// 1970, 1971, 1972 (leap), 1973: the calendar repeats every four years from 1970.
constexpr qint64 kDaysPerFourYears = 4 * 365 + 1;

constexpr std::array<const char16_t*, 7> kDayNames = {u"Mon", u"Tue", u"Wed", u"Thu",
                                                      u"Fri", u"Sat", u"Sun"};
constexpr std::array<const char16_t*, 12> kMonthNames = {
    u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};

struct CalendarTime {
  qint64 year = 1970;
  int month = 0;  // 0-based
  int day = 1;
  int dayOfWeek = 3;  // 0 = Monday
  int hour = 0;
  int minute = 0;
  int second = 0;
};

// An index out of range prints the first name ("Mon", "Jan"), as the long form always has.
QString DayName(int index) {
  return QString::fromUtf16(index >= 0 && index < 7 ? kDayNames[index] : kDayNames[0]);
}

QString MonthName(int index) {
  return QString::fromUtf16(index >= 0 && index < 12 ? kMonthNames[index] : kMonthNames[0]);
}

bool IsLeapYear(qint64 year) { return year % 4 == 0; }

int MonthLength(int month, bool leap) {
  constexpr std::array<int, 12> kLengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 1 && leap ? 29 : kLengths[month];
}

// Splits a day count into year, month and day; `days` may be negative.
void SetDate(qint64 days, CalendarTime& t) {
  qint64 cycles = days / kDaysPerFourYears;
  qint64 rest = days % kDaysPerFourYears;
  if (rest < 0) {
    rest += kDaysPerFourYears;
    --cycles;
  }
  t.year = 1970 + 4 * cycles;
  // At most three steps: `rest` is below one four-year cycle.
  for (int length = 365; rest >= length; length = IsLeapYear(t.year) ? 366 : 365) {
    rest -= length;
    ++t.year;
  }
  const bool leap = IsLeapYear(t.year);
  t.month = 0;
  while (t.month < 11 && rest >= MonthLength(t.month, leap)) rest -= MonthLength(t.month++, leap);
  t.day = static_cast<int>(rest) + 1;
}

// Division that rounds down, so that times before 1970 keep a positive time of day.
CalendarTime BreakDown(qint64 seconds) {
  qint64 days = seconds / kSecondsPerDay;
  qint64 secondOfDay = seconds % kSecondsPerDay;
  if (secondOfDay < 0) {
    secondOfDay += kSecondsPerDay;
    --days;
  }
  CalendarTime t;
  SetDate(days, t);
  t.dayOfWeek = static_cast<int>(((days % 7) + 7 + 3) % 7);
  t.hour = static_cast<int>(secondOfDay / 3600);
  t.minute = static_cast<int>(secondOfDay / 60 % 60);
  t.second = static_cast<int>(secondOfDay % 60);
  return t;
}

// The long form's own padding: 7 -> "07", 0 -> "000".
QString PaddedField(int value) {
  QString text;
  if (value < 10) text += u'0';
  if (value == 0) text += u'0';
  return text + QString::number(value);
}

}  // namespace

QString TimeStamp(const QTime& localTime) {
  const QTime time = localTime.isValid() ? localTime : QTime(0, 0);
  return u"[%1:%2] "_s.arg(time.hour(), 2, 10, QChar(u'0')).arg(time.minute(), 2, 10, QChar(u'0'));
}

QString TimeStamp() { return TimeStamp(QTime::currentTime()); }

QString FormatServerTime(qint64 secondsSince1970) {
  const CalendarTime t = BreakDown(secondsSince1970);
  return DayName(t.dayOfWeek) + u' ' + MonthName(t.month) + u' ' + QString::number(t.day) + u' ' +
         QString::number(t.year) + u' ' + QString::number(t.hour) + u':' + PaddedField(t.minute) +
         u':' + PaddedField(t.second);
}
