#pragma once
// What every fuzz target shares: a failed invariant says which and stops, so libFuzzer
// keeps the input that broke it as a crash; files go under $TOLV_FUZZ_TMPDIR when set (a
// run stopped by a finding cannot remove its own; scripts/fuzz.sh removes the whole), else
// in memory under /dev/shm, since the settings store syncs every file it writes.

#include <QDir>
#include <QFileInfo>

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition, what)                                                         \
  do {                                                                                      \
    if (!(condition))                                                                       \
      std::fprintf(stderr, "%s:%d: invariant broken: %s (%s)\n", __FILE__, __LINE__, what, \
                   #condition),                                                             \
          std::abort();                                                                     \
  } while (false)

namespace fuzz {

inline QString TempDirTemplate() {
  QString parent = qEnvironmentVariable("TOLV_FUZZ_TMPDIR");
  if (parent.isEmpty()) parent = QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath();
  return parent + QStringLiteral("/tolv-fuzz-XXXXXX");
}

}  // namespace fuzz
