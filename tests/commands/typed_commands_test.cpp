// Lines typed into the input line: what reaches the server, byte for byte, and what the
// user sees, in which tab and style.

#include "commands/command_ids.h"
#include "commands/menu_commands.h"
#include "commands/submit_input.h"
#include "dcc/dcc_starter.h"
#include "support/command_test_support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct TypedCase {
  const char* name;
  std::vector<TabSpec> tabs;
  const char* typed;
  QByteArray sent;
  QStringList shown = {};
  const char* partmsg = "Gone";
  const char* quitmsg = "";
  bool connected = true;
};

class TypedCommandTest : public ::testing::TestWithParam<TypedCase> {};

// The first tab of a case is the one in front.
TEST_P(TypedCommandTest, SendsAndShows) {
  const TypedCase& c = GetParam();
  CommandClient client(c.tabs, c.tabs.empty() ? "Status" : c.tabs.front().name);
  client.settings.SetString(u"partmsg", QString::fromUtf8(c.partmsg), 501);
  client.settings.SetString(u"quitmsg", QString::fromUtf8(c.quitmsg), 501);
  if (!c.connected) client.Disconnect();
  const QString typed = QString::fromUtf8(c.typed);
  EXPECT_EQ(SubmitInputText(client.ctx, typed), typed.startsWith(u"/quit"_s, Qt::CaseInsensitive));
  if (c.connected) {
    EXPECT_EQ(client.Sent(), c.sent);
  }
  EXPECT_EQ(client.Shown(), c.shown);
  // The answers to these are the user's to see, not the notify poll's or the DCC address's.
  EXPECT_EQ(client.ctx.isonRequested, typed.startsWith(u"/ison"_s));
  EXPECT_EQ(client.ctx.userhostRequested, typed.startsWith(u"/USERHOST"_s));
}

const std::vector<TabSpec> kChannel = {{"#x", TabKind::Channel}};

INSTANTIATE_TEST_SUITE_P(
    Table, TypedCommandTest,
    ::testing::Values(
        TypedCase{"TextInChannel", kChannel, "hello world  ", "PRIVMSG #x :hello world\n", {u"#x|<me> hello world|Normal"_s}},
        TypedCase{"TextInStatus", {}, "hello", "", {u"Status|* You're not on a channel|navy"_s}},
        TypedCase{"TextOffline", {{"bob", TabKind::Chat}}, "hello", "", {u"bob|* Not connected to server|navy"_s}, "", "", false},
        TypedCase{"MeInStatus", {}, "/me waves", "", {u"Status|* /me: can't use /me in this window|navy"_s}},
        TypedCase{"MeInChannel", kChannel, "/me waves", "PRIVMSG #x :\x01" "ACTION waves\x01\n", {u"#x|* me waves|Action"_s}},
        TypedCase{"MsgWithoutTab", {}, "/msg bob hi", "PRIVMSG bob :hi\n", {u"Status|-> *bob* hi|Normal"_s}},
        TypedCase{"MsgIntoItsTab", {{"Bob", TabKind::Chat}}, "/MSG bob  hi there", "PRIVMSG bob :hi there\n",
                  {u"Bob|<me> hi there|Normal"_s}},
        TypedCase{"MsgWithoutText", {}, "/msg bob", "", {u"Status|* /msg: insufficient parameters|Info"_s}},
        TypedCase{"Notice", {}, "/notice bob hi there", "notice bob :hi there\n", {u"Status|-> -bob- hi there|Normal"_s}},
        TypedCase{"QueryOpensTheChat", {}, "/query bob hi", "PRIVMSG bob :hi\n", {u"bob|<me> hi|Normal"_s}},
        TypedCase{"Ping", {}, "/ping bob", "PRIVMSG bob :\x01PING 1700000000\x01\n", {u"Status|-> [bob] PING|Ping"_s}},
        TypedCase{"PartTakesPartmsg", kChannel, "/part #x", "part #x :Gone\n"},
        TypedCase{"PartAlone", kChannel, "/part", "part\n"},
        TypedCase{"PartEmptyPartmsg", kChannel, "/part #x", "part #x\n", {}, ""},
        TypedCase{"QuitTakesQuitmsg", {}, "/QUIT", "QUIT :See you\n", {}, "", "See you"},
        TypedCase{"QuitWithReason", {}, "/quit bye all", "quit :bye all\n", {}, "", "See you"},
        TypedCase{"UnknownWordKeepsItsSpelling", {}, "/Foo a b", "Foo a b\n"},
        TypedCase{"Topic", kChannel, "/topic #x hello world", "topic #x :hello world\n"},
        TypedCase{"Kick", kChannel, "/kick #x bob go away", "kick #x bob :go away\n"},
        TypedCase{"AwayAfterBlanks", {}, "/away   gone fishing", "away   :gone fishing\n"},
        TypedCase{"Ison", {}, "/ison alice bob", "ison :alice bob\n"},
        TypedCase{"Userhost", {}, "/USERHOST alice", "USERHOST alice\n"},
        TypedCase{"Quote", {}, "/quote PRIVMSG x :raw  text", "PRIVMSG x :raw  text\n"},
        TypedCase{"DccAlone", {}, "/dcc", "", {u"Status|* /dcc: insufficient parameters|Info"_s}},
        TypedCase{"Offline", kChannel, "/join #y", "", {u"#x|* /join: not connected to server|Info"_s}, "", "", false}),
    [](const auto& info) { return std::string(info.param.name); });

