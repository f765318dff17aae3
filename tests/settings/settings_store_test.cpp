#include "settings/settings_store.h"
#include "support/file_bytes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {



TEST(SettingsStore, ReadsFailAsDescribed) {
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  EXPECT_EQ(store.GetDword(u"missing"), -1);

  store.SetString(u"nick", u"alice", 6);
  QString buffer = u"untouched"_s;
  EXPECT_FALSE(store.GetString(u"nick", buffer, 5));  // five letters and the terminator
  EXPECT_EQ(buffer, u"untouched"_s);
  EXPECT_TRUE(store.GetString(u"nick", buffer, 6));
  EXPECT_EQ(buffer, u"alice"_s);
  EXPECT_EQ(store.GetDword(u"nick"), -1);  // a string is no DWORD
  EXPECT_FALSE(store.GetString(u"missing", buffer, 100));
  EXPECT_EQ(buffer, u"alice"_s);

  QByteArray bytes("keep");
  store.SetBinary(u"kolory", QByteArray(96, '\x01'));
  EXPECT_FALSE(store.GetBinary(u"kolory", bytes, 64));
  EXPECT_EQ(bytes, QByteArray("keep"));
  EXPECT_TRUE(store.GetBinary(u"kolory", bytes, 96));
  EXPECT_EQ(bytes.size(), 96);
}

TEST(SettingsStore, StringWritesStopAtUnitsAndAtNul) {
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  const struct {
    QString text;
    int units;
    QString stored;
  } cases[] = {
      {u"alice"_s, 6, u"alice"_s},
      {u"alice"_s, 128, u"alice"_s},  // a full buffer's zero fill is not stored
      {u"alice"_s, 3, u"ali"_s},
      {u"al"_s + QChar(0) + u"ice"_s, 6, u"al"_s},
      {u"x"_s, 0, u""_s},
  };
  for (const auto& c : cases) {
    store.SetString(u"v", c.text, c.units);
    QString out;
    ASSERT_TRUE(store.GetString(u"v", out, 1000));
    EXPECT_EQ(out, c.stored);
  }
}

TEST(SettingsStore, EveryValueSurvivesTheFile) {
  QTemporaryDir dir;
  const QString awkward = u"quote \" back\\slash\r\nnew line, tab\t, é, 😀"_s;
  {
    SettingsStore store(dir.path());
    store.SetDword(u"Options", 0x010001C0);
    store.SetDword(u"negative", -2);
    store.SetString(u"quitmsg", awkward, 500);
    store.SetString(u"empty", u"", 1);
    store.SetBinary(u"mColors", QByteArray("\x00\xff\x10", 3));
    store.SetString(u"join", u"join.wav", 250, SettingsKey::Sounds);
    store.SetString(u"", u"x", 2);  // the key's unnamed value
  }
  SettingsStore again(dir.path());
  EXPECT_TRUE(again.LoadProblem().isEmpty()) << again.LoadProblem().toStdString();
  EXPECT_EQ(again.GetDword(u"Options"), 0x010001C0);
  EXPECT_EQ(again.GetDword(u"negative"), -2);
  QString text;
  ASSERT_TRUE(again.GetString(u"quitmsg", text, 500));
  EXPECT_EQ(text, awkward);
  ASSERT_TRUE(again.GetString(u"empty", text, 1));
  EXPECT_EQ(text, u""_s);
  ASSERT_TRUE(again.GetString(u"", text, 2));
  EXPECT_EQ(text, u"x"_s);
  QByteArray bytes;
  ASSERT_TRUE(again.GetBinary(u"mColors", bytes, 64));
  EXPECT_EQ(bytes, QByteArray("\x00\xff\x10", 3));
  ASSERT_TRUE(again.GetString(u"join", text, 250, SettingsKey::Sounds));
  EXPECT_EQ(text, u"join.wav"_s);
  EXPECT_EQ(again.GetDword(u"join"), -1);  // the sounds live in their own key
}

