#include "client/home_folder.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

QString ShippedDataFolder(const QString& programDir) {
  // A folder counts only when it holds the server list: an empty or stale $TOLV_DATA
  // must not hide the installed files.
  const auto holdsData = [](const QString& dir) {
    return !dir.isEmpty() && QFileInfo::exists(dir + u"/servers.txt"_s);
  };
  const QString installed = QDir::cleanPath(programDir + u"/../share/tolv"_s);
  const QString fromEnvironment = qEnvironmentVariable("TOLV_DATA");
  const QString buildTree = programDir + u"/data"_s;
  for (const QString& dir : {installed, fromEnvironment, buildTree})
    if (holdsData(dir)) return dir;
  return {};
}

QStringList FillHomeFolder(const QString& home, const QString& shipped) {
  QStringList copied;
  if (shipped.isEmpty()) return copied;  // an empty path would mean the current folder
  const QDir source(shipped);
  QDirIterator it(shipped, QDir::Files, QDirIterator::Subdirectories);
  while (it.hasNext()) {
    const QString file = it.next();
    const QString relative = source.relativeFilePath(file);
    if (relative.endsWith(u".desktop"_s)) continue;  // for the desktop, not for the user
    const QString target = home + u'/' + relative;
    if (QFileInfo::exists(target)) continue;
    QDir().mkpath(QFileInfo(target).absolutePath());
    if (!QFile::copy(file, target)) continue;
    QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                      QFile::ReadOther);
    copied << relative;
  }
  copied.sort();
  return copied;
}
