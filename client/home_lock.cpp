#include "client/home_lock.h"

#include <QDir>

using namespace Qt::StringLiterals;

HomeLock::HomeLock(const QString& homeDir)
    : homeDir_(homeDir), lock_(QDir(homeDir).filePath(u"tolv.lock"_s)) {
  lock_.setStaleLockTime(0);  // only a holder that has died gives the lock up, not age
}

bool HomeLock::Acquire() {
  QDir().mkpath(homeDir_);
  return lock_.tryLock(0);
}

QString HomeLock::InUseText() const {
  qint64 pid = 0;
  QString host, application;
  const QString holder = lock_.getLockInfo(&pid, &host, &application)
                             ? u" (process %1)"_s.arg(pid)
                             : QString();
  return u"Tolv is already running with the home folder %1%2. Close it first, or give this "
         u"one another folder in TOLV_HOME."_s.arg(QDir::toNativeSeparators(homeDir_), holder);
}
