// Logging in with SASL while registering, against a scripted server: every byte the client
// sends and every line on Status, for each way the negotiation can end, and a login by
// client certificate over TLS (PLAIN over TLS, with multi-prefix and a capability list of
// two lines, is in tests/gui/sasl_login_test.cpp).

#include "net/sasl_accounts.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "net/tls_pins.h"
#include "settings/settings_flags.h"
#include "support/irc_client_fixture.h"
#include "support/file_bytes.h"
#include "support/scripted_server.h"
#include "support/tls_scripted_server.h"

#include <QFileInfo>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QByteArray kCap = "CAP LS 302\nnick pocketfan\nuser me home tolv :Pocket Fan\n", kLogin = "AUTHENTICATE PLAIN\nAUTHENTICATE ";
const QByteArray kOffer = ":irc.test CAP * LS :sasl\r\n:irc.test CAP pocketfan ACK :sasl\r\nAUTHENTICATE +\r\n";
const QByteArray kWelcome = ":irc.test 001 pocketfan :Welcome\r\n", kLongPassword(280, 'x');  // base64 of exactly 400
const QByteArray kAccount = "127.0.0.1\tPLAIN\tpocketfan\tallow-plain\tsecret\n", kSecret = "cG9ja2V0ZmFuAHBvY2tldGZhbgBzZWNyZXQ=\n";

// The file, the server's lines (none: it never answers), all the client sends, and the Status
// tab ("%C" for the "* Connecting to" line, "%F" for the file's path).
struct SaslCase { const char* name; QByteArray file, script, sent; QString status; };

const SaslCase kCases[] = {
    {"FailureGoesOn", "# notes\nbad\n127.0.0.1\tplain\tpocketfan\tallow-plain\tsecret\nother\tPLAIN\tx\t-\ty\nthird\tEXTERNAL\tx\t-\t\n", kOffer + ":irc.test 904 pocketfan :Bad login\r\n" + kWelcome,
     kCap + "CAP REQ :sasl\n" + kLogin + kSecret + "CAP END\n", u"* SASL: lines 2, 5 of %F could not be read; kept as it is, not used\n%C\n* SASL failed: Bad login\nWelcome"_s},
    {"FailureDisconnects", "127.0.0.1\tPLAIN\tpocketfan\tallow-plain,disconnect\tsecret\n", kOffer + ":irc.test 904 pocketfan :Bad\r\n",
     kCap + "CAP REQ :sasl\n" + kLogin + kSecret + "QUIT\n", u"%C\n* SASL failed: Bad\n* Disconnected"_s},
    {"MechanismsListed", kAccount, kOffer + ":irc.test 908 pocketfan EXTERNAL :are available\r\n:irc.test 904 pocketfan :Bad\r\n" + kWelcome,
     kCap + "CAP REQ :sasl\n" + kLogin + kSecret + "CAP END\n", u"%C\n* SASL failed: the server offers only EXTERNAL\nWelcome"_s},
    {"OnlyExternal", kAccount, ":irc.test CAP * LS :sasl=EXTERNAL\r\n" + kWelcome, kCap + "CAP END\n", u"%C\n* SASL not attempted: the server offers only EXTERNAL\nWelcome"_s},
    {"NotOffered", kAccount, ":irc.test CAP * LS :multi-prefix\r\n" + kWelcome, kCap + "CAP END\n", u"%C\n* SASL not attempted: the server does not offer it\nWelcome"_s},
    {"Refused", kAccount, ":irc.test CAP * LS :sasl\r\n:irc.test CAP pocketfan NAK :sasl\r\n" + kWelcome, kCap + "CAP REQ :sasl\nCAP END\n",
     u"%C\n* SASL failed: the server refused sasl\nWelcome"_s},
    {"CapUnknown", kAccount, ":irc.test 421 * CAP :Unknown command\r\n" + kWelcome, kCap, u"%C\n* SASL not attempted: the server does not know CAP (Unknown command)\nWelcome"_s},
    {"RegisteredWithoutCap", kAccount, kWelcome, kCap, u"%C\n* SASL not attempted: the server registered us without answering CAP\nWelcome"_s},
    {"NoAnswerInTime", kAccount, {}, kCap + "CAP END\n", u"%C\n* SASL failed: no answer from the server in 0 seconds"_s},
    {"PlainLinkNotAllowed", "127.0.0.1\tPLAIN\tpocketfan\t-\tsecret\n", kWelcome, kCap.mid(11),
     u"* SASL not attempted: the connection is not encrypted (the Server dialog can allow it)\n%C\nWelcome"_s},
    {"CertificateWithoutTls", "127.0.0.1\tEXTERNAL\t\tallow-plain\tclient.pem\n", kWelcome, kCap.mid(11),
     u"* SASL not attempted: a client certificate needs a TLS connection (a port with \"+\")\n%C\nWelcome"_s},
    {"CredentialsOfFourHundred", "127.0.0.1\tPLAIN\tpocketfan\tallow-plain\t" + kLongPassword + '\n', kOffer + ":irc.test 903 pocketfan :Yes\r\n" + kWelcome,
     kCap + "CAP REQ :sasl\n" + kLogin + ("pocketfan\0pocketfan\0"_ba + kLongPassword).toBase64() + "\nAUTHENTICATE +\nCAP END\n", u"%C\n* SASL: Yes\nWelcome"_s},
};

