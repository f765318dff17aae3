#include "settings/settings_store.h"
#include "support/file_bytes.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray kHead = "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n";
const QByteArray kSoundsKey = "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv\\sounds]\n";

// Every kind of value as the file holds it; a second store reads it all back, so it writes
// the same bytes.
TEST(SettingsStore, FileIsTheRegistryExportFormatPrivateAndReadsBack) {
  QTemporaryDir dir;
  const QString awkward = u"quote \" back\\slash, é, 😀"_s;
  {
    SettingsStore store(dir.path());
    store.BeginBatch();
    store.SetDword(u"Options", 0xabcd);
    store.SetDword(u"negative", -2);
    store.SetString(u"nick", u"tolv7", 128);  // a full buffer's zero fill is not stored
    store.SetString(u"quitmsg", awkward, 500);
    store.SetString(u"cut", u"alice", 3);
    store.SetString(u"nul", u"ab"_s + QChar(0) + u"c"_s, 10);
    store.SetString(u"lines", u"a\r\nb"_s, 10);
    store.SetString(u"lone", u"a"_s + QChar(0xD83D), 10);
    store.SetBinary(u"b", QByteArray("\x01\xff", 2));
    store.SetString(u"", u"x", 2);
    store.SetString(u"join", u"join.wav", 250, SettingsKey::Sounds);
    store.EndBatch();
  }
  const QByteArray expected = kHead + "\"Options\"=dword:0000abcd\n\"negative\"=dword:fffffffe\n"
      "\"nick\"=\"tolv7\"\n\"quitmsg\"=\"quote \\\" back\\\\slash, \xC3\xA9, \xF0\x9F\x98\x80\"\n"
      "\"cut\"=\"ali\"\n\"nul\"=\"ab\"\n\"lines\"=hex(1):61,00,0d,00,0a,00,62,00,00,00\n"
      "\"lone\"=hex(1):61,00,3d,d8,00,00\n\"b\"=hex:01,ff\n@=\"x\"\n" + kSoundsKey + "\"join\"=\"join.wav\"\n";
  const QString path = dir.path() + u"/settings.reg"_s;
  EXPECT_EQ(ReadBytes(path), expected);
  struct stat st {};
  ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0600u);

  SettingsStore again(dir.path());
  EXPECT_EQ(again.LoadProblem(), u""_s);
  QString text = u"kept"_s;
  QByteArray bytes = "kept";
  // Too small for the text and its terminator, of another type, or missing: the buffer stays.
  EXPECT_FALSE(again.GetString(u"nick", text, 5) || again.GetBinary(u"nick", bytes, 9) ||
               again.GetBinary(u"no", bytes, 9));
  EXPECT_EQ(text + QString::fromLatin1(bytes), u"keptkept"_s);
  again.SetDword(u"Options", 0xabcd);
  EXPECT_EQ(ReadBytes(path), expected);
}

// One line of a file written by hand or by another program, and the line the store
// writes for it once it rewrites the file (none: it was unreadable).
struct LineCase {
  const char* name;
  QByteArray line;
  QByteArray written;
};

class SettingsFileLine : public testing::TestWithParam<LineCase> {};

// A file with an unreadable line is kept aside byte for byte, and the user is told once.
TEST_P(SettingsFileLine, ReadsAndWritesBack) {
  QTemporaryDir dir;
  const QByteArray file = kHead + GetParam().line + "\n";
  WriteBytes(dir.path() + u"/settings.reg"_s, file);
  SettingsStore store(dir.path());
  store.SetDword(u"z", 1);
  EXPECT_EQ(ReadBytes(store.FilePath()), kHead + GetParam().written + "\"z\"=dword:00000001\n" + kSoundsKey);
  const QStringList kept = QDir(dir.path()).entryList({u"settings.unreadable-*.reg"_s});
  EXPECT_EQ(kept.size(), GetParam().written.isEmpty() ? 1 : 0);
  EXPECT_EQ(store.LoadProblem().isEmpty(), kept.isEmpty());
  if (!kept.isEmpty()) {
    EXPECT_EQ(ReadBytes(dir.path() + u'/' + kept[0]), file);
  }
  EXPECT_EQ(SettingsStore(dir.path()).LoadProblem(), u""_s);
}

INSTANTIATE_TEST_SUITE_P(
    SettingsStore, SettingsFileLine,
    testing::Values(
        LineCase{"Dword", "\"a\" = dword:0000ABCD", "\"a\"=dword:0000abcd\n"},
        LineCase{"BadDword", "\"a\"=dword:zzzz", ""},
        LineCase{"LongDword", "\"a\"=dword:000000001", ""},
        LineCase{"NoEquals", "\"a\" dword:00000001", ""},
        LineCase{"NoQuote", "garbage", ""},
        LineCase{"UnclosedName", "\"a=\"b\"", ""},
        LineCase{"Escapes", "\"q\\\"\"=\"a\\\\b\\\"\"", "\"q\\\"\"=\"a\\\\b\\\"\"\n"},
        LineCase{"TextAfterString", "\"a\"=\"b\" c", ""},
        LineCase{"NulEndsString", QByteArray("\"a\"=\"b\0c\"", 9), "\"a\"=\"b\"\n"},
        LineCase{"Unnamed", "@=\"x\"", "@=\"x\"\n"},
        LineCase{"FoldedHex", "\"a\"=hex:01,02,\\\n  03,\\\n  04", "\"a\"=hex:01,02,03,04\n"},
        LineCase{"BadHex", "\"a\"=hex:01,102", ""},
        LineCase{"Utf16String", "\"a\"=hex(1):41,00,0a,00,00,00,00,00", "\"a\"=hex(1):41,00,0a,00,00,00\n"},
        LineCase{"OddUtf16", "\"a\"=hex(1):41,00,0a", ""}),
    [](const auto& info) { return std::string(info.param.name); });

// A child process rewrites the file as fast as it can and is killed at random moments;
// every time, the file must hold one complete version, never a mix or nothing.
TEST(SettingsStore, FileSurvivesACrashMidWrite) {
  QTemporaryDir dir;
  SettingsStore(dir.path()).SetString(u"quitmsg", QString(20000, u'a'), 20001);
  for (int attempt = 0; attempt < 12; ++attempt) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      SettingsStore store(dir.path());
      for (int i = 1;; ++i) store.SetString(u"quitmsg", QString(20000, QChar(u'a' + i % 26)), 20001);
    }
    ::usleep(2000 + 2000 * attempt);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    SettingsStore after(dir.path());
    ASSERT_EQ(after.LoadProblem(), u""_s);
    QString text;
    ASSERT_TRUE(after.GetString(u"quitmsg", text, 20001));
    EXPECT_EQ(text, QString(20000, text[0]));
  }
}

}  // namespace
