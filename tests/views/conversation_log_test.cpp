#include "views/conversation_log.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "settings/settings_store.h"

using namespace Qt::StringLiterals;

namespace {

const QDate kDay(2008, 3, 7);

QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

struct NameCase {
  const char16_t* logpath;
  QString base;
  const char16_t* expected;
};

TEST(LogFileNameTest, FolderThenSafeBaseThenDate) {
  const NameCase cases[] = {
      {u"/logs/", u"#chan"_s, u"/logs/#chan.2008-03-07.txt"},
      {u"/logs/", u"Status"_s, u"/logs/Status.2008-03-07.txt"},
      {u"/logs/", DccLogBase(u"bob"), u"/logs/DCC_bob.2008-03-07.txt"},
      {u"/logs/", u"#Chan"_s, u"/logs/#Chan.2008-03-07.txt"},
      {u"/logs/", u"../etc/passwd"_s, u"/logs/%2E%2E%2Fetc%2Fpasswd.2008-03-07.txt"},
      {u"/logs/x_", u"#chan"_s, u"/logs/x_#chan.2008-03-07.txt"},  // folder text as it is
  };
  for (const auto& c : cases)
    EXPECT_EQ(LogFileName(QString::fromUtf16(c.logpath), c.base, kDay),
              QString::fromUtf16(c.expected));
}

class AppendLogLineTest : public ::testing::Test {
 protected:
  QString Folder() const { return dir_.path() + u"/logs/"_s; }
  void SetLogPath(const QString& path) { store_.SetString(u"logpath", path, path.size() + 1); }
  QStringList Entries(const QString& path) const {
    return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                QDir::NoDotAndDotDot);
  }

  QTemporaryDir dir_;
  QTemporaryDir home_;
  SettingsStore store_{home_.path()};
};

TEST_F(AppendLogLineTest, WritesUtf8LinesEndingInCrLf) {
  ASSERT_TRUE(QDir().mkpath(Folder()));
  SetLogPath(Folder());
  AppendLogLine(store_, u"#chan", u"[09:05] <bob> h\u00e9llo \U0001F600", kDay);
  AppendLogLine(store_, u"#chan", u"second", kDay);
  EXPECT_EQ(ReadAll(Folder() + u"#chan.2008-03-07.txt"_s),
            QByteArray("[09:05] <bob> h\xC3\xA9llo \xF0\x9F\x98\x80\r\nsecond\r\n"));
  EXPECT_EQ(Entries(Folder()), QStringList{u"#chan.2008-03-07.txt"_s});
}

TEST_F(AppendLogLineTest, AppendsToWhatTheFileAlreadyHolds) {
  ASSERT_TRUE(QDir().mkpath(Folder()));
  SetLogPath(Folder());
  QFile old(Folder() + u"Status.2008-03-07.txt"_s);
  ASSERT_TRUE(old.open(QIODevice::WriteOnly));
  old.write("earlier\r\n");
  old.close();
  AppendLogLine(store_, u"Status", u"later", kDay);
  EXPECT_EQ(ReadAll(old.fileName()), QByteArray("earlier\r\nlater\r\n"));
}

TEST_F(AppendLogLineTest, LinesOnEitherSideOfMidnightGoToTwoFiles) {
  ASSERT_TRUE(QDir().mkpath(Folder()));
  SetLogPath(Folder());
  AppendLogLine(store_, DccLogBase(u"bob"), u"[23:59] before", QDate(2008, 12, 31));
  AppendLogLine(store_, DccLogBase(u"bob"), u"[00:00] after", QDate(2009, 1, 1));
  EXPECT_EQ(ReadAll(Folder() + u"DCC_bob.2008-12-31.txt"_s), QByteArray("[23:59] before\r\n"));
  EXPECT_EQ(ReadAll(Folder() + u"DCC_bob.2009-01-01.txt"_s), QByteArray("[00:00] after\r\n"));
}

TEST_F(AppendLogLineTest, FolderWithoutTrailingSlashStillHoldsTheLog) {
  ASSERT_TRUE(QDir().mkpath(Folder()));
  SetLogPath(dir_.path() + u"/logs"_s);
  AppendLogLine(store_, u"#chan", u"x", kDay);
  EXPECT_EQ(Entries(Folder()), QStringList{u"#chan.2008-03-07.txt"_s});
}

TEST_F(AppendLogLineTest, MissingLogPathUsesTheInstallationFolder) {
  AppendLogLine(store_, u"Status", u"x", kDay);
  EXPECT_EQ(ReadAll(home_.path() + u"/Status.2008-03-07.txt"_s), QByteArray("x\r\n"));
}

TEST_F(AppendLogLineTest, MissingFolderLosesTheLineQuietly) {
  SetLogPath(Folder());  // never created
  AppendLogLine(store_, u"#chan", u"lost", kDay);
  EXPECT_FALSE(QFileInfo::exists(Folder()));
  EXPECT_TRUE(Entries(dir_.path()).isEmpty());
}

TEST_F(AppendLogLineTest, FolderThatIsAFileLosesTheLineQuietly) {
  QFile blocker(dir_.path() + u"/logs"_s);
  ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
  blocker.close();
  SetLogPath(Folder());
  AppendLogLine(store_, u"#chan", u"lost", kDay);
  EXPECT_EQ(Entries(dir_.path()), QStringList{u"logs"_s});
  EXPECT_EQ(QFileInfo(blocker.fileName()).size(), 0);
}

TEST_F(AppendLogLineTest, ReadOnlyFolderLosesTheLineQuietly) {
  ASSERT_TRUE(QDir().mkpath(Folder()));
  QFile::setPermissions(Folder(), QFile::ReadOwner | QFile::ExeOwner);
  QFile probe(Folder() + u"probe"_s);
  if (probe.open(QIODevice::WriteOnly)) {
    probe.remove();
    QFile::setPermissions(Folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    GTEST_SKIP() << "permissions are not enforced for this user";
  }
  SetLogPath(Folder());
  AppendLogLine(store_, u"#chan", u"lost", kDay);
  EXPECT_TRUE(Entries(Folder()).isEmpty());
  QFile::setPermissions(Folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

}  // namespace
