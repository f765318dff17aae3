#include "views/conversation_log.h"

#include <QFile>

#include "settings/settings_paths.h"
#include "settings/settings_store.h"
#include "views/safe_file_name.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kLogPathUnits = 250;

// A folder picked without a trailing "/" would otherwise turn its last part into a
// prefix of every log file name, writing the logs next to the folder instead of in it.
QString LogFolder(const SettingsStore& store) {
  QString folder;
  if (!store.GetString(u"logpath", folder, kLogPathUnits) || folder.isEmpty())
    return GetInstallDir(store);
  return WithTrailingSlash(folder);
}

}  // namespace

QString LogFileName(QString logpath, QStringView base, QDate date) {
  return logpath + SafeFileNameComponent(base) + u'.' + date.toString(u"yyyy-MM-dd"_s) + u".txt"_s;
}

QString DccLogBase(QStringView nick) { return u"DCC_"_s.append(nick); }

void AppendLogLine(const SettingsStore& store, QStringView base, QStringView line, QDate date) {
  QFile file(LogFileName(LogFolder(store), base, date));
  // Append mode creates the file but never a folder; a failure to open is no news
  // worth a message in every line, so the line is simply not logged.
  if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) return;
  file.write(line.toUtf8() + "\r\n");
}

void AppendLogLine(const SettingsStore& store, QStringView base, QStringView line) {
  AppendLogLine(store, base, line, QDate::currentDate());
}