// The server answers QUIT with its farewell and then closes: the link stays up to read it.
TEST(TypedQuit, OnlyCallsOffTheReconnect) {
  CommandClient client;
  EXPECT_TRUE(SubmitInputText(client.ctx, u"/quit bye"_s));
  EXPECT_EQ(client.Sent(), "quit :bye\n");
  EXPECT_TRUE(client.ctx.session.userQuit);
  EXPECT_NE(client.ctx.session.serverSocket, kNoSocket);
  client.Receive(u"ERROR :Closing Link: me (Quit: bye)"_s);
  EXPECT_EQ(client.Shown(), QStringList{u"Status|Closing Link: me (Quit: bye)|Info2"_s});
  EXPECT_FALSE(client.ctx.session.connected);
}

class RecordingDcc : public DccStarter {
 public:
  void StartChat(const QString& nick) override { calls << u"chat "_s + nick; }
  void OfferFile(const QString& nick, const QString& file) override { calls << u"send "_s + nick + u'|' + file; }
  void OpenSendDialog(const QString& nick) override { calls << u"dialog "_s + nick; }
  void SayInChat(TabId tab, const QString& text) override { calls << u"say "_s + QString::number(tab) + u' ' + text; }
  QStringList calls;
};

TEST(DccCommands, ReachTheEngineWithTheirArguments) {
  CommandClient client({{"bob", TabKind::DccChat}}, "Status");
  RecordingDcc dcc;
  client.ctx.dcc = &dcc;
  client.shell.textAnswers = {u"carol"_s, std::nullopt};
  for (const char* line : {"/dcc chat bob", "/DCC Send bob my file.txt", "/dcc send bob", "/dcc chat", "/dcc chat",
                           "/dcc fetch bob"})
    SubmitInputText(client.ctx, QString::fromUtf8(line));
  RunMenuCommand(client.ctx, kCmdDccSend);
  client.ctx.tabs.ActivateTab(1);
  SubmitInputText(client.ctx, u"hi over dcc"_s);
  const QString chatId = QString::number(client.ctx.tabs.At(1)->id);
  EXPECT_EQ(dcc.calls, (QStringList{u"chat bob"_s, u"send bob|my file.txt"_s, u"dialog bob"_s, u"chat carol"_s,
                                    u"dialog "_s, u"say "_s + chatId + u" hi over dcc"_s}));
  EXPECT_EQ(client.shell.prompts.front(), (FakeShell::Message{u"DCC Chat"_s, u"Chat with user:"_s}));
  EXPECT_EQ(client.Shown(), QStringList{u"Status|* /dcc: insufficient parameters|Info"_s});
  EXPECT_EQ(client.Sent(), "");
}

}  // namespace
