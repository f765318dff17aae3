#include "settings/settings_store.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class OutputPathTest : public ::testing::Test {
 protected:
  OutputPathTest() {
    settings.SetDword(u"tstamps", 0);
    settings.SetDword(u"Files", 0x2100);
    settings.SetDword(u"TabSets", 0x05550FFF);
    settings.SetString(u"logpath", logs.path() + u'/', 250);
    bar.SetClock([this] { return now; });
    bar.OpenTab(u"Status", TabKind::Status);
    bar.OpenTab(u"#chan", TabKind::Channel);
    bar.OpenTab(u"bob", TabKind::Chat);
    bar.OpenTab(u"bob", TabKind::DccChat);
    bar.OpenTab(u"file.zip", TabKind::DccRecv);
    bar.ActivateTab(0);
  }
  QStringList Lines(int position) const {
    QStringList out;
    const LineStore& store = *bar.At(position)->lines;
    for (qsizetype i = 0; i < store.LineCount(); ++i) out << store.Line(i).text;
    return out;
  }
  QByteArray Log(const QString& name) const {
    QFile f(logs.path() + u'/' + name);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<none>");
  }
  QTemporaryDir dir, logs;
  SettingsStore settings{dir.path()};
  TabBar bar{settings};
  QDateTime now{QDate(2008, 3, 7), QTime(9, 5, 30)};
};

TEST_F(OutputPathTest, TimeStampsPrefixTheShownLine) {
  PrintToTab(bar, 1, u"plain", 0x00ff00);
  settings.SetDword(u"tstamps", 1);
  PrintToTab(bar, 1, u"\x03" u"4stamped", 0x00ff00);
  EXPECT_EQ(Lines(1), (QStringList{u"plain"_s, u"[09:05] \x03" u"4stamped"_s}));
  EXPECT_EQ(bar.At(1)->lines->Line(1).colour, 0x00ff00u);
}

TEST_F(OutputPathTest, TransfersAndUnknownNamesPrintOnStatus) {
  PrintToTab(bar, 4, u"to a transfer", 1);
  PrintToNamedTab(bar, u"#nowhere", TabKind::Channel, u"to nowhere", 1);
  PrintToNamedTab(bar, u"", TabKind::Status, u"to status", 1);
  PrintToNamedTab(bar, u"BOB", TabKind::Any, u"to bob", 1);
  EXPECT_EQ(Lines(0), (QStringList{u"to a transfer"_s, u"to nowhere"_s, u"to status"_s}));
  EXPECT_EQ(Lines(2), QStringList{u"to bob"_s});
  EXPECT_EQ(Lines(3), QStringList{});  // the DCC chat is no IRC talk
  EXPECT_EQ(PrintToTab(bar, 9, u"no such tab", 1), 0);
}

TEST_F(OutputPathTest, CurrentTabLinesAreDarkBlue) {
  bar.ActivateTab(2);
  PrintToCurrentTab(bar, u"* Not connected to server");
  EXPECT_EQ(Lines(2), QStringList{u"* Not connected to server"_s});
  EXPECT_EQ(bar.At(2)->lines->Line(0).colour, 0x800000u);
}

// A line in the default colour leaves the label grey; the unread count still shows it.
TEST_F(OutputPathTest, BackTabsGetTheLineColourAnUnreadCountAndABalloon) {
  QSignalSpy balloons(&bar, &TabBar::balloonRequested);
  QSignalSpy unread(&bar, &TabBar::unreadChanged);
  const auto counts = [&] {
    QList<int> out;
    for (int i = 0; i < 3; ++i) out << bar.At(i)->unreadLines;
    return out;
  };
  PrintToTab(bar, 0, u"front", 0x0000ff);  // the current tab: no news
  EXPECT_EQ(bar.At(0)->labelColour, kLabelGrey);
  PrintToTab(bar, 1, u"back", 0x0000ff);
  EXPECT_EQ(bar.At(1)->labelColour, 0x0000ffu);
  PrintToTab(bar, 2, u"default colour", 0);
  PrintToTab(bar, 4, u"a transfer's line, on Status", 0);
  EXPECT_EQ(bar.At(2)->labelColour, kLabelGrey);
  EXPECT_EQ(counts(), (QList<int>{0, 1, 1}));
  ASSERT_EQ(balloons.count(), 2);
  EXPECT_EQ(balloons[0][0].toInt(), 1);
  EXPECT_EQ(balloons[0][1].toString(), u"back"_s);

  settings.SetDword(u"TabSets", 0x05510FFF);  // the Channel balloon switch off
  PrintToTab(bar, 1, u"quiet", 0x00ff00);
  EXPECT_EQ(balloons.count(), 2);
  EXPECT_EQ(bar.At(1)->labelColour, 0x00ff00u);
  EXPECT_EQ(counts(), (QList<int>{0, 2, 1}));
  ASSERT_EQ(unread.count(), 3);
  bar.ActivateTab(2);  // shown: read
  EXPECT_EQ(counts(), (QList<int>{0, 2, 0}));
  ASSERT_EQ(unread.count(), 4);
  EXPECT_EQ(unread.last()[0].toInt(), 2);
}

