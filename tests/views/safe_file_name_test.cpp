#include "views/safe_file_name.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include "settings/settings_store.h"
#include "views/conversation_log.h"

using namespace Qt::StringLiterals;

namespace {

const QDate kDay(2008, 3, 7);

struct MappingCase {
  QString name;
  QString expected;
};

TEST(SafeFileNameComponentTest, KeepsHarmlessCharactersAndEscapesTheRest) {
  const MappingCase cases[] = {
      {u"#chan"_s, u"#chan"_s},
      {u"[bob]^`{}_-"_s, u"[bob]^`{}_-"_s},
      {u"#caf\u00e9 \U0001F600"_s, u"#caf\u00e9 \U0001F600"_s},
      {u"a/b"_s, u"a%2Fb"_s},
      {u"a\\b"_s, u"a%5Cb"_s},
      {u"bob|away"_s, u"bob%7Caway"_s},
      {u"C:*?\"<>"_s, u"C%3A%2A%3F%22%3C%3E"_s},
      {u"100%"_s, u"100%25"_s},
      {u"a\u0001b\u001F\t\u007F\u0085"_s, u"a%01b%1F%09%7F%85"_s},
      {QString(QChar(0)), u"%00"_s},
      {u"."_s, u"%2E"_s},
      {u".."_s, u"%2E%2E"_s},
      {u"a..b"_s, u"a.%2Eb"_s},
      {u"a.b.c"_s, u"a.b.c"_s},
      {u".bashrc"_s, u"%2Ebashrc"_s},
      {u"end."_s, u"end%2E"_s},
      {u"-rf"_s, u"%2Drf"_s},
      {u""_s, u"%"_s},
      {QString(QChar(0xD800)) + u'x', u"%uD800x"_s},
      {u"x"_s + QChar(0xDC01), u"x%uDC01"_s},
  };
  for (const auto& c : cases)
    EXPECT_EQ(SafeFileNameComponent(c.name), c.expected) << c.name.toStdString();
}

TEST(SafeFileNameComponentTest, LongNamesAreCutOnACharacterBoundaryWithAHash) {
  const QString fits(kSafeFileNameMaxBytes, u'a');
  EXPECT_EQ(SafeFileNameComponent(fits), fits);
  EXPECT_EQ(SafeFileNameComponent(QString(100, QChar(0xE9))), QString(100, QChar(0xE9)));

  const QRegularExpression escapesThenHash(u"^(%2F){63}%~[0-9A-F]{8}$"_s);
  EXPECT_TRUE(escapesThenHash.match(SafeFileNameComponent(QString(100, u'/'))).hasMatch());

  QString emoji;
  for (int i = 0; i < 60; ++i) emoji += u"\U0001F600"_s;
  const QString cut = SafeFileNameComponent(emoji);
  EXPECT_EQ(cut, emoji.left(47 * 2) + cut.right(10));  // 47 * 4 bytes fit before the hash
}

TEST(SafeFileNameComponentTest, LongNamesDifferingAtTheEndStayApart) {
  const QString stem(300, u'x');
  EXPECT_NE(SafeFileNameComponent(stem + u'1'), SafeFileNameComponent(stem + u'2'));
  EXPECT_EQ(SafeFileNameComponent(stem + u'1'), SafeFileNameComponent(stem + u'1'));
}

QStringList HostileNames() {
  QStringList names = {
      u".."_s, u"."_s, u"..."_s, u"../x"_s, u"..\\x"_s, u"../../etc/passwd"_s,
      u"..\\..\\windows\\win.ini"_s, u"/etc/passwd"_s, u"/"_s, u"\\"_s, u"//"_s,
      u"C:\\Windows\\x"_s, u"C:/x"_s, u"\\\\server\\share\\x"_s, u"a/../../b"_s, u"./x"_s,
      u"x/."_s, u"x/.."_s, u"#chan/../.."_s, u"#../.."_s, u"..#chan"_s, u"-rf"_s, u"--help"_s,
      u".bashrc"_s, u".hidden/.."_s, u"~"_s, u"~/x"_s, u"$HOME"_s, u"`id`"_s, u"$(id)"_s, u"a b"_s,
      u" "_s, u"a:b"_s, u"a|b"_s, u"a*b"_s, u"a?b"_s, u"<>"_s, u"\"q\""_s, u"%2F"_s, u"%"_s,
      u"%2e%2e%2f"_s, u"CON"_s, u"NUL"_s, u"aux.txt"_s, u"\u2215etc\u2215passwd"_s, u"\uFF0Fetc"_s,
      u"\u202Etxt.exe"_s, u"\uFEFF.."_s, u"a_b"_s, u"a%2Fb"_s, u"a/b"_s, u"#chan"_s, u"#Chan"_s,
      u"#CHAN"_s, u"caf\u00e9"_s, u"cafe\u0301"_s, u"\u0130"_s, u"\u00df"_s, u"SS"_s,
      u"\U0001F600"_s, u"\u00e9/\u00e9"_s, u""_s, u"..%2F.."_s, u"...."_s, u"a."_s, u".a"_s,
      u"..a.."_s};
  names << (u".."_s + QChar(0) + u"/x"_s) << (QString(QChar(0xD800)) + u"/.."_s)
        << (u"a"_s + QChar(0xD83D)) << (QString(QChar(0xDC00)) + u".."_s);
  for (char16_t c = 0; c < 0x20; ++c) names << (u"a"_s + QChar(c) + u"b"_s);
  for (char16_t c : {0x7F, 0x80, 0x85, 0x9F}) names << (u"a"_s + QChar(c) + u"b"_s);
  names << QString(199, u'a') << QString(255, u'a') << QString(300, u'a')
        << QString(1000, QChar(0xE9)) << QString(100, u'/') << QString(400, u'.')
        << u"../"_s.repeated(100) << (QString(199, u'a') + u'/') << QString(4096, u'x')
        << QString(65536, u'y') << u"\U0001F600"_s.repeated(150)
        << (QString(199, u'b') + u"\U0001F600"_s);
  return names;
}

class HostileNameTest : public ::testing::TestWithParam<QString> {};

TEST_P(HostileNameTest, PathStaysDirectlyInsideTheLogFolder) {
  const QString folder = u"/var/tolv/logs/"_s;
  const QString path = LogFileName(folder, GetParam(), kDay);
  const QString fileName = path.mid(folder.size());
  EXPECT_EQ(QFileInfo(QDir::cleanPath(path)).absolutePath(), QDir::cleanPath(folder));
  EXPECT_EQ(QDir::cleanPath(path), folder + fileName);
  EXPECT_FALSE(fileName.contains(u'/') || fileName.contains(u'\\') || fileName.contains(QChar(0)));
  EXPECT_FALSE(fileName.startsWith(u'.') || fileName.contains(u".."_s));
  EXPECT_LE(fileName.toUtf8().size(), 255);
  EXPECT_TRUE(fileName.endsWith(u".2008-03-07.txt"_s));
}

TEST_P(HostileNameTest, WritingCreatesExactlyOneFileInTheLogFolder) {
  QTemporaryDir parent;
  QTemporaryDir home;
  const QString logs = parent.path() + u"/logs/"_s;
  ASSERT_TRUE(QDir().mkpath(logs));
  SettingsStore store(home.path());
  store.SetString(u"logpath", logs, logs.size() + 1);
  AppendLogLine(store, GetParam(), u"line", kDay);

  const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
  const QStringList inLogs = QDir(logs).entryList(all);
  ASSERT_EQ(inLogs.size(), 1);
  EXPECT_EQ(logs + inLogs[0], LogFileName(logs, GetParam(), kDay));
  EXPECT_TRUE(QFileInfo(logs + inLogs[0]).isFile());
  EXPECT_EQ(QDir(parent.path()).entryList(all), QStringList{u"logs"_s});
  QFile file(logs + inLogs[0]);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), QByteArray("line\r\n"));
}

INSTANTIATE_TEST_SUITE_P(Table, HostileNameTest, ::testing::ValuesIn(HostileNames()));

// Different names must not share a log: escaping instead of replacing keeps "a/b" away
// from the ordinary "a_b", and case and normalisation form are kept as received.
TEST(HostileNameTableTest, EveryNameGetsItsOwnFile) {
  const QStringList names = HostileNames();
  ASSERT_GE(names.size(), 100);
  QSet<QString> files;
  for (const QString& name : names) files.insert(SafeFileNameComponent(name));
  EXPECT_EQ(files.size(), QSet<QString>(names.begin(), names.end()).size());
  EXPECT_EQ(files.size(), names.size());
}

}  // namespace
