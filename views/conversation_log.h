#pragma once
// The per-day log files of conversation tabs. Every line opens the day's file, appends
// and closes it again, so a log is complete up to the last line even after a crash,
// and a new file starts at midnight without any bookkeeping.

#include <QDate>
#include <QString>
#include <QStringView>

class SettingsStore;

// logpath + SafeFileNameComponent(base) + "." + yyyy-MM-dd + ".txt". The folder text is
// put in front as it is; AppendLogLine makes sure it ends in "/".
QString LogFileName(QString logpath, QStringView base, QDate date);

// The base name of a DCC chat's log: "DCC_" followed by the nick.
QString DccLogBase(QStringView nick);

// Appends `line` as UTF-8 and CR LF to the log of `base` for `date`, in the folder of
// "logpath" ("/" added when it does not end in one; the installation folder when the
// value is missing, empty or longer than 249 units). A folder that is missing or
// cannot be written loses the line quietly; no folder is created.
void AppendLogLine(const SettingsStore& store, QStringView base, QStringView line, QDate date);
// The same for today's local date.
void AppendLogLine(const SettingsStore& store, QStringView base, QStringView line);
