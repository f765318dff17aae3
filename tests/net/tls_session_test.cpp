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

// With a CA of the test's own: a certificate for another name is asked about, pinned on Yes
// (beside another server's pin) and then trusted without asking; a new, self-signed one is
// asked about again, No refuses it, Yes replaces the pin; one for the address just connects.
TEST_F(Tls, UnverifiedCertificatesAreAskedAboutAndPinned) {
  NgircdServer ngircd(true);
  ASSERT_TRUE(ngircd.NewCertificate(u"DNS:irc.other.example"_s) && ngircd.Start()) << "ngircd did not start";
  qputenv("SSL_CERT_FILE", ngircd.CaPath().toUtf8());
  const QString port = QString::number(ngircd.TlsPort()), pins = home.path() + u"/tls_pins.txt"_s;
  UseServer(port.toLatin1());
  const auto asked = [](const QString& why, const QString& fingerprint) { return FakeShell::Message{u"Trust this certificate for 127.0.0.1?"_s,
      u"It could not be verified: %1. Subject: CN=irc.test.local. SHA-256 fingerprint: %2"_s.arg(why, fingerprint)}; };
  const QString first = ngircd.CertificateFingerprint();
  WriteBytes(pins, "other.example\tAA:01\n");
  shell.yesNoAnswers = {true};
  ASSERT_TRUE(Register()) << Lines().join(u'\n').toStdString();
  ASSERT_TRUE(Register());
  EXPECT_EQ(ReadBytes(pins), "other.example\tAA:01\n127.0.0.1\t" + first.toLatin1() + '\n');
  EXPECT_EQ(QFileInfo(pins).permissions(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
  EXPECT_TRUE(Lines().join(u'\n').contains(u"* Connecting to 127.0.0.1 (%1)\n* Connected with TLS (TLSv1.3, TLS_AES_256_GCM_SHA384)"_s.arg(port)));

  ngircd.Stop();
  ASSERT_TRUE(ngircd.NewCertificate() && ngircd.Start());
  const QString second = ngircd.CertificateFingerprint();
  EXPECT_FALSE(Register());
  EXPECT_EQ(Lines().last(), u"* TLS: certificate not trusted: self-signed certificate"_s);
  shell.yesNoAnswers = {true};
  EXPECT_TRUE(Register());
  EXPECT_EQ(ReadBytes(pins), "other.example\tAA:01\n127.0.0.1\t" + second.toLatin1() + '\n');

  ngircd.Stop();
  ASSERT_TRUE(ngircd.NewCertificate(u"IP:127.0.0.1"_s) && ngircd.Start());
  EXPECT_TRUE(Register());
  EXPECT_EQ(shell.questions, (QList<FakeShell::Message>{asked(u"IP address mismatch"_s, first), asked(u"self-signed certificate"_s, second),
                                                          asked(u"self-signed certificate"_s, second)}));
  qunsetenv("SSL_CERT_FILE");
}

// Not TLS, gone, or silent: one clear line on Status within the time-out, nothing left open.
TEST_F(Tls, BrokenHandshakesAreToldAndLeaveNothingOpen) {
  const std::tuple<QByteArray, bool, QString> cases[] = {  // the server's reply, whether it closes, the reason
      {":irc.test NOTICE AUTH :*** Looking up your hostname\r\n", false, u"wrong version number"_s},
      {{}, true, u"the server closed the connection"_s},
      {{}, false, u"no answer from the server in time"_s},
  };
  control.connectTimeout = 1s;
  for (const auto& [reply, close, reason] : cases) {
    ScriptedServer server;
    UseServer(QByteArray::number(server.Port()));
    control.Connect();
    server.Send(reply);
    if (close) server.CloseClient();
    ASSERT_TRUE(RunUntil([&] { return !control.IsConnecting(); }, 5000));
    EXPECT_EQ(Lines().last(), u"* TLS: handshake failed: "_s + reason);
    EXPECT_TRUE(ctx.session.serverSocket == kNoSocket && server.WaitForClose() && shell.questions.isEmpty());
  }
}

TEST(TlsPorts, APlusMarksThePiecesPorts) {
  EXPECT_TRUE(ParsePortList(u"6667, +6697-6698").at(1).tls);
}

}  // namespace
