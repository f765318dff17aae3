// Logging in with SASL while registering, against a scripted server: the bytes the client
// sends and the lines on Status, for every way the negotiation can end.

#include "client/client_context.h"
#include "net/sasl_accounts.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "support/fake_shell.h"
#include "support/file_bytes.h"
#include "support/scripted_server.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto kRegister = "nick pocketfan\nuser me home tolv :Pocket Fan\n";
constexpr auto kLogin = "AUTHENTICATE PLAIN\nAUTHENTICATE cG9ja2V0ZmFuAHBvY2tldGZhbgBzZWNyZXQ=\n";
constexpr auto kAccount = "127.0.0.1\tPLAIN\tpocketfan\tallow-plain\tsecret\n";
constexpr auto kNoSasl = ":irc.test CAP * LS :multi-prefix\r\n";
constexpr auto kSaslOffer = ":irc.test CAP * LS :sasl\r\n:irc.test CAP pocketfan ACK :sasl\r\nAUTHENTICATE +\r\n";
constexpr auto kFailed = ":irc.test 904 pocketfan :SASL authentication failed\r\n";
constexpr auto kWelcome = ":irc.test 001 pocketfan :Welcome\r\n";

struct SaslCase {
  const char* name;
  QByteArray file;    // sasl_accounts.txt
  QByteArray script;  // what the server says once the client is in
  bool overdue;       // the negotiation's time runs out
  QByteArray sent;    // every byte the client sends
  QStringList status; // the Status tab ("%1" is the port)
  bool registered;
};

const QByteArray kLongPassword(280, 'x');  // the credentials' base64 fills 400 characters exactly

