// What irssi and HexChat users type without thinking: "/part" for the channel in front,
// "/j", and "/close" for the tab in front.

#include "commands/submit_input.h"
#include "support/command_test_support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct HabitCase {
  const char* name;
  std::vector<TabSpec> tabs;
  const char* current;
  const char* typed;
  QByteArray sent;
  QStringList tabsLeft;
  bool connected = true;
};

class IrcHabitTest : public ::testing::TestWithParam<HabitCase> {};

TEST_P(IrcHabitTest, SendsAndCloses) {
  const HabitCase& c = GetParam();
  CommandClient client(c.tabs, c.current);
  client.settings.SetString(u"partmsg", u"Gone"_s, 501);
  if (!c.connected) client.Disconnect();
  SubmitInputText(client.ctx, QString::fromUtf8(c.typed));
  if (c.connected) {
    EXPECT_EQ(client.Sent(), c.sent);
  }
  QStringList tabs;
  for (int i = 0; i < client.ctx.tabs.Count(); ++i) tabs << client.ctx.tabs.At(i)->name;
  EXPECT_EQ(tabs, c.tabsLeft);
}

const std::vector<TabSpec> kTabs = {{"#x", TabKind::Channel}, {"bob", TabKind::Chat}};

INSTANTIATE_TEST_SUITE_P(
    Table, IrcHabitTest,
    ::testing::Values(
        HabitCase{"ShortJoin", kTabs, "Status", "/j #y key", "join #y key\n", {u"Status"_s, u"#x"_s, u"bob"_s}},
        HabitCase{"CloseAChat", kTabs, "bob", "/close", "", {u"Status"_s, u"#x"_s}},
        // A channel closes once the server confirms the part, as its menu's Close does.
        HabitCase{"CloseAChannel", kTabs, "#x", "/close", "PART #x :Gone\n", {u"Status"_s, u"#x"_s, u"bob"_s}},
        HabitCase{"CloseAChannelOffline", kTabs, "#x", "/close", "", {u"Status"_s, u"bob"_s}, false},
        HabitCase{"CloseStatusStays", kTabs, "Status", "/close", "", {u"Status"_s, u"#x"_s, u"bob"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
