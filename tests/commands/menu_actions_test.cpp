// Menu commands and pop-up menu items: the prompts they ask, the exact lines they send,
// and what they leave behind for the replies (the ban steps, the ban-list chooser).

#include "commands/command_ids.h"
#include "commands/menu_commands.h"
#include "commands/popup_actions.h"
#include "settings/word_list.h"
#include "support/command_test_support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Answer = std::optional<QString>;
using Pair = std::pair<QString, QString>;

struct MenuCase {
  friend void PrintTo(const MenuCase& c, std::ostream* os) { *os << c.command; }
  int command;
  QStringList prompt;  // title, label(s)
  std::vector<Answer> answers;
  std::vector<std::optional<Pair>> pairs;
  QByteArray sent;
  bool quit = false;
};

class MenuCommandTest : public ::testing::TestWithParam<MenuCase> {};

TEST_P(MenuCommandTest, AsksThenRunsTheLine) {
  const MenuCase& c = GetParam();
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  client.settings.SetString(u"quitmsg", u"See you", 501);
  for (const Answer& answer : c.answers) client.shell.textAnswers << answer;
  for (const auto& pair : c.pairs) client.shell.twoTextAnswers << pair;
  EXPECT_EQ(RunMenuCommand(client.ctx, c.command), c.quit);
  EXPECT_EQ(client.Sent(), c.sent);
  if (c.prompt.size() == 3) {
    ASSERT_EQ(client.shell.twoTextPrompts.size(), 1);
    EXPECT_EQ(client.shell.twoTextPrompts.front(), c.prompt);
  } else {
    ASSERT_EQ(client.shell.prompts.size(), 1);
    EXPECT_EQ(client.shell.prompts.front(), (FakeShell::Message{c.prompt[0], c.prompt[1]}));
    EXPECT_EQ(client.shell.promptEmptyRules.front(),
              c.command == kCmdQuit ? EmptyAnswer::Allowed : EmptyAnswer::Refused);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, MenuCommandTest,
    ::testing::Values(
        MenuCase{kCmdJoin, {u"Join channel"_s, u"Enter channel to join:"_s}, {u"#y"_s}, {}, "JOIN #y\n"},
        MenuCase{kCmdJoin, {u"Join channel"_s, u"Enter channel to join:"_s}, {std::nullopt}, {}, ""},
        MenuCase{kCmdPart, {u"Part channel"_s, u"Enter channel to part:"_s}, {u"#x"_s}, {},
                 "PART #x :Kelvane Tolv v1.4\n"},  // the default "partmsg"
        MenuCase{kCmdList, {u"List channels"_s, u"Enter channel(s) comma's separated:"_s}, {u"#a,#b"_s}, {},
                 "LIST #a,#b\n"},
        MenuCase{kCmdNames, {u"List nicknames on channels"_s, u"Enter channel(s) comma's separated:"_s},
                 {u"#a"_s}, {}, "NAMES #a\n"},
        MenuCase{kCmdWhoisInput, {u"Whois input"_s, u"Enter nickname:"_s}, {u"bob"_s}, {}, "WHOIS bob\n"},
        MenuCase{kCmdWhowas, {u"Whowas input"_s, u"Enter nickname:"_s}, {u"bob"_s}, {}, "WHOWAS bob\n"},
        MenuCase{kCmdWho, {u"Who input"_s, u"Enter nick or channel:"_s}, {u"#x"_s}, {}, "WHO #x\n"},
        MenuCase{kCmdNewNick, {u"Change nick"_s, u"Enter a new nick:"_s}, {u"newme"_s}, {}, "NICK newme\n"},
        MenuCase{kCmdUserhost, {u"Userhost"_s, u"Enter up to 5 space separated nicks"_s}, {u"a b"_s}, {},
                 "USERHOST a b\n"},
        MenuCase{kCmdQuit, {u"Quit IRC"_s, u"Enter a quit message:"_s}, {u""_s}, {}, "QUIT :See you\n", true},
        MenuCase{kCmdQuit, {u"Quit IRC"_s, u"Enter a quit message:"_s}, {u"bye all"_s}, {},
                 "QUIT :bye all\n", true},
        MenuCase{kCmdQuit, {u"Quit IRC"_s, u"Enter a quit message:"_s}, {std::nullopt}, {}, ""},
        MenuCase{kCmdTopicInput, {u"Topic input"_s, u"Enter channel:"_s, u"Enter new topic:"_s}, {},
                 {Pair{u"#x"_s, u"new topic"_s}}, "TOPIC #x :new topic\n"},
        MenuCase{kCmdInvite, {u"Invite input"_s, u"Enter nickname:"_s, u"Enter channel:"_s}, {},
                 {Pair{u"bob"_s, u"#x"_s}}, "INVITE bob #x\n"},
        MenuCase{kCmdKickInput, {u"Kick input"_s, u"Enter channel:"_s, u"Enter nickname:"_s}, {},
                 {Pair{u"#x"_s, u"bob"_s}}, "KICK #x bob\n"},
        MenuCase{kCmdNoticeInput, {u"Notice input"_s, u"Enter nickname:"_s, u"Enter message:"_s}, {},
                 {Pair{u"bob"_s, u"hi there"_s}}, "NOTICE bob :hi there\n"},
        MenuCase{kCmdKickInput, {u"Kick input"_s, u"Enter channel:"_s, u"Enter nickname:"_s}, {},
                 {std::nullopt}, ""}));

TEST(MenuCommands, PaletteResetOnlyAfterYes) {
  CommandClient client;
  const QByteArray changed(64, '\x11');
  client.settings.SetBinary(u"mColors", changed);
  client.shell.yesNoAnswers = {false, true};
  QByteArray palette;
  ResetColourPalette(client.ctx);
  ASSERT_TRUE(client.settings.GetBinary(u"mColors", palette, 64));
  EXPECT_EQ(palette, changed);
  ResetColourPalette(client.ctx);
  ASSERT_TRUE(client.settings.GetBinary(u"mColors", palette, 64));
  EXPECT_EQ(palette, DefaultMircPalette());
  EXPECT_EQ(client.shell.questions.back(),
            (FakeShell::Message{u"MultiColors Reset"_s,
                                u"Are you sure you want to reset to default the multicolor palette?"_s}));
}

// The nick list of #x, with alice shown as an operator.
struct NickCase {
  int command;
  std::vector<Answer> answers;
  QByteArray sent;
  QStringList shown;
};

class NickListActionTest : public ::testing::TestWithParam<NickCase> {};

TEST_P(NickListActionTest, SendsForTheNickWithoutItsRank) {
  const NickCase& c = GetParam();
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  for (const Answer& answer : c.answers) client.shell.textAnswers << answer;
  RunNickListAction(client.ctx, c.command, u"@alice");
  EXPECT_EQ(client.Sent(), c.sent);
  EXPECT_EQ(client.Shown(), c.shown);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NickListActionTest,
    ::testing::Values(
        NickCase{kCmdOp, {}, "MODE #x +o alice\n", {}}, NickCase{kCmdDeop, {}, "MODE #x -o alice\n", {}},
        NickCase{kCmdVoice, {}, "MODE #x +v alice\n", {}},
        NickCase{kCmdDevoice, {}, "MODE #x -v alice\n", {}},
        NickCase{kCmdKick, {}, "KICK #x alice\n", {}},
        NickCase{kCmdKickReason, {u"go away"_s}, "KICK #x alice :go away\n", {}},
        NickCase{kCmdKickReason, {std::nullopt}, "", {}},
        NickCase{kCmdWhois, {}, "WHOIS alice\n", {}},
        NickCase{kCmdPing, {}, "PRIVMSG alice :\x01PING 1700000000\x01\n", {u"#x|-> [alice] PING|Ping"_s}},
        NickCase{kCmdNotice, {u"hi there"_s}, "NOTICE alice :hi there\n", {u"#x|-> -alice- hi there|Normal"_s}},
        NickCase{kCmdIgnore, {}, "", {u"#x|* Added alice to ignore list|Info2"_s}},
        NickCase{kCmdUnignore, {}, "", {u"#x|* Removed alice from ignore list|Info2"_s}},
        NickCase{kCmdBan, {}, "WHOIS alice\n", {}},
        NickCase{kCmdBanKickReason, {std::nullopt}, "", {}}));

TEST(NickListActions, QueryUserhostAndIgnoreLeaveTheirState) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  RunNickListAction(client.ctx, kCmdIgnore, u"+bob");
  EXPECT_EQ(ListContains(client.settings, u"bob", u"en_ignore", u"ignore"), 0);  // first word
  RunNickListAction(client.ctx, kCmdUserhost, u"bob");
  EXPECT_TRUE(client.ctx.userhostRequested);
  RunNickListAction(client.ctx, kCmdQuery, u"bob");
  EXPECT_EQ(client.ctx.tabs.At(client.ctx.tabs.Current())->name, u"bob"_s);
  EXPECT_EQ(client.ctx.tabs.At(client.ctx.tabs.Current())->kind, TabKind::Chat);
  EXPECT_EQ(client.Sent(), "USERHOST bob\n");
}

