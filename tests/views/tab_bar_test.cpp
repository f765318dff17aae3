#include "settings/settings_store.h"
#include "views/tab_bar.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class TabBarTest : public ::testing::Test {
 protected:
  TabBarTest() {
    bar.OpenTab(u"Status", TabKind::Status);
    bar.ActivateTab(0);
  }
  QStringList Names() const {
    QStringList names;
    for (int i = 0; i < bar.Count(); ++i) names << bar.At(i)->name;
    return names;
  }
  QTemporaryDir dir;
  SettingsStore settings{dir.path()};
  TabBar bar{settings};
};

TEST_F(TabBarTest, OpeningIsIdempotentButForDccChats) {
  EXPECT_EQ(bar.OpenTab(u"#Chan", TabKind::Channel), 1);
  EXPECT_EQ(bar.OpenTab(u"#chan", TabKind::Channel), 1);
  EXPECT_EQ(bar.OpenTab(u"bob", TabKind::Chat), 2);
  EXPECT_EQ(bar.OpenTab(u"BOB", TabKind::Chat), 2);
  EXPECT_EQ(bar.OpenTab(u"bob", TabKind::DccChat), 3);
  EXPECT_EQ(bar.OpenTab(u"bob", TabKind::DccChat), 4);
  EXPECT_EQ(bar.OpenTab(u"#chan", TabKind::Chat), 5);  // same name, other kind
  EXPECT_EQ(bar.Count(), 6);
  EXPECT_NE(bar.At(1)->nickList, nullptr);
  EXPECT_EQ(bar.At(2)->nickList, nullptr);
  EXPECT_EQ(bar.At(1)->labelColour, 0u);
}

TEST_F(TabBarTest, FindTabByKindAndWildcard) {
  bar.OpenTab(u"#chan", TabKind::Channel);
  bar.OpenTab(u"bob", TabKind::DccChat);
  bar.OpenTab(u"carol", TabKind::Chat);
  bar.OpenTab(u"file.zip", TabKind::DccRecv);
  const struct {
    QString name;
    TabKind kind;
    int position;
  } cases[] = {
      {u"#CHAN"_s, TabKind::Channel, 1}, {u"#chan"_s, TabKind::Any, 1},
      {u"#chan"_s, TabKind::Chat, -1},   {u"bob"_s, TabKind::Any, -1},  // DCC chats are no IRC talk
      {u"bob"_s, TabKind::DccChat, 2},   {u"Carol"_s, TabKind::Any, 3},
      {u"file.zip"_s, TabKind::Any, -1}, {u"Status"_s, TabKind::Status, 0},
      {u""_s, TabKind::Status, -1},  // how Status is asked for: found by falling back
  };
  for (const auto& c : cases)
    EXPECT_EQ(bar.FindTab(c.name, c.kind), c.position) << c.name.toStdString();
}

TEST_F(TabBarTest, QuerySoundAnnouncesEveryTabButChannelsAndTheFirst) {
  QTemporaryDir other;
  SettingsStore otherSettings(other.path());
  TabBar fresh(otherSettings);
  QSignalSpy sounds(&fresh, &TabBar::eventSound);
  fresh.OpenTab(u"Status", TabKind::Status);
  fresh.OpenTab(u"#chan", TabKind::Channel);
  fresh.OpenTab(u"bob", TabKind::Chat);
  fresh.OpenTab(u"bob", TabKind::Chat);  // already open: no sound
  fresh.OpenTab(u"carol", TabKind::DccChat);
  ASSERT_EQ(sounds.count(), 2);
  EXPECT_EQ(sounds[0][0].toString(), u"query"_s);
}

TEST_F(TabBarTest, ClosingActivatesTheTabBefore) {
  bar.OpenTab(u"#a", TabKind::Channel);
  bar.OpenTab(u"#b", TabKind::Channel);
  bar.OpenTab(u"bob", TabKind::Chat);
  bar.ActivateTab(3);
  bar.CloseTabAt(1);  // the first after Status
  EXPECT_EQ(bar.Current(), 0);
  EXPECT_EQ(Names(), (QStringList{u"Status"_s, u"#b"_s, u"bob"_s}));
  bar.CloseTabByName(u"BOB", TabKind::Chat);
  EXPECT_EQ(bar.Current(), 1);
  bar.CloseTabByName(u"nobody", TabKind::Chat);
  bar.CloseTabAt(7);
  EXPECT_EQ(Names(), (QStringList{u"Status"_s, u"#b"_s}));
  const TabId id = bar.At(1)->id;
  bar.CloseTabByView(id);
  EXPECT_EQ(bar.FindTabByView(id), bar.Count());
  EXPECT_EQ(bar.TabKindOfView(id), -1);
}

TEST_F(TabBarTest, CloseChannelTabsKeepsStatusAndChats) {
  bar.OpenTab(u"#a", TabKind::Channel);
  bar.OpenTab(u"bob", TabKind::Chat);
  bar.OpenTab(u"#b", TabKind::Channel);
  bar.CloseChannelTabs();
  EXPECT_EQ(Names(), (QStringList{u"Status"_s, u"bob"_s}));
  bar.CloseAllTabs();
  EXPECT_EQ(bar.Count(), 0);
  EXPECT_EQ(bar.Current(), -1);
  EXPECT_EQ(bar.CurrentTabName(), std::nullopt);
}

