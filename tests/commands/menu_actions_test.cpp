// Menu commands and pop-up menu items: the prompts they ask, the exact lines they send,
// and what they leave behind for the replies (the ban steps, the ban-list chooser).

#include "commands/command_ids.h"
#include "commands/menu_commands.h"
#include "commands/popup_actions.h"
#include "support/command_test_support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Answer = std::optional<QString>;
using Pair = std::pair<QString, QString>;

struct MenuCase {
  const char* name;
  int command;
  QStringList prompt;  // title, label(s)
  Answer answer;
  QByteArray sent;
  std::optional<Pair> pair = {};
};

class MenuCommandTest : public ::testing::TestWithParam<MenuCase> {};

TEST_P(MenuCommandTest, AsksThenRunsTheLine) {
  const MenuCase& c = GetParam();
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  client.settings.SetString(u"quitmsg", u"See you", 501);
  client.shell.textAnswers << c.answer;
  client.shell.twoTextAnswers << c.pair;
  EXPECT_EQ(RunMenuCommand(client.ctx, c.command), c.command == kCmdQuit && !c.sent.isEmpty());
  EXPECT_EQ(client.Sent(), c.sent);
  for (const FakeShell::Message& asked : client.shell.prompts) client.shell.twoTextPrompts << QStringList{asked.title, asked.text};
  EXPECT_EQ(client.shell.twoTextPrompts, QList<QStringList>{c.prompt});
}

const QStringList kJoin{u"Join channel"_s, u"Enter channel to join:"_s};
const QStringList kQuit{u"Quit IRC"_s, u"Enter a quit message:"_s};

INSTANTIATE_TEST_SUITE_P(
    Table, MenuCommandTest,
    ::testing::Values(
        MenuCase{"Join", kCmdJoin, kJoin, u"#y"_s, "JOIN #y\n"},
        MenuCase{"JoinCancelled", kCmdJoin, kJoin, std::nullopt, ""},
        MenuCase{"PartWithDefaultPartmsg", kCmdPart, {u"Part channel"_s, u"Enter channel to part:"_s}, u"#x"_s,
                 "PART #x :Kelvane Tolv v1.4\n"},
        MenuCase{"Nick", kCmdNewNick, {u"Change nick"_s, u"Enter a new nick:"_s}, u"newme"_s, "NICK newme\n"},
        MenuCase{"QuitEmptyTakesQuitmsg", kCmdQuit, kQuit, u""_s, "QUIT :See you\n"},
        MenuCase{"QuitCancelled", kCmdQuit, kQuit, std::nullopt, ""},
        MenuCase{"Topic", kCmdTopicInput, {u"Topic input"_s, u"Enter channel:"_s, u"Enter new topic:"_s}, {},
                 "TOPIC #x :new topic\n", Pair{u"#x"_s, u"new topic"_s}},
        MenuCase{"KickCancelled", kCmdKickInput, {u"Kick input"_s, u"Enter channel:"_s, u"Enter nickname:"_s}, {}, ""}),

    [](const auto& info) { return std::string(info.param.name); });

// The nick list of #x, "@alice" picked; a ban waits for the WHOIS reply's host, the
// prepared kick follows, and only another nick's WHOIS is shown.
TEST(NickListActions, SendForTheNickWithoutItsRank) {
  const QStringList kWhois{u":irc.test 311 me alice ~a h.example * :A"_s, u":irc.test 318 me alice :End of WHOIS"_s};
  const struct {
    int command;
    Answer answer;
    QByteArray sent;
    QStringList shown = {};
    QStringList replies = {};
  } cases[] = {
      {kCmdOp, {}, "MODE #x +o alice\n"},
      {kCmdKick, {}, "KICK #x alice\n"},
      {kCmdWhois, {}, "WHOIS alice\n"},
      {kCmdUserhost, {}, "USERHOST alice\n"},
      {kCmdPing, {}, "PRIVMSG alice :\x01PING 1700000000\x01\n", {u"#x|-> [alice] PING|Ping"_s}},
      {kCmdNotice, {u"hi there"_s}, "NOTICE alice :hi there\n", {u"#x|-> -alice- hi there|Normal"_s}},
      {kCmdIgnore, {}, "", {u"#x|* Added alice to ignore list|Info2"_s}},
      {kCmdBanKickReason, std::nullopt, ""},
      {kCmdBan, {}, "WHOIS alice\nMODE #x +b *!*@h.example\n", {}, kWhois},
      {kCmdBanKick, {}, "WHOIS alice\nMODE #x +b *!*@h.example\nKICK #x alice\n", {}, kWhois},
      {kCmdBanKickReason, {u"flood"_s}, "WHOIS alice\nMODE #x +b *!*@h.example\nKICK #x alice :flood\n", {}, kWhois},
      {kCmdBanKick, {}, "WHOIS alice\nKICK #x alice\n", {}, {u":irc.test 311 me ALICE"_s, u":irc.test 318 me alice :End"_s}},
      {kCmdBan, {}, "WHOIS alice\nMODE #x +b *!*@h.example\n",
       {u"Status|bob ~b@h * :B|Whois"_s, u"Status|End|Whois"_s},
       QStringList{u":irc.test 311 me bob ~b h * :B"_s, u":irc.test 318 me bob :End"_s} + kWhois},
  };
  for (const auto& c : cases) {
    CommandClient client({{"#x", TabKind::Channel}}, "#x");
    client.shell.textAnswers << c.answer;
    RunNickListAction(client.ctx, c.command, u"@alice");
    for (const QString& reply : c.replies) client.Receive(reply);
    EXPECT_EQ(client.Sent(), c.sent) << c.command;
    EXPECT_EQ(client.Shown(), c.shown) << c.command;
    EXPECT_TRUE(client.ctx.pendingKickLine.isEmpty() && client.ctx.actionChannel.isEmpty()) << c.command;
  }
}

