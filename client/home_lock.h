#pragma once
// One running client per home folder: two would silently undo each other's settings
// writes. The lock is a file in the home folder; one left by a process that is gone is
// taken over.

#include <QLockFile>
#include <QString>

class HomeLock {
 public:
  explicit HomeLock(const QString& homeDir);

  // True when this process now holds the home folder (until it ends).
  bool Acquire();
  // What the user is told when another process holds it.
  QString InUseText() const;

 private:
  QString homeDir_;
  QLockFile lock_;
};