// The ban is set from the WHOIS reply's host, the prepared kick follows, and nothing of
// that WHOIS is shown.
TEST(NickListActions, BanKickWaitsForTheWhoisReply) {
  const struct {
    int command;
    std::vector<Answer> answers;
    QByteArray afterReply;
  } cases[] = {
      {kCmdBan, {}, "MODE #x +b *!*@h.example\n"},
      {kCmdBanKick, {}, "MODE #x +b *!*@h.example\nKICK #x alice\n"},
      {kCmdBanKickReason, {u"flood"_s}, "MODE #x +b *!*@h.example\nKICK #x alice :flood\n"},
  };
  for (const auto& c : cases) {
    CommandClient client({{"#x", TabKind::Channel}}, "#x");
    for (const Answer& answer : c.answers) client.shell.textAnswers << answer;
    RunNickListAction(client.ctx, c.command, u"@alice");
    EXPECT_EQ(client.Sent(), "WHOIS alice\n") << c.command;
    client.Receive(u":irc.test 311 me alice ~a h.example * :Alice"_s);
    client.Receive(u":irc.test 318 me alice :End of WHOIS list"_s);
    EXPECT_EQ(client.Sent(), c.afterReply) << c.command;
    EXPECT_EQ(client.Shown(), QStringList()) << c.command;
  }
}

