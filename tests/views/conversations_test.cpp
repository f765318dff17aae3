// The tabs, their nick lists, and the lines, labels, balloons and logs that fill them.

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

QStringList Shown(const NickList& list) {
  QStringList out;
  for (int i = 0; i < list.Count(); ++i) out << list.At(i).shown;
  return out;
}

class Conversations : public ::testing::Test {
 protected:
  Conversations() {
    settings.SetDword(u"tstamps", 0);
    settings.SetDword(u"TabSets", 0x05550FFF);
    settings.SetString(u"logpath", logs.path() + u'/', 250);
    bar.SetClock([this] { return now; });
    for (const auto& [name, kind] : {std::pair{u"Status"_s, TabKind::Status}, {u"#chan"_s, TabKind::Channel},
                                     {u"bob"_s, TabKind::Chat}, {u"bob"_s, TabKind::DccChat},
                                     {u"file.zip"_s, TabKind::DccRecv}})
      bar.OpenTab(name, kind);
    bar.ActivateTab(0);
  }
  QStringList Names() const {
    QStringList out;
    for (int i = 0; i < bar.Count(); ++i) out << bar.At(i)->name;
    return out;
  }
  QStringList Lines(int position) const {
    QStringList out;
    for (qsizetype i = 0; i < bar.At(position)->lines->LineCount(); ++i) out << bar.At(position)->lines->Line(i).text;
    return out;
  }
  QByteArray Log(const char* name) const {
    QFile f(logs.path() + u'/' + QString::fromUtf8(name));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<none>");
  }
  QTemporaryDir dir, logs;
  SettingsStore settings{dir.path()};
  TabBar bar{settings};
  QDateTime now{QDate(2008, 3, 7), QTime(9, 5, 30)};
};

TEST_F(Conversations, TabsOpenOnceAreFoundByKindAndCloseTowardsTheFront) {
  QSignalSpy sounds(&bar, &TabBar::eventSound);
  EXPECT_EQ(bar.OpenTab(u"#CHAN", TabKind::Channel), 1);
  EXPECT_EQ(bar.OpenTab(u"BOB", TabKind::Chat), 2);
  EXPECT_EQ(bar.OpenTab(u"bob", TabKind::DccChat), 5);  // one nick, several DCC chats
  EXPECT_EQ(bar.OpenTab(u"#chan", TabKind::Chat), 6);
  EXPECT_EQ(sounds.count(), 2);  // every new tab but a channel is announced
  const std::tuple<QString, TabKind, int> found[] = {
      {u"#CHAN"_s, TabKind::Channel, 1}, {u"#chan"_s, TabKind::Any, 1}, {u"bob"_s, TabKind::DccChat, 3},
      {u"file.zip"_s, TabKind::Any, -1}, {u""_s, TabKind::Status, -1}};
  for (const auto& [name, kind, position] : found) EXPECT_EQ(bar.FindTab(name, kind), position) << name.toStdString();
  EXPECT_EQ(bar.TabNameOfView(bar.At(0)->id), u"Status"_s);
  EXPECT_EQ(bar.TabKindOfView(bar.At(4)->id), 7105);
  EXPECT_EQ(bar.At(bar.Count()), nullptr);
  EXPECT_EQ(std::as_const(bar).At(bar.Count()), nullptr);
  const int steps[][3] = {{37, 0, 0}, {39, 0, 1}, {39, 6, 6}, {37, 1, 0}};  // {key, from, to}
  for (const auto& [key, from, to] : steps) {
    bar.ActivateTab(from);
    bar.StepTab(key);
    EXPECT_EQ(bar.Current(), to) << key << " from " << from;
  }
  bar.ActivateTab(4);
  EXPECT_EQ(bar.CurrentTabName(), std::nullopt);  // a transfer holds no talk
  bar.CloseTabAt(4);  // the current tab: the one before comes to the front
  EXPECT_EQ(bar.CurrentTabName(), u"bob"_s);
  bar.CloseTabByName(u"BOB", TabKind::Chat);
  bar.CloseTabByView(bar.At(3)->id);
  bar.OpenTab(u"#b", TabKind::Channel);
  QStringList sent;
  bar.RejoinChannels([&](const QString& line) { sent << line; });
  EXPECT_EQ(sent, (QStringList{u"JOIN #chan"_s, u"JOIN #b"_s}));
  bar.CloseChannelTabs();
  EXPECT_EQ(Names(), (QStringList{u"Status"_s, u"bob"_s, u"#chan"_s}));
  bar.ActivateTab(0);
  QSignalSpy current(&bar, &TabBar::currentChanged);
  bar.CloseTabAt(0);  // the next tab moves into the front position
  EXPECT_EQ(current.count(), 1);
  bar.CloseAllTabs();
  EXPECT_EQ(bar.Current(), -1);
}

