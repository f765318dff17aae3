// Lines typed into the input line: what reaches the server, byte for byte, and what the
// user sees, in which tab and style.

#include "commands/submit_input.h"
#include "commands/word_teacher.h"
#include "dcc/dcc_starter.h"
#include "settings/settings_flags.h"
#include "support/command_test_support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct TypedCase {
  const char* name;
  std::vector<TabSpec> tabs;
  const char* current;
  const char* typed;
  QByteArray sent;
  QStringList shown;
  bool quit = false;
  const char* partmsg = "";
  const char* quitmsg = "";
  bool connected = true;
};

void PrintTo(const TypedCase& c, std::ostream* os) { *os << c.name; }

class TypedCommandTest : public ::testing::TestWithParam<TypedCase> {};

TEST_P(TypedCommandTest, SendsAndShows) {
  const TypedCase& c = GetParam();
  CommandClient client(c.tabs, c.current);
  client.settings.SetString(u"partmsg", QString::fromUtf8(c.partmsg), 501);
  client.settings.SetString(u"quitmsg", QString::fromUtf8(c.quitmsg), 501);
  if (!c.connected) client.Disconnect();
  EXPECT_EQ(SubmitInputText(client.ctx, QString::fromUtf8(c.typed)), c.quit);
  if (c.connected) EXPECT_EQ(client.Sent(), c.sent);
  EXPECT_EQ(client.Shown(), c.shown);
}

const std::vector<TabSpec> kChannel = {{"#x", TabKind::Channel}};

