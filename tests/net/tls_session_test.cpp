// TLS against a real ngircd with a self-signed certificate, and against scripted servers.

#include "client/client_context.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "support/fake_shell.h"
#include "support/file_bytes.h"
#include "support/ngircd_fixture.h"
#include "support/scripted_server.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class Tls : public ::testing::Test {
 protected:
  void SetUp() override {
    InitialiseDefaults(settings);
    settings.SetDword(u"Options", 0);  // no identd, no reconnect
    settings.SetString(u"nick", u"pocketfan", 120);
    settings.SetString(u"email", u"me@home", 240);
    settings.SetString(u"fullname", u"Pocket Fan", 500);
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
  }
  void UseServer(const QByteArray& ports) { WriteBytes(ServerListPath(settings), "T\t127.0.0.1\t+" + ports + "\t\r\n"); }
  QStringList Lines() const {
    QStringList lines;
    for (qsizetype i = 0; i < ctx.tabs.At(0)->lines->LineCount(); ++i) lines << ctx.tabs.At(0)->lines->Line(i).text;
    return lines;
  }
  // Connects and waits until registered (true, then disconnects) or refused (false).
  bool Register() {
    control.Connect();
    RunUntil([&] { return !control.IsConnecting() && (ctx.session.serverSocket < 0 || !ctx.session.currentNick.isEmpty()); }, 10000);
    if (ctx.session.currentNick.isEmpty()) return false;
    control.RequestDisconnect(), control.PollTick();
    return ctx.session.serverSocket == kNoSocket;
  }

  QCoreApplication& app = TestApp();
  QTemporaryDir home;
  SettingsStore settings{home.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};
  SessionControl control{ctx};
};

// The first connect asks, pins on Yes (beside another server's pin) and registers over
// TLS; the next trusts the pin without asking. A new certificate is asked about again: No
// refuses it, a later Yes replaces the pin.
TEST_F(Tls, TrustOnFirstUsePinsAndAsksAgainForANewCertificate) {
  NgircdServer ngircd(true);
  ASSERT_TRUE(ngircd.Start()) << "ngircd did not start";
  const QString port = QString::number(ngircd.TlsPort()), pins = home.path() + u"/tls_pins.txt"_s;
  UseServer(port.toLatin1());
  const auto asked = [](const QString& fingerprint) { return FakeShell::Message{u"Trust this certificate for 127.0.0.1?"_s,
      u"It could not be verified: self-signed certificate. Subject: CN=irc.test.local. SHA-256 fingerprint: "_s + fingerprint}; };
  const QString first = ngircd.CertificateFingerprint();
  WriteBytes(pins, "other.example\tAA:01\n");
  shell.yesNoAnswers = {true};
  ASSERT_TRUE(Register()) << Lines().join(u'\n').toStdString();
  ASSERT_TRUE(Register());
  EXPECT_EQ(shell.questions, QList<FakeShell::Message>{asked(first)});
  EXPECT_EQ(ReadBytes(pins), "other.example\tAA:01\n127.0.0.1\t" + first.toLatin1() + '\n');
  EXPECT_EQ(QFileInfo(pins).permissions(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
  const qsizetype connecting = Lines().indexOf(u"* Connecting to 127.0.0.1 ("_s + port + u')');
  EXPECT_EQ(Lines().value(connecting + 1), u"* Connected with TLS (TLSv1.3, TLS_AES_256_GCM_SHA384)"_s);

  ngircd.Stop();
  ASSERT_TRUE(ngircd.NewCertificate() && ngircd.Start());
  const QString second = ngircd.CertificateFingerprint();
  EXPECT_FALSE(Register());
  EXPECT_EQ(Lines().last(), u"* TLS: certificate not trusted: self-signed certificate"_s);
  shell.yesNoAnswers = {true};
  EXPECT_TRUE(Register());
  EXPECT_EQ(shell.questions, (QList<FakeShell::Message>{asked(first), asked(second), asked(second)}));
  EXPECT_EQ(ReadBytes(pins), "other.example\tAA:01\n127.0.0.1\t" + second.toLatin1() + '\n');
}

// A server that does not speak TLS, or goes away, or stays silent: one clear line on
// Status within the connect time-out, and nothing left open.
TEST_F(Tls, BrokenHandshakesAreToldAndLeaveNothingOpen) {
  const std::tuple<QByteArray, bool, QString> cases[] = {  // the server's reply, whether it closes, the reason
      {":irc.test NOTICE AUTH :*** Looking up your hostname\r\n", false, u"wrong version number"_s},
      {{}, true, u"unexpected eof while reading"_s},
      {{}, false, u"no answer from the server in time"_s},
  };
  control.connectTimeout = 1s;
  for (const auto& [reply, close, reason] : cases) {
    ScriptedServer server;
    UseServer(QByteArray::number(server.Port()));
    control.Connect();
    ASSERT_TRUE(server.WaitFor("\x16\x03"));  // a TLS handshake record
    server.Send(reply);
    if (close) server.CloseClient();
    ASSERT_TRUE(RunUntil([&] { return !control.IsConnecting(); }, 5000));
    EXPECT_EQ(Lines().last(), u"* TLS: handshake failed: "_s + reason);
    EXPECT_TRUE(ctx.session.serverSocket == kNoSocket && server.WaitForClose() && shell.questions.isEmpty());
  }
}

TEST(TlsPorts, APlusMarksThePiecesPorts) {
  const std::tuple<const char16_t*, int, bool> cases[] = {
      {u"6669-6660,6667", 6667, false}, {u" +7000-7000, +6697 ", 6697, true}, {u"+6697-6696", -1, false}};
  for (const auto& [ports, port, tls] : cases)
    EXPECT_EQ(std::pair(PickServerPort(ports).port, PickServerPort(ports).tls), std::pair(port, tls));
  EXPECT_TRUE(ParsePortList(u"6667,+6697-6698").at(1).tls);
}

}  // namespace
