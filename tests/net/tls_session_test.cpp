// TLS on the server connection: trust on first use, pins, refusals and broken handshakes,
// against a real ngircd with a self-signed certificate and against scripted servers.

#include "client/client_context.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "net/tls_pins.h"
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
    TestApp();
    InitialiseDefaults(settings);
    settings.SetDword(u"Options", 0);  // no identd, no reconnect
    settings.SetString(u"nick", u"pocketfan", 120);
    settings.SetString(u"email", u"me@home", 240);
    settings.SetString(u"fullname", u"Pocket Fan", 500);
    control.connectTimeout = 3s;
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
  }
  void UseServer(const QByteArray& ports) {
    WriteBytes(ServerListPath(settings), "T\t127.0.0.1\t" + ports + "\t\r\n");
  }
  QStringList Lines() const {
    QStringList lines;
    for (qsizetype i = 0; i < ctx.tabs.At(0)->lines->LineCount(); ++i) lines << ctx.tabs.At(0)->lines->Line(i).text;
    return lines;
  }
  // Connects and waits until registered (true) or the attempt is over without it (false).
  bool ConnectAndRegister() {
    control.Connect();
    RunUntil([&] { return !control.IsConnecting(); }, 8000);
    return RunUntil([&] { return !ctx.session.currentNick.isEmpty() || ctx.session.serverSocket == kNoSocket; }, 8000) &&
           !ctx.session.currentNick.isEmpty();
  }
  void Disconnect() {
    control.RequestDisconnect();
    control.PollTick();
    ASSERT_EQ(ctx.session.serverSocket, kNoSocket);
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};
  SessionControl control{ctx};
};

// The first connect asks, pins on Yes and registers over TLS; the next connect trusts the
// pin without asking; a new certificate is asked about again, and No refuses it and keeps
// the old pin.
TEST_F(Tls, TrustOnFirstUsePinsAndAsksAgainForANewCertificate) {
  NgircdServer ngircd(true);
  ASSERT_TRUE(ngircd.Start()) << "ngircd did not start";
  const QString tlsPort = QString::number(ngircd.TlsPort());
  UseServer("+" + tlsPort.toLatin1());
  const QString pins = home.path() + u"/tls_pins.txt"_s;
  const auto question = [](const QString& fingerprint) {
    return FakeShell::Message{u"Trust this certificate for 127.0.0.1?"_s,
                              u"It could not be verified: self-signed certificate. Subject: CN=irc.test.local. "
                              u"SHA-256 fingerprint: "_s + fingerprint};
  };
  const QString first = OpensslFingerprint(ngircd.CertificatePath());
  ASSERT_FALSE(first.isEmpty());

  shell.yesNoAnswers = {true};
  ASSERT_TRUE(ConnectAndRegister()) << Lines().join(u'\n').toStdString();
  EXPECT_EQ(shell.questions, QList<FakeShell::Message>{question(first)});
  EXPECT_EQ(ReadBytes(pins), "127.0.0.1\t" + first.toLatin1() + '\n');
  EXPECT_EQ(QFileInfo(pins).permissions(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
  const qsizetype connecting = Lines().indexOf(u"* Connecting to 127.0.0.1 ("_s + tlsPort + u')');
  ASSERT_GE(connecting, 0);
  EXPECT_EQ(Lines().value(connecting + 1), u"* Connected with TLS (TLSv1.3, TLS_AES_256_GCM_SHA384)"_s);
  Disconnect();

  ASSERT_TRUE(ConnectAndRegister()) << Lines().join(u'\n').toStdString();
  EXPECT_EQ(shell.questions.size(), 1);
  Disconnect();

  ngircd.Stop();
  ASSERT_TRUE(ngircd.NewCertificate());
  ASSERT_TRUE(ngircd.Start());
  const QString second = OpensslFingerprint(ngircd.CertificatePath());
  ASSERT_NE(second, first);
  shell.connectionStates.clear();
  EXPECT_FALSE(ConnectAndRegister());
  EXPECT_EQ(shell.questions, (QList<FakeShell::Message>{question(first), question(second)}));
  EXPECT_EQ(Lines().last(), u"* TLS: certificate not trusted: self-signed certificate"_s);
  EXPECT_EQ(shell.connectionStates, (QList<bool>{true, false}));
  EXPECT_EQ(ReadBytes(pins), "127.0.0.1\t" + first.toLatin1() + '\n');
}

// A server that does not speak TLS, or goes away, or stays silent: one clear line on
// Status within the connect time-out, and nothing left open.
TEST_F(Tls, BrokenHandshakesAreToldAndLeaveNothingOpen) {
  const struct {
    const char* name;
    QByteArray reply;  // empty: none
    bool close;
    QString status;
  } cases[] = {
      {"plain IRC", ":irc.test NOTICE AUTH :*** Looking up your hostname\r\n", false,
       u"* TLS: handshake failed: wrong version number"_s},
      {"closed", {}, true, u"* TLS: handshake failed: unexpected eof while reading"_s},
      {"silent", {}, false, u"* TLS: handshake failed: no answer from the server in time"_s},
  };
  control.connectTimeout = 1s;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ScriptedServer server;
    UseServer("+" + QByteArray::number(server.Port()));
    control.Connect();
    ASSERT_TRUE(server.WaitFor("\x16\x03"));  // a TLS handshake record
    if (!c.reply.isEmpty()) server.Send(c.reply);
    if (c.close) server.CloseClient();
    ASSERT_TRUE(RunUntil([&] { return !control.IsConnecting(); }, 5000));
    EXPECT_EQ(Lines().last(), c.status);
    EXPECT_EQ(ctx.session.serverSocket, kNoSocket);
    EXPECT_TRUE(server.WaitForClose());
    EXPECT_TRUE(shell.questions.isEmpty());
  }
}

// A "+" piece makes its ports TLS ones; the number is read as before.
TEST(TlsPorts, APlusMarksThePiecesPorts) {
  const struct {
    const char16_t* ports;
    int port;
    bool tls;
  } cases[] = {{u"+6697", 6697, true},         {u" +6697-6698,6667-6666", -2, true},
               {u"6669-6660,6667", 6667, false}, {u"6669-6660, +6697 ", 6697, true},
               {u"+6697-6696", -1, false}};
  for (const auto& c : cases) {
    const PortChoice choice = PickServerPort(c.ports);
    const int port = c.port == -2 && (choice.port == 6697 || choice.port == 6698) ? -2 : choice.port;  // -2: either
    EXPECT_EQ(std::pair(port, choice.tls), std::pair(c.port, c.tls)) << QStringView(c.ports).toString().toStdString();
  }
}

// Pinning a host replaces its pin and keeps the others'; the fingerprint's case does not
// matter, the host's does.
TEST(TlsPins, OnePinPerHost) {
  QTemporaryDir dir;
  const QString path = dir.path() + u"/tls_pins.txt"_s;
  WriteBytes(path, "a.example\tAA:01\r\nbroken line\nb.example\tBB:02\n");
  ASSERT_TRUE(Pin(path, u"a.example"_s, u"CC:03"_s));
  EXPECT_EQ(ReadBytes(path), "b.example\tBB:02\na.example\tCC:03\n");
  EXPECT_TRUE(IsPinned(path, u"b.example"_s, u"bb:02"_s));
  EXPECT_FALSE(IsPinned(path, u"a.example"_s, u"AA:01"_s));
  EXPECT_FALSE(IsPinned(path, u"B.example"_s, u"BB:02"_s));
  EXPECT_FALSE(IsPinned(path, u"b.example"_s, QString()));
}

}  // namespace