TEST_F(TabBarTest, StepTabStopsAtTheEnds) {
  bar.OpenTab(u"#a", TabKind::Channel);
  const struct {
    int key;
    int from;
    int to;
  } cases[] = {{37, 0, 0}, {39, 0, 1}, {39, 1, 1}, {37, 1, 0}, {13, 1, 1}, {38, 0, 0}};
  for (const auto& c : cases) {
    bar.ActivateTab(c.from);
    bar.StepTab(c.key);
    EXPECT_EQ(bar.Current(), c.to) << c.key << " from " << c.from;
  }
}

TEST_F(TabBarTest, CurrentTabNameAndViewLookups) {
  bar.OpenTab(u"#a", TabKind::Channel);
  bar.OpenTab(u"f.zip", TabKind::DccSend);
  TabKind kind = TabKind::Any;
  EXPECT_EQ(bar.CurrentTabName(&kind), u"Status"_s);
  EXPECT_EQ(kind, TabKind::Status);
  bar.ActivateTab(1);
  EXPECT_EQ(bar.CurrentTabName(&kind), u"#a"_s);
  EXPECT_EQ(kind, TabKind::Channel);
  bar.ActivateTab(2);
  EXPECT_EQ(bar.CurrentTabName(&kind), std::nullopt);  // transfers hold no talk
  EXPECT_EQ(bar.TabKindOfView(bar.At(2)->id), 7106);
  EXPECT_EQ(bar.TabNameOfView(bar.At(1)->id), u"#a"_s);
  bar.ActivateTab(-1);  // negative: the current one again
  EXPECT_EQ(bar.Current(), 2);
}

TEST_F(TabBarTest, LabelsFollowTabSets) {
  bar.OpenTab(u"#a", TabKind::Channel);
  bar.OpenTab(u"bob", TabKind::Chat);
  const struct {
    quint32 sets;
    int position;
    bool icon;
    QString text;
  } cases[] = {
      {0x05550FFF, 0, true, u"Status"_s}, {0x05550FFF, 1, true, u"#a"_s},
      {0x0, 1, false, u""_s},             {0x4, 1, true, u""_s},
      {0x8, 1, false, u"#a"_s},           {0x8, 2, false, u""_s},
      {0x20, 2, false, u"bob"_s},
  };
  QSignalSpy refreshed(&bar, &TabBar::labelsChanged);
  for (const auto& c : cases) {
    settings.SetDword(u"TabSets", static_cast<qint32>(c.sets));
    bar.RefreshTabLabels();
    const TabLabel label = bar.LabelOf(c.position);
    EXPECT_EQ(label.showIcon, c.icon) << c.sets;
    EXPECT_EQ(label.text, c.text) << c.sets;
  }
  EXPECT_EQ(refreshed.count(), 7);
}

TEST_F(TabBarTest, RejoinSendsOneJoinPerChannelInTabOrder) {
  bar.OpenTab(u"#b", TabKind::Channel);
  bar.OpenTab(u"bob", TabKind::Chat);
  bar.OpenTab(u"#a", TabKind::Channel);
  QStringList sent;
  bar.RejoinChannels([&](const QString& line) { sent << line; });
  EXPECT_EQ(sent, (QStringList{u"JOIN #b"_s, u"JOIN #a"_s}));
}

TEST_F(TabBarTest, LabelColourZeroIsGreyAndActivationReadsTheTab) {
  bar.OpenTab(u"#a", TabKind::Channel);
  bar.SetTabLabelColour(1, 0);
  EXPECT_EQ(bar.At(1)->labelColour, kLabelGrey);
  bar.SetTabLabelColour(1, 0xff);
  EXPECT_EQ(bar.At(1)->labelColour, 0xffu);
  bar.ActivateTab(1);
  EXPECT_EQ(bar.At(1)->labelColour, kLabelGrey);
}

TEST_F(TabBarTest, NickOperationsGoThroughTheChannelTab) {
  bar.OpenTab(u"#a", TabKind::Channel);
  QSignalSpy changed(&bar, &TabBar::nickListChanged);
  EXPECT_TRUE(bar.AddNick(u"#A", u"@bob"));
  EXPECT_FALSE(bar.AddNick(u"#a", u"Bob"));
  EXPECT_FALSE(bar.AddNick(u"#nochan", u"x"));
  EXPECT_TRUE(bar.RenameNick(u"#a", u"bob", u"robert"));
  EXPECT_EQ(bar.FindNick(u"#a", u"ROBERT"), 0);
  EXPECT_EQ(bar.ChannelNickList(u"#a")->At(0).shown, u"@robert"_s);
  EXPECT_TRUE(bar.RemoveNick(u"#a", u"+robert"));
  EXPECT_EQ(bar.FindNick(u"#a", u"robert"), -1);
  EXPECT_EQ(bar.FindNick(u"#nochan", u"robert"), -1);
  EXPECT_EQ(changed.count(), 3);
  EXPECT_EQ(bar.ChannelNickList(u"Status"), nullptr);
}

TEST_F(TabBarTest, NickPaneStartsAtSixtyTimesTheScale) {
  bar.SetScaleFactor(2);
  bar.OpenTab(u"#a", TabKind::Channel);
  EXPECT_EQ(bar.At(1)->nickPaneWidth, 120);
  EXPECT_EQ(bar.At(0)->nickPaneWidth, 60);
}

}  // namespace