TEST(ChannelTabActions, ModeItemsSendTheModeOfTheTabsChannel) {
  CommandClient client({{"#x", TabKind::Channel}}, "Status");
  client.shell.textAnswers = {u"new words"_s, u"sekrit"_s};
  for (int command = kCmdFirstChannelMode; command <= kCmdFirstChannelMode + 22; ++command)
    RunChannelTabAction(client.ctx, command, 1);
  EXPECT_EQ(client.shell.prompts, (QList<FakeShell::Message>{{u"Change topic to..."_s, u"Enter a new topic:"_s},
                                                             {u"Channel key"_s, u"Enter channel key:"_s}}));
  EXPECT_EQ(client.Sent(),
            "MODE #x +p\nMODE #x -p\nMODE #x +s\nMODE #x -s\nMODE #x +i\nMODE #x -i\nMODE #x +t\nMODE #x -t\nTOPIC #x\n"
            "TOPIC #x :new words\nMODE #x +n\nMODE #x -n\nMODE #x +m\nMODE #x -m\nMODE #x -l\nMODE #x +l 5\nMODE #x +l 10\n"
            "MODE #x +l 20\nMODE #x +l 50\nMODE #x +l 100\nMODE #x +k sekrit\nMODE #x -k\nMODE #x +b\n");
}

TEST(ChannelTabActions, RemoveBanOffersTheServersListAndRemovesTheChoice) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  client.shell.listAnswers = {1};
  RunChannelTabAction(client.ctx, kCmdRemoveBan, 1);
  client.Receive(u":irc.test 367 me #x *!*@one alice 1700000000"_s);
  client.Receive(u":irc.test 367 me #X *!*@two alice"_s);
  client.Receive(u":irc.test 368 me #x :End of channel ban list"_s);
  EXPECT_EQ(client.Sent(), "MODE #x +b\nMODE #X -b *!*@two\n");
  EXPECT_EQ(client.shell.listPrompts, (QList<FakeShell::ListPrompt>{{u"#x banlist"_s, u"Select ban to remove:"_s,
                                                                     {u"*!*@one"_s, u"*!*@two"_s}, u"Remove"_s}}));
  EXPECT_TRUE(client.ctx.actionChannel.isEmpty() && client.ctx.banList.empty());
  EXPECT_EQ(client.Shown(), QStringList());
}

// Clear and Scroll work on their own tab; closing a channel parts it while connected and
// closes it only when not.
TEST(TabActions, ViewChatStatusAndCloseItems) {
  CommandClient client({{"#x", TabKind::Channel}, {"bob", TabKind::Chat}}, "bob");
  client.settings.SetString(u"partmsg", u"Gone", 501);
  for (int position : {0, 1, 2}) PrintToTab(client.ctx.tabs, position, u"line", 1);
  client.shell.textAnswers = {u"lunch"_s};
  RunChannelTabAction(client.ctx, kCmdClear, 1);
  RunChatTabAction(client.ctx, kCmdScrollOff, 2);
  RunStatusTabAction(client.ctx, kCmdScrollOff);
  RunStatusTabAction(client.ctx, kCmdScrollOn);
  RunStatusTabAction(client.ctx, kCmdAway);
  RunStatusTabAction(client.ctx, kCmdUnaway);
  EXPECT_EQ(client.Shown(), (QStringList{u"Status|line|colour 1"_s, u"bob|line|colour 1"_s}));
  EXPECT_EQ(client.shell.prompts.front(), (FakeShell::Message{u"Away information"_s, u"Enter text:"_s}));
  EXPECT_TRUE(client.ctx.tabs.At(0)->followNewLines && client.ctx.tabs.At(1)->followNewLines);
  EXPECT_FALSE(client.ctx.tabs.At(2)->followNewLines);
  RunChatTabAction(client.ctx, kCmdCloseTab, 2);
  RunChannelTabAction(client.ctx, kCmdCloseTab, 1);
  EXPECT_EQ(client.ctx.tabs.Count(), 2);  // the server's PART closes it
  client.Disconnect();
  RunChannelTabAction(client.ctx, kCmdCloseTab, 1);
  EXPECT_EQ(client.ctx.tabs.Count(), 1);
  EXPECT_EQ(client.Sent(), "AWAY :lunch\nAWAY\nPART #x :Gone\n");
}

}  // namespace
