// Teaching writes behind: lines taught back to back, looked up at once and copied, give
// the completions and the bytes of lines each written before the next; the last words
// reach the file when the dictionary goes; a full disk is told once and cut back.

#include "settings/settings_store.h"
#include "support/file_bytes.h"
#include "whispers/whisper_dictionary.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

// Few letters and short words: shared prefixes, words inside words, branches of branches.
QStringList Lines(unsigned seed, int count) {
  std::mt19937 random(seed);
  QStringList lines(count);
  for (QString& line : lines)
    for (int letters = 0; letters < 200; ++letters) line += random() % 5 ? QChar(u'a' + int(random() % 4)) : u' ';
  return lines;
}

struct Dictionary {
  QTemporaryDir home;
  SettingsStore settings{home.path()};
  QStringList reports;
  WhisperDictionary whispers{settings, [this](const QString& line) { reports << line; }};
};

TEST(WhisperWriteBehindTest, LinesBackToBackMatchLinesWrittenOneByOne) {
  Dictionary behind, stepwise;
  const QStringList burst = Lines(1, 30), paced = Lines(2, 30);
  auto teachStepwise = [&](const QString& line) { stepwise.whispers.TeachText(line), stepwise.whispers.WaitForWrites(); };
  for (const QString& line : burst) behind.whispers.TeachText(line);
  for (const QString& line : burst) teachStepwise(line);
  for (const QString& line : paced) {
    behind.whispers.TeachText(line);
    teachStepwise(line);
    for (const QString& typed : {u"a"_s, u"ab"_s, u"cd"_s, u"dab"_s})
      ASSERT_EQ(behind.whispers.FindCompletions(typed, 15).words, stepwise.whispers.FindCompletions(typed, 15).words)
          << typed.toStdString();
  }
  const QByteArray expected = ReadBytes(stepwise.whispers.FilePath());
  behind.whispers.BackupDictionary();
  EXPECT_EQ(ReadBytes(behind.whispers.BackupPath()), expected);
  QString path;
  {
    WhisperDictionary leaving(behind.settings, nullptr);  // the folder's file, taught again
    path = leaving.FilePath();
    QFile::remove(path);
    for (const QString& line : burst + paced) leaving.TeachText(line);
  }
  EXPECT_EQ(ReadBytes(path), expected);
  EXPECT_TRUE(behind.reports.isEmpty());
}

TEST(WhisperWriteBehindTest, AFullDiskIsToldOnceAndTheFileCutBack) {
  Dictionary d;
  d.whispers.EnsureDictionary(false);
  d.whispers.WaitForWrites();
  const QByteArray seeded = ReadBytes(d.whispers.FilePath());
  std::signal(SIGXFSZ, SIG_IGN);  // a write past the limit fails instead of ending the test
  rlimit saved{};
  getrlimit(RLIMIT_FSIZE, &saved);
  rlimit full = saved;
  full.rlim_cur = rlim_t(seeded.size() + 7);  // room for part of a run, not the whole
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
  d.whispers.TeachText(u"abc abd"_s);
  d.whispers.WaitForWrites();
  const QStringList told = d.reports;  // at the first failure, not a later one
  d.whispers.TeachText(u"xyz"_s);
  d.whispers.WaitForWrites();
  setrlimit(RLIMIT_FSIZE, &saved);
  EXPECT_EQ(told, QStringList{u"* The whispers dictionary "_s + d.whispers.FilePath() +
                              u" could not be written (File too large); the words taught just before are not kept"_s});
  EXPECT_EQ(ReadBytes(d.whispers.FilePath()), seeded);
  EXPECT_EQ(d.whispers.FindCompletions(u"x"_s, 2).result, WhisperLookup::Unavailable);
  d.whispers.TeachText(u"xyz"_s);
  EXPECT_EQ(d.whispers.FindCompletions(u"x"_s, 2).words, QStringList{u"xyz"_s});
  d.whispers.WaitForWrites();
  EXPECT_EQ(ReadBytes(d.whispers.FilePath()).size(), seeded.size() + 15);
  EXPECT_EQ(d.reports.size(), 1);
}

}  // namespace
