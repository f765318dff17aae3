// "TabSets" edited kind by kind, and the tab strip menu's list of tabs.

#include "commands/command_ids.h"
#include "commands/tab_list_menu.h"
#include "settings/settings_store.h"
#include "views/tab_bar.h"
#include "views/tab_sets.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct LabelCase {
  const char* name;
  quint32 before;
  TabKind kind;
  TabLabelShow show;
  quint32 after;
};

class LabelBits : public ::testing::TestWithParam<LabelCase> {};

// Every other bit of the word stays as it was, balloon bits included.
TEST_P(LabelBits, ChangeOnlyTheirKindsPair) {
  const LabelCase& c = GetParam();
  EXPECT_EQ(WithLabelShow(c.before, c.kind, c.show), c.after);
  EXPECT_EQ(LabelShowOf(c.after, c.kind), c.show);
}

INSTANTIATE_TEST_SUITE_P(
    TabSets, LabelBits,
    ::testing::Values(LabelCase{"StatusIconOnly", 0x05550FFF, TabKind::Status, TabLabelShow::Icon, 0x05550FFD},
                      LabelCase{"ChannelTextOnly", 0x05550FFF, TabKind::Channel, TabLabelShow::Text, 0x05550FFB},
                      LabelCase{"ChatBothFromNone", 0x00000000, TabKind::Chat, TabLabelShow::Both, 0x00000030},
                      LabelCase{"DccSendNone", 0xFFFFFFFF, TabKind::DccSend, TabLabelShow::None, 0xFFFFF3FF},
                      LabelCase{"DccRecvIcon", 0x00000A00, TabKind::DccRecv, TabLabelShow::Icon, 0x00000900},
                      LabelCase{"AnyIsNoKindOfTheWord", 0x05550FFF, TabKind::Any, TabLabelShow::None, 0x05550FFF}),
    [](const auto& info) { return std::string(info.param.name); });

struct BalloonCase {
  const char* name;
  quint32 before;
  TabKind kind;
  bool on;
  quint32 after;
};

class BalloonBits : public ::testing::TestWithParam<BalloonCase> {};

// Either bit of a pair switches balloons on: switching on keeps the one that is set,
// switching off clears both.
TEST_P(BalloonBits, ChangeOnlyTheirKindsPair) {
  const BalloonCase& c = GetParam();
  EXPECT_EQ(WithBalloon(c.before, c.kind, c.on), c.after);
  EXPECT_EQ(BalloonOn(c.after, c.kind), c.on);
}

INSTANTIATE_TEST_SUITE_P(
    TabSets, BalloonBits,
    ::testing::Values(BalloonCase{"ChannelOff", 0x05550FFF, TabKind::Channel, false, 0x05510FFF},
                      BalloonCase{"StatusOffClearsBoth", 0x00030000, TabKind::Status, false, 0x00000000},
                      BalloonCase{"DccSendOn", 0x00000FFF, TabKind::DccSend, true, 0x04000FFF},
                      BalloonCase{"ChatOnKeepsTheUpperBit", 0x00200000, TabKind::Chat, true, 0x00200000},
                      BalloonCase{"DccChatOffFromUpperBit", 0xFFFFFFFF, TabKind::DccChat, false, 0xFF3FFFFF}),
    [](const auto& info) { return std::string(info.param.name); });

// Status is left out and the list stops at position 99, however many tabs there are.
TEST(TabListMenu, ListsPositionsOneTo99AndBringsTheChosenToTheFront) {
  QTemporaryDir home;
  SettingsStore settings(home.path());
  TabBar bar(settings);
  bar.OpenTab(u"Status", TabKind::Status);
  EXPECT_TRUE(TabListMenu(bar).empty());
  for (int i = 1; i <= 101; ++i) bar.OpenTab(u"#c%1"_s.arg(i), TabKind::Channel);
  const std::vector<TabListEntry> list = TabListMenu(bar);
  ASSERT_EQ(list.size(), 99u);
  EXPECT_EQ(list.front().name, u"#c1"_s);
  EXPECT_EQ(list.front().command, 40701);
  EXPECT_EQ(list.back().name, u"#c99"_s);
  EXPECT_EQ(list.back().command, 40799);

  bar.ActivateTab(0);
  EXPECT_TRUE(RunTabListCommand(bar, 40799));
  EXPECT_EQ(bar.Current(), 99);
  for (const int command : {40700, 40800, kCmdTabSettings}) EXPECT_FALSE(RunTabListCommand(bar, command));
  while (bar.Count() > 3) bar.CloseTabAt(bar.Count() - 1);
  EXPECT_FALSE(RunTabListCommand(bar, 40703));  // gone meanwhile
  EXPECT_EQ(bar.Current(), 2);
}

}  // namespace