// Operators, voiced, the rest, each sorted without regard to case; "@+" as multi-prefix
// servers send. A rename keeps the rank.
TEST_F(Conversations, NickListsLiveInChannelTabs) {
  bar.SetScaleFactor(2);
  bar.OpenTab(u"#a", TabKind::Channel);
  EXPECT_EQ(bar.At(5)->nickPaneWidth, 120);  // sixty pixels a screen factor
  QSignalSpy changed(&bar, &TabBar::nickListChanged);
  for (const QString& nick : {u"zed"_s, u"+Mia"_s, u"@bob"_s, u"alice"_s}) EXPECT_TRUE(bar.AddNick(u"#A", nick));
  EXPECT_FALSE(bar.AddNick(u"#a", u"BOB"));  // present with another rank and case
  EXPECT_FALSE(bar.AddNick(u"#nochan", u"x"));
  for (const QString& nick : {u"@Carol"_s, u"+al"_s, u"Bea"_s, u"@+dave"_s, u"+@erin"_s}) bar.AddNickUnchecked(u"#a", nick);
  const NickList& list = *bar.ChannelNickList(u"#a");
  EXPECT_EQ(Shown(list), (QStringList{u"@bob"_s, u"@Carol"_s, u"@dave"_s, u"@erin"_s, u"+al"_s, u"+Mia"_s,
                                      u"alice"_s, u"Bea"_s, u"zed"_s}));
  const std::pair<QString, int> found[] = {{u"@BOB"_s, 0}, {u"+bob"_s, 0}, {u"Mia"_s, 5}, {u"@+dave"_s, 2},
                                           {u"ZED"_s, 8}, {u"ze"_s, -1}, {u""_s, -1}};
  for (const auto& [nick, position] : found) EXPECT_EQ(bar.FindNick(u"#a", nick), position) << nick.toStdString();
  EXPECT_TRUE(bar.RenameNick(u"#a", u"bob", u"zz"));
  EXPECT_TRUE(bar.RenameNick(u"#a", u"Bea", u"@notop"));
  EXPECT_FALSE(bar.RenameNick(u"#a", u"zed", u"@+"));  // prefixes alone are no nick
  EXPECT_TRUE(bar.SetNickRank(u"#a", u"alice", NickRank::Voiced));
  EXPECT_TRUE(bar.RemoveNick(u"#a", u"@Mia"));
  EXPECT_EQ(Shown(list), (QStringList{u"@Carol"_s, u"@dave"_s, u"@erin"_s, u"@zz"_s, u"+al"_s, u"+alice"_s,
                                      u"notop"_s, u"zed"_s}));
  // Found by fuzzing: the voiced "bo" and the plain "1bo" share the sort key "1bo".
  bar.AddNickUnchecked(u"#a", u"1bo");
  bar.AddNickUnchecked(u"#a", u"+bo");
  EXPECT_TRUE(bar.RemoveNick(u"#a", u"bo"));
  EXPECT_EQ(list.At(bar.FindNick(u"#a", u"1bo")).shown, u"1bo"_s);
  EXPECT_EQ(bar.FindNick(u"#a", u"bo"), -1);
  bar.ClearNickList(u"#a");
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(changed.count(), 17);
  EXPECT_EQ(bar.ChannelNickList(u"bob"), nullptr);
}

