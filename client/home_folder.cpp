#include "client/home_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

QString ShippedDataFolder() {
  const QString fromEnvironment = qEnvironmentVariable("TOLV_DATA");
  if (!fromEnvironment.isEmpty()) return fromEnvironment;
  if (QCoreApplication::instance()) {
    const QString beside = QCoreApplication::applicationDirPath() + u"/data"_s;
    if (QFileInfo(beside + u"/servers.txt"_s).exists()) return beside;
  }
  return QStringLiteral(TOLV_DATA_DIR);
}

QStringList FillHomeFolder(const QString& home, const QString& shipped) {
  QStringList copied;
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
