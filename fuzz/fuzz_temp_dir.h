#pragma once
// Where the fuzz targets keep their files: in memory under /dev/shm when there is one,
// since the settings store syncs every file it writes and a disk would make that the
// cost of every input; otherwise the usual temporary folder.

#include <QDir>
#include <QFileInfo>
#include <QString>

namespace fuzz {

// $TOLV_FUZZ_TMPDIR, when set, is used instead: a run that stops at a finding leaves its
// folder behind, and scripts/fuzz.sh removes the whole of its own afterwards.
inline QString TempDirTemplate() {
  using namespace Qt::StringLiterals;
  QString parent = qEnvironmentVariable("TOLV_FUZZ_TMPDIR");
  if (parent.isEmpty()) {
    const QFileInfo shm(u"/dev/shm"_s);
    parent = shm.isDir() && shm.isWritable() ? shm.filePath() : QDir::tempPath();
  }
  return parent + u"/tolv-fuzz-XXXXXX"_s;
}

}  // namespace fuzz