class Sasl : public ::testing::TestWithParam<SaslCase>, protected IrcClientFixture {};

TEST_P(Sasl, Negotiation) {
  const SaslCase& c = GetParam();
  TestApp();
  ::close(std::exchange(ctx.session.serverSocket, -1));  // connected for real below
  settings.SetDword(u"Options", kOptReconnect), settings.SetDword(u"DCC", 0);  // a chosen disconnect must not come back
  settings.SetString(u"nick", u"pocketfan", 120), settings.SetString(u"email", u"me@home", 240), settings.SetString(u"fullname", u"Pocket Fan", 500);
  SessionControl control{ctx};
  ScriptedServer server;
  WriteBytes(ServerListPath(settings), "T\t127.0.0.1\t" + QByteArray::number(server.Port()) + "\t\r\n");
  WriteBytes(SaslAccountsPath(settings), c.file);
  const QString status = QString(c.status).replace(u"%C"_s, u"* Connecting to 127.0.0.1 (%1)"_s.arg(server.Port()))
                             .replace(u"%F"_s, SaslAccountsPath(settings));
  const auto lines = [&] { return StatusLines().join(u'\n'); };
  control.Connect();
  ASSERT_TRUE(server.WaitFor("user me home tolv :Pocket Fan\n"));
  if (c.script.isEmpty()) control.saslTimeout = 0ms, control.PollTick();
  server.Send(c.script);
  EXPECT_TRUE(RunUntil([&] { return lines() == status; })) << lines().toStdString();
  EXPECT_TRUE(server.WaitFor(c.sent));
  EXPECT_EQ(server.Received(), c.sent);
  EXPECT_EQ(ctx.session.currentNick, status.endsWith(u"Welcome") ? u"pocketfan"_s : QString());
  EXPECT_EQ(ctx.session.serverSocket == kNoSocket, c.sent.endsWith("QUIT\n"));
  EXPECT_FALSE(control.IsConnecting() || control.ReconnectTimerRunning());
}

INSTANTIATE_TEST_SUITE_P(Ends, Sasl, ::testing::ValuesIn(kCases), [](const auto& info) { return std::string(info.param.name); });

class SaslExternal : public ::testing::Test, protected IrcClientFixture {};

// The account names a certificate file in the home folder: missing, the user is told and
// (as chosen) nothing connects; present, TLS presents it to a server that demands one,
// and the login asks for no identity of its own.
TEST_F(SaslExternal, TheClientCertificateIsPresentedAndTheLoginNamesNoIdentity) {
  TestApp();
  ::close(std::exchange(ctx.session.serverSocket, -1));  // connected for real below
  settings.SetDword(u"Options", 0), settings.SetDword(u"DCC", 0);
  settings.SetString(u"nick", u"pocketfan", 120), settings.SetString(u"email", u"me@home", 240), settings.SetString(u"fullname", u"Pocket Fan", 500);
  NgircdServer serverKeys(true), clientKeys(true);  // only their self-signed certificates are used
  TlsScriptedServer server(serverKeys.CertPath(), serverKeys.KeyPath(), u"-Verify 1"_s);
  SessionControl control{ctx};
  WriteBytes(ServerListPath(settings), "T\t127.0.0.1\t+" + QByteArray::number(server.Port()) + "\t\r\n");
  WriteBytes(TlsPinsPath(settings), "127.0.0.1\t" + serverKeys.CertificateFingerprint().toLatin1() + '\n');
  WriteBytes(SaslAccountsPath(settings), "127.0.0.1\tEXTERNAL\t\tdisconnect\tclient.pem\n");
  const QString file = QFileInfo(SaslAccountsPath(settings)).absolutePath() + u"/client.pem"_s;

  control.Connect();
  EXPECT_EQ(StatusLines(), QStringList{u"* SASL not attempted: can't read the client certificate "_s + file});
  EXPECT_FALSE(control.IsConnecting());

  WriteBytes(file, ReadBytes(clientKeys.CertPath()) + ReadBytes(clientKeys.KeyPath()));
  control.Connect();
  ASSERT_TRUE(server.WaitFor("user me home tolv :Pocket Fan\n")) << server.Output().toStdString();
  server.Send(":irc.test CAP * LS :sasl=EXTERNAL\r\n:irc.test CAP pocketfan ACK :sasl\r\nAUTHENTICATE +\r\n"
              ":irc.test 903 pocketfan :SASL authentication successful\r\n" + kWelcome);
  ASSERT_TRUE(server.WaitFor("CAP END\n"));
  const QByteArray& out = server.Output();
  EXPECT_TRUE(out.contains("Client certificate\n") && out.contains("subject=CN = irc.test.local\n")) << out.toStdString();
  EXPECT_EQ(out.mid(out.indexOf("CAP LS 302")), "CAP LS 302\nnick pocketfan\nuser me home tolv :Pocket Fan\nCAP REQ :sasl\n"
                                                 "AUTHENTICATE EXTERNAL\nAUTHENTICATE +\nCAP END\n");
  EXPECT_TRUE(RunUntil([&] { return ctx.session.currentNick == u"pocketfan"_s; }));
  EXPECT_TRUE(StatusLines().contains(u"* SASL: SASL authentication successful"_s)) << StatusLines().join(u'\n').toStdString();
}

}  // namespace