// The stamp is the clock's; a transfer's or an unknown name's line goes to Status.
TEST_F(Conversations, LinesGoToTheirTabWithTheStampAndColour) {
  QSignalSpy appended(&bar, &TabBar::linesAppended);
  PrintToTab(bar, 1, u"plain", 0x00ff00);
  settings.SetDword(u"tstamps", 1);
  PrintToTab(bar, 1, u"\x03" u"4stamped", 0x00ff00);
  EXPECT_EQ(Lines(1), (QStringList{u"plain"_s, u"[09:05] \x03" u"4stamped"_s}));
  EXPECT_EQ(bar.At(1)->lines->Line(1).colour, 0x00ff00u);
  settings.SetDword(u"tstamps", 0);
  PrintToTab(bar, 4, u"to a transfer", 1);
  PrintToNamedTab(bar, u"#nowhere", TabKind::Channel, u"to nowhere", 1);
  PrintToNamedTab(bar, u"BOB", TabKind::Any, u"to bob", 1);  // the chat, not the DCC chat
  EXPECT_EQ(PrintToTab(bar, 9, u"no such tab", 1), 0);
  bar.ActivateTab(2);
  PrintToCurrentTab(bar, u"* Not connected to server");
  EXPECT_EQ(Lines(0), (QStringList{u"to a transfer"_s, u"to nowhere"_s}));
  EXPECT_EQ(Lines(2), (QStringList{u"to bob"_s, u"* Not connected to server"_s}));
  EXPECT_EQ(bar.At(2)->lines->Line(1).colour, 0x800000u);  // dark blue
  ASSERT_EQ(appended.count(), 6);
  EXPECT_EQ(appended[2][0].value<TabId>(), bar.At(0)->id);
}

// A line in the default colour leaves the label grey; the unread count still shows it.
TEST_F(Conversations, BackTabsGetTheLineColourAnUnreadCountAndABalloon) {
  QSignalSpy balloons(&bar, &TabBar::balloonRequested);
  const auto state = [&](int i) { return std::pair{bar.At(i)->labelColour, bar.At(i)->unreadLines}; };
  PrintToTab(bar, 0, u"front", 0x0000ff);  // the current tab: no news
  PrintToTab(bar, 1, u"back", 0x0000ff);
  PrintToTab(bar, 2, u"default colour", 0);
  EXPECT_EQ(state(0), std::pair(kLabelGrey, 0));
  EXPECT_EQ(state(1), std::pair(0x0000ffu, 1));
  EXPECT_EQ(state(2), std::pair(kLabelGrey, 1));
  ASSERT_EQ(balloons.count(), 2);
  EXPECT_EQ(balloons[0][1].toString(), u"back"_s);
  settings.SetDword(u"TabSets", 0x05510FFF);  // the Channel balloon switch off
  PrintToTab(bar, 1, u"quiet", 0x00ff00);
  EXPECT_EQ(balloons.count(), 2);
  EXPECT_EQ(state(1), std::pair(0x00ff00u, 2));
  bar.ActivateTab(1);  // shown: read
  EXPECT_EQ(state(1), std::pair(kLabelGrey, 0));
}

// "Files" holds a bit per kind of tab; a line is logged in the file of its day, and a
// missing folder loses only the log line.
TEST_F(Conversations, LogsFollowTheFilesBitsPerKind) {
  const std::tuple<quint32, int, const char*> cases[] = {
      {0x1, 1, "#chan.2008-03-07.txt"}, {0x2, 2, "bob.2008-03-07.txt"}, {0x4, 0, "Status.2008-03-07.txt"},
      {0x8, 3, "DCC_bob.2008-03-07.txt"}, {0x4, 4, "Status.2008-03-07.txt"}, {0x1, 2, nullptr}};
  for (const auto& [files, position, file] : cases) {
    QDir(logs.path()).removeRecursively();
    QDir().mkpath(logs.path());
    settings.SetDword(u"Files", static_cast<qint32>(0x2100 | files));
    PrintToTab(bar, position, u"h\u00e9llo", 5);
    EXPECT_EQ(QDir(logs.path()).entryList(QDir::Files), file ? QStringList{QString::fromUtf8(file)} : QStringList{});
    if (file) {
      EXPECT_EQ(Log(file), QByteArray("h\xc3\xa9llo\r\n"));
    }
  }
  settings.SetDword(u"Files", 0x2100 | 0x1);
  settings.SetDword(u"tstamps", 1);
  now = QDateTime(QDate(2008, 3, 7), QTime(23, 59, 59));
  PrintToTab(bar, 1, u"late", 5);
  now = QDateTime(QDate(2008, 3, 8), QTime(0, 0, 1));
  PrintToTab(bar, 1, u"early", 5);
  EXPECT_EQ(Log("#chan.2008-03-07.txt"), QByteArray("[23:59] late\r\n"));
  EXPECT_EQ(Log("#chan.2008-03-08.txt"), QByteArray("[00:00] early\r\n"));
  settings.SetString(u"logpath", logs.path() + u"/missing/"_s, 250);
  PrintToTab(bar, 1, u"still shown", 5);
  EXPECT_EQ(Lines(1).last(), u"[00:00] still shown"_s);
}

}  // namespace
