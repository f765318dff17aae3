#include "views/safe_file_name.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "settings/settings_store.h"
#include "views/conversation_log.h"

using namespace Qt::StringLiterals;

namespace {

TEST(SafeFileNameComponent, KeepsHarmlessCharactersAndEscapesTheRest) {
  const std::pair<QString, QString> cases[] = {
      {u"#chan"_s, u"#chan"_s}, {u"[bob]^`{}_-"_s, u"[bob]^`{}_-"_s},
      {u"#caf\u00e9 \U0001F600"_s, u"#caf\u00e9 \U0001F600"_s}, {u"a/b"_s, u"a%2Fb"_s},
      {u"a\\b"_s, u"a%5Cb"_s}, {u"bob|away"_s, u"bob%7Caway"_s},
      {u"C:*?\"<>"_s, u"C%3A%2A%3F%22%3C%3E"_s}, {u"100%"_s, u"100%25"_s},
      {u"a\u0001b\u001F\t\u007F\u0085"_s, u"a%01b%1F%09%7F%85"_s}, {QString(QChar(0)), u"%00"_s},
      {u"."_s, u"%2E"_s}, {u".."_s, u"%2E%2E"_s}, {u"a..b"_s, u"a.%2Eb"_s},
      {u"a.b.c"_s, u"a.b.c"_s}, {u".bashrc"_s, u"%2Ebashrc"_s}, {u"end."_s, u"end%2E"_s},
      {u"-rf"_s, u"%2Drf"_s}, {u""_s, u"%"_s}, {QString(QChar(0xD800)) + u'x', u"%uD800x"_s},
      {u"x"_s + QChar(0xDC01), u"x%uDC01"_s},
  };
  for (const auto& [name, expected] : cases)
    EXPECT_EQ(SafeFileNameComponent(name), expected) << name.toStdString();
}

// 200 bytes at most: longer names keep what fits before "%~" and eight hex digits of a
// hash of the whole name, cut on a character boundary.
TEST(SafeFileNameComponent, LongNamesAreCutWithAHashThatKeepsThemApart) {
  const QString fits(kSafeFileNameMaxBytes, u'a');
  EXPECT_EQ(SafeFileNameComponent(fits), fits);
  EXPECT_EQ(SafeFileNameComponent(QString(100, QChar(0xE9))), QString(100, QChar(0xE9)));
  EXPECT_TRUE(QRegularExpression(u"^(%2F){63}%~[0-9A-F]{8}$"_s)
                  .match(SafeFileNameComponent(QString(100, u'/'))).hasMatch());
  const QString emoji = u"\U0001F600"_s.repeated(60);
  const QString cut = SafeFileNameComponent(emoji);
  EXPECT_EQ(cut, emoji.left(47 * 2) + cut.right(10));  // 47 * 4 bytes fit before the hash
  const QString stem(300, u'x');
  EXPECT_NE(SafeFileNameComponent(stem + u'1'), SafeFileNameComponent(stem + u'2'));
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

// Every name logs into a file of its own directly inside the log folder ("a/b" is not
// "a_b"; case and normalisation stay): a shared file would hold its line twice.
TEST(HostileNames, EachWritesItsOwnFileDirectlyInsideTheLogFolder) {
  QTemporaryDir parent, home;
  const QString logs = parent.path() + u"/logs/"_s;
  ASSERT_TRUE(QDir().mkpath(logs));
  SettingsStore store(home.path());
  store.SetString(u"logpath", logs, logs.size() + 1);
  const QDate day(2008, 3, 7);
  const QStringList names = HostileNames();
  for (const QString& name : names) {
    SCOPED_TRACE(name.left(40).toStdString());
    const QString path = LogFileName(logs, name, day);
    const QString file = path.mid(logs.size());
    EXPECT_EQ(QDir::cleanPath(path), path);
    EXPECT_FALSE(file.contains(u'/') || file.contains(u'\\') || file.contains(QChar(0)));
    EXPECT_FALSE(file.startsWith(u'.') || file.contains(u".."_s));
    EXPECT_LE(file.toUtf8().size(), 255);
    EXPECT_TRUE(file.endsWith(u".2008-03-07.txt"_s));
    AppendLogLine(store, name, u"line", day);
    QFile written(path);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), QByteArray("line\r\n"));
  }
  const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
  EXPECT_EQ(QDir(logs).entryList(all).size(), names.size());
  EXPECT_EQ(QDir(parent.path()).entryList(all), QStringList{u"logs"_s});
}

// Without a folder set, logs go to the home folder; one named without its "/" still works.
TEST(AppendLogLine, FindsItsFolder) {
  QTemporaryDir dir, home;
  SettingsStore store(home.path());
  AppendLogLine(store, u"Status", u"x", QDate(2008, 3, 7));
  store.SetString(u"logpath", dir.path(), 250);
  AppendLogLine(store, u"#chan", u"y", QDate(2008, 3, 7));
  EXPECT_TRUE(QFile::exists(home.path() + u"/Status.2008-03-07.txt"_s));
  EXPECT_TRUE(QFile::exists(dir.path() + u"/#chan.2008-03-07.txt"_s));
}

}  // namespace