const SaslCase kCases[] = {
    {"LoggedIn", kAccount,
     ":irc.test CAP * LS * :multi-prefix\r\n:irc.test CAP * LS :sasl=EXTERNAL,PLAIN\r\n"
     ":irc.test CAP pocketfan ACK :sasl multi-prefix\r\nAUTHENTICATE +\r\n"
     ":irc.test 900 pocketfan pocketfan!me@home pocketfan :You are now logged in as pocketfan\r\n"
     ":irc.test 903 pocketfan :SASL authentication successful\r\n" + QByteArray(kWelcome),
     false, "CAP LS 302\n" + QByteArray(kRegister) + "CAP REQ :sasl multi-prefix\n" + kLogin + "CAP END\n",
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL: You are now logged in as pocketfan"_s, u"Welcome"_s}, true},
    {"FailureGoesOn", "bad line\n" + QByteArray(kAccount), kSaslOffer + QByteArray(kFailed) + kWelcome, false,
     "CAP LS 302\n" + QByteArray(kRegister) + "CAP REQ :sasl\n" + kLogin + "CAP END\n",
     {u"* SASL: line 1 of %2 could not be read; kept as it is, not used"_s, u"* Connecting to 127.0.0.1 (%1)"_s,
      u"* SASL failed: SASL authentication failed"_s, u"Welcome"_s}, true},
    {"FailureDisconnects", "127.0.0.1\tPLAIN\tpocketfan\tallow-plain,disconnect\tsecret\n", kSaslOffer + QByteArray(kFailed),
     false, "CAP LS 302\n" + QByteArray(kRegister) + "CAP REQ :sasl\n" + kLogin + "QUIT\n",
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL failed: SASL authentication failed"_s, u"* Disconnected"_s}, false},
    {"MechanismMissing", kAccount, ":irc.test CAP * LS :sasl=EXTERNAL\r\n" + QByteArray(kWelcome), false,
     "CAP LS 302\n" + QByteArray(kRegister) + "CAP END\n",
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL not attempted: the server offers only EXTERNAL"_s, u"Welcome"_s}, true},
    {"NotOffered", kAccount, kNoSasl + QByteArray(kWelcome), false, "CAP LS 302\n" + QByteArray(kRegister) + "CAP END\n",
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL not attempted: the server does not offer it"_s, u"Welcome"_s}, true},
    {"Refused", kAccount, ":irc.test CAP * LS :sasl\r\n:irc.test CAP pocketfan NAK :sasl\r\n" + QByteArray(kWelcome), false,
     "CAP LS 302\n" + QByteArray(kRegister) + "CAP REQ :sasl\nCAP END\n",
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL failed: the server refused sasl"_s, u"Welcome"_s}, true},
    {"CapUnknown", kAccount, ":irc.test 421 * CAP :Unknown command\r\n" + QByteArray(kWelcome), false,
     "CAP LS 302\n" + QByteArray(kRegister),
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL not attempted: the server does not know CAP (Unknown command)"_s,
      u"Welcome"_s}, true},
    {"RegisteredWithoutCap", kAccount, kWelcome, false, "CAP LS 302\n" + QByteArray(kRegister),
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL not attempted: the server registered us without answering CAP"_s,
      u"Welcome"_s}, true},
    {"NoAnswerInTime", kAccount, {}, true, "CAP LS 302\n" + QByteArray(kRegister) + "CAP END\n",
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL failed: no answer from the server in 0 seconds"_s}, false},
    {"PlainLinkNotAllowed", "127.0.0.1\tPLAIN\tpocketfan\t-\tsecret\n", kWelcome, false, kRegister,
     {u"* SASL not attempted: the connection is not encrypted (the Server dialog can allow it)"_s,
      u"* Connecting to 127.0.0.1 (%1)"_s, u"Welcome"_s}, true},
    {"CredentialsOfFourHundred", "127.0.0.1\tPLAIN\tpocketfan\tallow-plain\t" + kLongPassword + '\n',
     kSaslOffer + QByteArray(":irc.test 903 pocketfan :SASL authentication successful\r\n") + kWelcome, false,
     "CAP LS 302\n" + QByteArray(kRegister) + "CAP REQ :sasl\nAUTHENTICATE PLAIN\nAUTHENTICATE " +
         ("pocketfan\0pocketfan\0"_ba + kLongPassword).toBase64() + "\nAUTHENTICATE +\nCAP END\n",
     {u"* Connecting to 127.0.0.1 (%1)"_s, u"* SASL: SASL authentication successful"_s, u"Welcome"_s}, true},
};

class Sasl : public ::testing::TestWithParam<SaslCase> {
 protected:
  void SetUp() override {
    TestApp();
    InitialiseDefaults(settings);
    settings.SetDword(u"Options", kOptReconnect);  // a chosen disconnect must not come back
    settings.SetDword(u"DCC", 0);
    settings.SetString(u"nick", u"pocketfan", 120);
    settings.SetString(u"email", u"me@home", 240);
    settings.SetString(u"fullname", u"Pocket Fan", 500);
    control.connectTimeout = 3s;
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
  }
  QStringList Lines() const {
    QStringList lines;
    for (qsizetype i = 0; i < ctx.tabs.At(0)->lines->LineCount(); ++i) lines << ctx.tabs.At(0)->lines->Line(i).text;
    return lines;
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};
  SessionControl control{ctx};
  ScriptedServer server;
};

TEST_P(Sasl, Negotiation) {
  const SaslCase& c = GetParam();
  WriteBytes(ServerListPath(settings), "T\t127.0.0.1\t" + QByteArray::number(server.Port()) + "\t\r\n");
  WriteBytes(SaslAccountsPath(settings), c.file);
  QStringList status;
  for (const QString& line : c.status) status << QString(line).replace(u"%1"_s, QString::number(server.Port())).replace(u"%2"_s, SaslAccountsPath(settings));
  control.Connect();
  ASSERT_TRUE(server.WaitFor("user me home tolv :Pocket Fan\n"));
  if (c.overdue) control.saslTimeout = 0ms, control.PollTick();
  server.Send(c.script);
  ASSERT_TRUE(RunUntil([&] { return Lines().size() >= status.size(); })) << Lines().join(u'\n').toStdString();
  EXPECT_TRUE(server.WaitFor(c.sent));
  EXPECT_EQ(server.Received(), c.sent);
  EXPECT_EQ(Lines(), status);
  EXPECT_EQ(ctx.session.currentNick, c.registered ? u"pocketfan"_s : QString());
  EXPECT_EQ(ctx.session.serverSocket == kNoSocket, c.sent.endsWith("QUIT\n"));
  EXPECT_FALSE(control.IsConnecting() || control.ReconnectTimerRunning());
}

INSTANTIATE_TEST_SUITE_P(Ends, Sasl, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