TEST(NickListActions, AnEarlierPendingKickIsKept) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  client.ctx.pendingKickLine = u"KICK #x carol"_s;
  RunNickListAction(client.ctx, kCmdBanKick, u"alice");
  EXPECT_EQ(client.ctx.pendingKickLine, u"KICK #x carol"_s);
}

struct ChannelCase {
  int command;
  QByteArray sent;
};

class ChannelModeItemTest : public ::testing::TestWithParam<ChannelCase> {};

TEST_P(ChannelModeItemTest, SendsTheModeOfTheTabsChannel) {
  CommandClient client({{"#x", TabKind::Channel}}, "Status");
  RunChannelTabAction(client.ctx, GetParam().command, 1);
  EXPECT_EQ(client.Sent(), GetParam().sent);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ChannelModeItemTest,
    ::testing::Values(ChannelCase{40401, "MODE #x +p\n"}, ChannelCase{40402, "MODE #x -p\n"},
                      ChannelCase{40403, "MODE #x +s\n"}, ChannelCase{40404, "MODE #x -s\n"},
                      ChannelCase{40405, "MODE #x +i\n"}, ChannelCase{40406, "MODE #x -i\n"},
                      ChannelCase{40407, "MODE #x +t\n"}, ChannelCase{40408, "MODE #x -t\n"},
                      ChannelCase{40409, "TOPIC #x\n"}, ChannelCase{40411, "MODE #x +n\n"},
                      ChannelCase{40412, "MODE #x -n\n"}, ChannelCase{40413, "MODE #x +m\n"},
                      ChannelCase{40414, "MODE #x -m\n"}, ChannelCase{40415, "MODE #x -l\n"},
                      ChannelCase{40416, "MODE #x +l 5\n"}, ChannelCase{40417, "MODE #x +l 10\n"},
                      ChannelCase{40418, "MODE #x +l 20\n"}, ChannelCase{40419, "MODE #x +l 50\n"},
                      ChannelCase{40420, "MODE #x +l 100\n"}, ChannelCase{40422, "MODE #x -k\n"},
                      ChannelCase{40423, "MODE #x +b\n"}));

TEST(ChannelTabActions, PromptedItemsSendOnlyOnOk) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  client.shell.textAnswers = {u"sekrit"_s, std::nullopt, u"new words"_s, std::nullopt};
  for (int command : {kCmdKeyOn, kCmdKeyOn, kCmdTopicChange, kCmdTopicChange})
    RunChannelTabAction(client.ctx, command, 1);
  EXPECT_EQ(client.Sent(), "MODE #x +k sekrit\nTOPIC #x :new words\n");
  EXPECT_EQ(client.shell.prompts[0], (FakeShell::Message{u"Channel key"_s, u"Enter channel key:"_s}));
  EXPECT_EQ(client.shell.prompts[2], (FakeShell::Message{u"Change topic to..."_s, u"Enter a new topic:"_s}));
}