TEST(SettingsStore, FileIsTheRegistryExportFormatAndPrivate) {
  QTemporaryDir dir;
  {
    SettingsStore store(dir.path());
    store.BeginBatch();
    store.SetDword(u"Options", 0xabcd);
    store.SetString(u"nick", u"tolv7", 128);
    store.SetBinary(u"b", QByteArray("\x01\x02", 2));
    store.SetString(u"join", u"join.wav", 250, SettingsKey::Sounds);
    store.EndBatch();
  }
  const QString path = dir.path() + u"/settings.reg"_s;
  EXPECT_EQ(ReadBytes(path),
            "Windows Registry Editor Version 5.00\n"
            "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n"
            "\"Options\"=dword:0000abcd\n"
            "\"nick\"=\"tolv7\"\n"
            "\"b\"=hex:01,02\n"
            "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv\\sounds]\n"
            "\"join\"=\"join.wav\"\n");
  struct stat st {};
  ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST(SettingsStore, UnreadableLinesAreKeptAsideAndToldOnce) {
  QTemporaryDir dir;
  const QByteArray damaged =
      "Windows Registry Editor Version 5.00\n\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n"
      "\"nick\"=\"alice\"\n"
      "\"Options\"=dword:zzzz\n"
      "garbage line\n"
      "\"tstamps\"=dword:00000001\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\n"
      "\"kept\"=dword:00000005\n";
  WriteBytes(dir.path() + u"/settings.reg"_s, damaged);
  {
    SettingsStore store(dir.path());
    EXPECT_FALSE(store.LoadProblem().isEmpty());
    QString nick;
    EXPECT_TRUE(store.GetString(u"nick", nick, 120));
    EXPECT_EQ(nick, u"alice"_s);
    EXPECT_EQ(store.GetDword(u"tstamps"), 1);
    EXPECT_EQ(store.GetDword(u"Options"), -1);
  }
  const QStringList kept = QDir(dir.path()).entryList({u"settings.unreadable-*.reg"_s});
  ASSERT_EQ(kept.size(), 1);
  EXPECT_EQ(ReadBytes(dir.path() + u'/' + kept[0]), damaged);
  EXPECT_TRUE(ReadBytes(dir.path() + u"/settings.reg"_s).contains("\"kept\"=dword:00000005"));
  SettingsStore again(dir.path());
  EXPECT_TRUE(again.LoadProblem().isEmpty());
}

TEST(SettingsStore, ThreadsReadAndWriteTogether) {
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  store.SetDword(u"counter", 0);
  std::thread writer([&] {
    for (int i = 1; i <= 200; ++i) store.SetDword(u"counter", i);
  });
  qint32 last = 0;
  bool monotonic = true;
  for (int i = 0; i < 100000 && last < 200; ++i) {
    const qint32 now = store.GetDword(u"counter");
    monotonic = monotonic && now >= last;
    last = now;
  }
  writer.join();
  EXPECT_TRUE(monotonic);
  SettingsStore reread(dir.path());
  EXPECT_EQ(reread.GetDword(u"counter"), 200);
}

// A child process rewrites the file as fast as it can and is killed at random moments;
// every time, the file must hold one complete version, never a mix or nothing.
TEST(SettingsStore, FileSurvivesACrashMidWrite) {
  QTemporaryDir dir;
  const QString big = QString(20000, u'a');
  {
    SettingsStore store(dir.path());
    store.SetString(u"quitmsg", big, 20001);
    store.SetDword(u"round", 0);
  }
  for (int attempt = 0; attempt < 20; ++attempt) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      SettingsStore store(dir.path());
      for (int i = 1;; ++i) {
        store.BeginBatch();
        store.SetString(u"quitmsg", QString(20000, QChar(u'a' + i % 26)), 20001);
        store.SetDword(u"round", i);
        store.EndBatch();
      }
    }
    ::usleep(2000 + 1500 * attempt);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    SettingsStore after(dir.path());
    ASSERT_TRUE(after.LoadProblem().isEmpty()) << after.LoadProblem().toStdString();
    QString text;
    ASSERT_TRUE(after.GetString(u"quitmsg", text, 20001));
    const qint32 round = after.GetDword(u"round");
    ASSERT_GE(round, 0);
    EXPECT_EQ(text, QString(20000, round == 0 ? u'a' : QChar(u'a' + round % 26)));
  }
}

}  // namespace

namespace {

// Found by fuzzing: values the file could not carry as quoted UTF-8 text.
TEST(SettingsFileRegression, NulAndLoneSurrogatesReadBackAsStored) {
  QTemporaryDir dir;
  const QString lone = QStringLiteral("a") + QChar(0xD83D) + QStringLiteral("b");
  {
    SettingsStore store(dir.path());
    store.SetString(u"lone", lone, 10);
  }
  SettingsStore again(dir.path());
  QString text;
  ASSERT_TRUE(again.GetString(u"lone", text, 10));
  EXPECT_EQ(text, lone);

  QFile file(dir.path() + QStringLiteral("/settings.reg"));
  ASSERT_TRUE(file.open(QIODevice::Append));
  const QByteArray nul("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n\"nul\"=\"ab\0cd\"\n", 57);
  file.write(nul);
  file.close();
  SettingsStore third(dir.path());
  ASSERT_TRUE(third.GetString(u"nul", text, 10));
  EXPECT_EQ(text, QStringLiteral("ab"));  // a string ends at its terminator
}

}  // namespace