INSTANTIATE_TEST_SUITE_P(
    Table, TypedCommandTest,
    ::testing::Values(
        TypedCase{"TextInChannel", kChannel, "#x", "hello world  ", "PRIVMSG #x :hello world\n",
                  {u"#x|<me> hello world|Normal"_s}},
        TypedCase{"TextInStatus", {}, "Status", "hello", "", {u"Status|* You're not on a channel|navy"_s}},
        TypedCase{"TextInFileTransfer", {{"bob", TabKind::DccSend}}, "bob", "hello", "",
                  {u"Status|* You're not on a channel|navy"_s}},  // transfers hold no text
        TypedCase{"TextOffline", {{"bob", TabKind::Chat}}, "bob", "hello", "",
                  {u"bob|* Not connected to server|navy"_s}, false, "", "", false},
        TypedCase{"OnlyBlanks", kChannel, "#x", "   ", "", {}},
        TypedCase{"MeInStatus", {}, "Status", "/me waves", "",
                  {u"Status|* /me: can't use /me in this window|navy"_s}},
        TypedCase{"MeInChannel", kChannel, "#x", "/me waves", "PRIVMSG #x :\x01" "ACTION waves\x01\n",
                  {u"#x|* me waves|Action"_s}},
        TypedCase{"MeWithoutText", kChannel, "#x", "/ME", "", {u"#x|* /ME: insufficient parameters|Info"_s}},
        TypedCase{"MsgWithoutTab", {}, "Status", "/msg bob hi", "PRIVMSG bob :hi\n",
                  {u"Status|-> *bob* hi|Normal"_s}},
        TypedCase{"MsgIntoItsTab", {{"Bob", TabKind::Chat}}, "Status", "/MSG bob  hi there",
                  "PRIVMSG bob :hi there\n", {u"Bob|<me> hi there|Normal"_s}},
        TypedCase{"MsgWithoutText", {}, "Status", "/msg bob", "",
                  {u"Status|* /msg: insufficient parameters|Info"_s}},
        TypedCase{"Notice", {}, "Status", "/notice bob hi there", "notice bob :hi there\n",
                  {u"Status|-> -bob- hi there|Normal"_s}},
        TypedCase{"QueryOpensTheChat", {}, "Status", "/query bob hi", "PRIVMSG bob :hi\n",
                  {u"bob|<me> hi|Normal"_s}},
        TypedCase{"QueryOfAChannel", {}, "Status", "/query #x hi", "", {}},
        TypedCase{"QueryWithoutNick", {}, "Status", "/query", "",
                  {u"Status|* /query: insufficient parameters|Info"_s}},
        TypedCase{"Ping", {}, "Status", "/ping bob", "PRIVMSG bob :\x01PING 1700000000\x01\n",
                  {u"Status|-> [bob] PING|Ping"_s}},
        TypedCase{"PingWithoutTarget", {}, "Status", "/ping", "", {}},
        TypedCase{"PartTakesPartmsg", kChannel, "#x", "/part #x", "part #x :Gone\n", {}, false, "Gone"},
        TypedCase{"PartAlone", kChannel, "#x", "/part", "part\n", {}, false, "Gone"},
        TypedCase{"PartWithReason", kChannel, "#x", "/part #x bye now", "part #x :bye now\n", {}, false,
                  "Gone"},
        TypedCase{"PartEmptyPartmsg", kChannel, "#x", "/part #x", "part #x\n", {}},
        TypedCase{"QuitEmptyQuitmsg", {}, "Status", "/quit", "quit\n", {}, true},
        TypedCase{"QuitTakesQuitmsg", {}, "Status", "/QUIT", "QUIT :See you\n", {}, true, "", "See you"},
        TypedCase{"QuitWithReason", {}, "Status", "/quit bye all", "quit :bye all\n", {}, true, "",
                  "See you"},
        TypedCase{"UnknownWord", {}, "Status", "/foo a b", "foo a b\n", {}},
        TypedCase{"KeepsTheSpelling", {}, "Status", "/Join #x", "Join #x\n", {}},
        TypedCase{"Topic", kChannel, "#x", "/topic #x hello world", "topic #x :hello world\n", {}},
        TypedCase{"Kick", kChannel, "#x", "/kick #x bob go away", "kick #x bob :go away\n", {}},
        TypedCase{"AwayAlone", {}, "Status", "/away", "away\n", {}},
        TypedCase{"Away", {}, "Status", "/away gone fishing", "away :gone fishing\n", {}},
        TypedCase{"Ison", {}, "Status", "/ison alice bob", "ison :alice bob\n", {}},
        TypedCase{"Quote", {}, "Status", "/quote PRIVMSG x :raw  text", "PRIVMSG x :raw  text\n", {}},
        TypedCase{"QuoteAlone", {}, "Status", "/quote", "", {}},
        TypedCase{"DccAlone", {}, "Status", "/dcc", "", {u"Status|* /dcc: insufficient parameters|Info"_s}},
        TypedCase{"Offline", kChannel, "#x", "/join #y", "",
                  {u"#x|* /join: not connected to server|Info"_s}, false, "", "", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(TypedCommandFlags, IsonAndUserhostMarkTheirAnswersAsTheUsers) {
  CommandClient client;
  SubmitInputText(client.ctx, u"/ison alice"_s);
  SubmitInputText(client.ctx, u"/USERHOST alice"_s);
  EXPECT_TRUE(client.ctx.isonRequested);
  EXPECT_TRUE(client.ctx.userhostRequested);
  EXPECT_EQ(client.Sent(), "ison :alice\nUSERHOST alice\n");
}

TEST(TypedCommandLine, TheNthBlankRunBecomesTheTrailingColon) {
  const struct {
    const char* text;
    int n;
    const char* line;
  } cases[] = {
      {"/topic #x hello world", 2, "topic #x :hello world"},
      {"/kick #x bob go away", 3, "kick #x bob :go away"},
      {"/away", 1, "away"},
      {"/away   back soon", 1, "away   :back soon"},
      {"/kick #x bob", 3, "kick #x bob"},
      {"/kick #x bob ", 3, "kick #x bob "},
      {"/join #x", 0, "join #x"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(CommandLine(QString::fromUtf8(c.text), c.n), QString::fromUtf8(c.line)) << c.text;
}

TEST(InputHistoryTest, MostRecentFirstAndEachTextOnceWhateverItsCase) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  for (const char* line : {"hello", "/join #y", "HELLO  ", "second"})
    SubmitInputText(client.ctx, QString::fromUtf8(line));
  EXPECT_EQ(client.ctx.history.Entries(), (QStringList{u"second"_s, u"HELLO"_s, u"/join #y"_s}));
  for (int i = 0; i < InputHistory::kMaxEntries + 5; ++i) client.ctx.history.Add(QString::number(i));
  EXPECT_EQ(client.ctx.history.Entries().size(), InputHistory::kMaxEntries);
  EXPECT_EQ(client.ctx.history.Entries().front(), QString::number(InputHistory::kMaxEntries + 4));
}

class RecordingTeacher : public WordTeacher {
 public:
  void TeachText(QStringView text) override { taught << text.toString(); }
  QStringList taught;
};

TEST(SelfTeaching, SentLinesAreTaughtOnlyWhenSwitchedOn) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  RecordingTeacher teacher;
  client.ctx.wordTeacher = &teacher;
  SubmitInputText(client.ctx, u"not taught"_s);
  SetFlag(client.settings, u"Files", kWhispersTeach, true);
  for (const char* line : {"plain words", "/me waves", "/msg bob hi", "/join #y"})
    SubmitInputText(client.ctx, QString::fromUtf8(line));
  EXPECT_EQ(teacher.taught,
            (QStringList{u"plain words"_s, u"/me waves"_s, u"/msg bob hi"_s, u"/join #y"_s}));
}

class RecordingDcc : public DccStarter {
 public:
  void StartChat(const QString& nick) override { calls << u"chat "_s + nick; }
  void OfferFile(const QString& nick, const QString& file) override {
    calls << u"send "_s + nick + u'|' + file;
  }
  void OpenSendDialog(const QString& nick) override { calls << u"dialog "_s + nick; }
  void SayInChat(TabId tab, const QString& text) override {
    calls << u"say "_s + QString::number(tab) + u' ' + text;
  }
  QStringList calls;
};

TEST(DccCommands, ReachTheEngineWithTheirArguments) {
  CommandClient client({{"bob", TabKind::DccChat}}, "Status");
  RecordingDcc dcc;
  client.ctx.dcc = &dcc;
  client.shell.textAnswers = {u"carol"_s, std::nullopt};
  for (const char* line : {"/dcc chat bob", "/DCC Send bob my file.txt", "/dcc send bob", "/dcc chat",
                           "/dcc chat", "/dcc fetch bob"})
    SubmitInputText(client.ctx, QString::fromUtf8(line));
  client.ctx.tabs.ActivateTab(1);
  SubmitInputText(client.ctx, u"hi over dcc"_s);
  const QString chatId = QString::number(client.ctx.tabs.At(1)->id);
  EXPECT_EQ(dcc.calls, (QStringList{u"chat bob"_s, u"send bob|my file.txt"_s, u"dialog bob"_s,
                                    u"chat carol"_s, u"say "_s + chatId + u" hi over dcc"_s}));
  EXPECT_EQ(client.shell.prompts.front(), (FakeShell::Message{u"DCC Chat"_s, u"Chat with user:"_s}));
  EXPECT_EQ(client.Shown(), QStringList{u"Status|* /dcc: insufficient parameters|Info"_s});
  EXPECT_EQ(client.Sent(), "");
}

}  // namespace