TEST_F(OutputPathTest, LogsFollowTheFilesBitsPerKind) {
  const struct {
    quint32 files;
    int position;
    const char* file;
  } cases[] = {
      {0x1, 1, "#chan.2008-03-07.txt"},   {0x2, 2, "bob.2008-03-07.txt"},
      {0x4, 0, "Status.2008-03-07.txt"},  {0x8, 3, "DCC_bob.2008-03-07.txt"},
      {0x4, 4, "Status.2008-03-07.txt"},  // a transfer's line is the Status tab's
  };
  for (const auto& c : cases) {
    QDir(logs.path()).removeRecursively();
    QDir().mkpath(logs.path());
    settings.SetDword(u"Files", static_cast<qint32>(0x2100 | c.files));
    PrintToTab(bar, c.position, u"héllo", 5);
    EXPECT_EQ(QDir(logs.path()).entryList(QDir::Files), QStringList{QString::fromUtf8(c.file)});
    EXPECT_EQ(Log(QString::fromUtf8(c.file)), QByteArray("h\xc3\xa9llo\r\n"));
  }
  QDir(logs.path()).removeRecursively();
  QDir().mkpath(logs.path());
  settings.SetDword(u"Files", 0x2100 | 0x1);
  PrintToTab(bar, 2, u"chat is not logged", 5);
  EXPECT_TRUE(QDir(logs.path()).entryList(QDir::Files).isEmpty());
}

TEST_F(OutputPathTest, LogHoldsTheStampAndRotatesAtMidnight) {
  settings.SetDword(u"Files", 0x2100 | 0x1);
  settings.SetDword(u"tstamps", 1);
  now = QDateTime(QDate(2008, 3, 7), QTime(23, 59, 59));
  PrintToTab(bar, 1, u"late", 5);
  now = QDateTime(QDate(2008, 3, 8), QTime(0, 0, 1));
  PrintToTab(bar, 1, u"early", 5);
  EXPECT_EQ(Log(u"#chan.2008-03-07.txt"_s), QByteArray("[23:59] late\r\n"));
  EXPECT_EQ(Log(u"#chan.2008-03-08.txt"_s), QByteArray("[00:00] early\r\n"));
}

TEST_F(OutputPathTest, AMissingLogFolderLosesOnlyTheLogLine) {
  settings.SetDword(u"Files", 0x2100 | 0x1);
  settings.SetString(u"logpath", logs.path() + u"/missing/"_s, 250);
  EXPECT_GT(PrintToTab(bar, 1, u"still shown", 5), 0);
  EXPECT_EQ(Lines(1), QStringList{u"still shown"_s});
  EXPECT_FALSE(QDir(logs.path() + u"/missing"_s).exists());
}

TEST_F(OutputPathTest, AppendedLinesAreAnnounced) {
  QSignalSpy appended(&bar, &TabBar::linesAppended);
  PrintToTab(bar, 4, u"a", 0);
  PrintToTab(bar, 1, u"b", 0);
  ASSERT_EQ(appended.count(), 2);
  EXPECT_EQ(appended[0][1].toInt(), 0);
  EXPECT_EQ(appended[1][0].value<TabId>(), bar.At(1)->id);
}

}  // namespace