TEST(ChannelTabActions, RemoveBanOffersTheServersListAndRemovesTheChoice) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  client.shell.listAnswers = {1};
  RunChannelTabAction(client.ctx, kCmdRemoveBan, 1);
  client.Receive(u":irc.test 367 me #x *!*@one alice 1700000000"_s);
  client.Receive(u":irc.test 367 me #x *!*@two alice 1700000000"_s);
  client.Receive(u":irc.test 368 me #x :End of channel ban list"_s);
  EXPECT_EQ(client.Sent(), "MODE #x +b\nMODE #x -b *!*@two\n");
  ASSERT_EQ(client.shell.listPrompts.size(), 1);
  EXPECT_EQ(client.shell.listPrompts.front(),
            (FakeShell::ListPrompt{u"#x banlist"_s, u"Select ban to remove:"_s,
                                   {u"*!*@one"_s, u"*!*@two"_s}, u"Remove"_s}));
  EXPECT_TRUE(client.ctx.actionChannel.isEmpty());
  EXPECT_TRUE(client.ctx.banList.empty());
  EXPECT_EQ(client.Shown(), QStringList());
}

TEST(ChannelTabActions, RemoveBanWithoutBansShowsAnEmptyChooser) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  RunChannelTabAction(client.ctx, kCmdRemoveBan, 1);
  client.Receive(u":irc.test 368 me #x :End of channel ban list"_s);
  ASSERT_EQ(client.shell.listPrompts.size(), 1);
  EXPECT_TRUE(client.shell.listPrompts.front().entries.isEmpty());
  EXPECT_EQ(client.Sent(), "MODE #x +b\n");
}

TEST(ChannelTabActions, CloseTabPartsWhenConnectedAndClosesWhenNot) {
  CommandClient online({{"#x", TabKind::Channel}}, "#x");
  online.settings.SetString(u"partmsg", u"Gone", 501);
  RunChannelTabAction(online.ctx, kCmdCloseTab, 1);
  EXPECT_EQ(online.Sent(), "PART #x :Gone\n");
  EXPECT_EQ(online.ctx.tabs.Count(), 2);  // the server's PART closes it
  CommandClient offline({{"#x", TabKind::Channel}}, "#x");
  offline.Disconnect();
  RunChannelTabAction(offline.ctx, kCmdCloseTab, 1);
  EXPECT_EQ(offline.ctx.tabs.Count(), 1);
}

TEST(TabActions, ClearAndScrollWorkOnTheirOwnTab) {
  CommandClient client({{"#x", TabKind::Channel}, {"bob", TabKind::Chat}}, "#x");
  for (int position : {0, 1, 2}) PrintToTab(client.ctx.tabs, position, u"line", 1);
  RunChannelTabAction(client.ctx, kCmdClear, 1);
  RunChatTabAction(client.ctx, kCmdScrollOff, 2);
  RunStatusTabAction(client.ctx, kCmdScrollOff);
  RunStatusTabAction(client.ctx, kCmdScrollOn);
  EXPECT_EQ(client.Shown(), (QStringList{u"Status|line|colour 1"_s, u"bob|line|colour 1"_s}));
  EXPECT_TRUE(client.ctx.tabs.At(0)->followNewLines);
  EXPECT_TRUE(client.ctx.tabs.At(1)->followNewLines);
  EXPECT_FALSE(client.ctx.tabs.At(2)->followNewLines);
}

TEST(TabActions, ChatAndStatusItems) {
  CommandClient client({{"bob", TabKind::Chat}}, "bob");
  client.shell.textAnswers = {u"lunch"_s};
  RunChatTabAction(client.ctx, kCmdIgnore, 1);
  RunChatTabAction(client.ctx, kCmdWhois, 1);
  RunStatusTabAction(client.ctx, kCmdAway);
  RunStatusTabAction(client.ctx, kCmdUnaway);
  RunUserAction(client.ctx, kCmdUnignore, u"bob");
  EXPECT_EQ(client.Sent(), "WHOIS bob\nAWAY :lunch\nAWAY\n");
  EXPECT_EQ(client.Shown(), (QStringList{u"Status|* Removed bob from ignore list|Info2"_s,
                                         u"bob|* Added bob to ignore list|Info2"_s}));
  EXPECT_EQ(client.shell.prompts.front(), (FakeShell::Message{u"Away information"_s, u"Enter text:"_s}));
  RunChatTabAction(client.ctx, kCmdCloseTab, 1);
  EXPECT_EQ(client.ctx.tabs.Count(), 1);
}

}  // namespace
