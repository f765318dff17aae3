#pragma once
// The program's two time formats: the hour-and-minute stamp put before output lines
// and the long date form used for times a server reports (topic set, signon).

#include <QString>
#include <QTime>
#include <QtGlobal>

// "[HH:mm] ", 24-hour clock, both fields two digits, one blank after the bracket.
// An invalid time prints as "[00:00] ".
QString TimeStamp(const QTime& localTime);
// The stamp for the current local time.
QString TimeStamp();

// "Thu Jan 1 1970 0:000:000": day name, month name, day, year, hour, minutes, seconds,
// by the program's own calendar (every fourth year from 1972 is a leap year, with no
// century rule) and without any time-zone adjustment. Minutes and seconds below 10
// get one "0" in front and a value of 0 gets two. Negative counts run the same
// calendar backwards from 1970 (-1 is "Wed Dec 31 1969 23:59:59"); every qint64
// value, however large, gives a date.
QString FormatServerTime(qint64 secondsSince1970);
