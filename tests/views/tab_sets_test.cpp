// "TabSets" kind by kind, where the dialogs cannot reach, and the strip menu's tab list.

#include "commands/tab_list_menu.h"
#include "settings/settings_store.h"
#include "views/tab_bar.h"
#include "views/tab_sets.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// A pair of 0, a word with every bit set, a kind that has no bits.
TEST(TabSets, ChangeOnlyTheirKindsPair) {
  EXPECT_EQ(WithLabelShow(0xFFFFFFFF, TabKind::DccSend, TabLabelShow::None), 0xFFFFF3FFu);
  EXPECT_EQ(LabelShowOf(0x00000A00, TabKind::DccRecv), TabLabelShow::Text);
  EXPECT_EQ(WithLabelShow(0x05550FFF, TabKind::Any, TabLabelShow::None), 0x05550FFFu);
  EXPECT_EQ(WithBalloon(0xFFFFFFFF, TabKind::DccChat, false), 0xFF3FFFFFu);
  EXPECT_FALSE(BalloonOn(0xFFFFFFFF, TabKind::Any));
}

// Status is left out and the list stops at position 99, however many tabs there are.
TEST(TabListMenu, ListsPositionsOneTo99AndBringsTheChosenToTheFront) {
  QTemporaryDir home;
  SettingsStore settings(home.path());
  TabBar bar(settings);
  bar.OpenTab(u"Status", TabKind::Status);
  for (int i = 1; i <= 101; ++i) bar.OpenTab(u"#c%1"_s.arg(i), TabKind::Channel);
  const std::vector<TabListEntry> list = TabListMenu(bar);
  ASSERT_EQ(list.size(), 99u);
  EXPECT_EQ(std::pair(list.front().name, list.front().command), std::pair(u"#c1"_s, 40701));
  EXPECT_EQ(std::pair(list.back().name, list.back().command), std::pair(u"#c99"_s, 40799));
  EXPECT_TRUE(RunTabListCommand(bar, 40799));
  EXPECT_EQ(bar.Current(), 99);
  for (const int command : {40700, 40800, 40801}) EXPECT_FALSE(RunTabListCommand(bar, command));
  while (bar.Count() > 3) bar.CloseTabAt(bar.Count() - 1);
  EXPECT_FALSE(RunTabListCommand(bar, 40703));  // gone meanwhile
  EXPECT_TRUE(RunTabListCommand(bar, 40701) && bar.Current() == 1);
}

}  // namespace
