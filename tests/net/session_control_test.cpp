// The connect sequence, registration and the poll tick against a scripted server that
// records every byte, and one conversation against a real ngircd.

#include "client/client_context.h"
#include "commands/submit_input.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "support/fake_shell.h"
#include "support/file_bytes.h"
#include "support/ngircd_fixture.h"
#include "support/raw_irc_user.h"
#include "support/scripted_server.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class Session : public ::testing::Test {
 protected:
  void SetUp() override {
    TestApp();
    InitialiseDefaults(settings);  // identd is on and shows its requests
    settings.SetString(u"nick", u"pocketfan", 120);
    settings.SetString(u"email", u"me@home", 240);
    settings.SetString(u"fullname", u"Pocket Fan", 500);
    control.identdPort = FreeLoopbackPort();
    control.connectTimeout = 3s;
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    ctx.tabs.ActivateTab(0);
  }
  void UseServer(int port, const QByteArray& password = {}) {
    WriteBytes(ServerListPath(settings), "T\t127.0.0.1\t" + QByteArray::number(port) + '\t' + password + "\r\n");
  }
  QStringList Lines(int tab = 0) const {
    QStringList lines;
    for (qsizetype i = 0; i < ctx.tabs.At(tab)->lines->LineCount(); ++i)
      lines << ctx.tabs.At(tab)->lines->Line(i).text;
    return lines;
  }
  bool ConnectAndWait() {
    control.Connect();
    return RunUntil([&] { return !control.IsConnecting(); }, 8000);
  }
  QString Connecting(int port) const { return u"* Connecting to 127.0.0.1 (%1)"_s.arg(port); }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};
  SessionControl control{ctx};
  ScriptedServer server;
};

// One conversation with a scripted server: the registration bytes; lines read as they
// arrive, long before the one-second tick; registration completed by the first line to our
// nick, not by a NOTICE to AUTH; the notify poll on the first tick after registration and
// on every 21st; the server's identd query answered; a typed quit that leaves the link open
// until the server's farewell; "* Disconnected" in every conversation but DCC chats.
TEST_F(Session, ConversationWithAScriptedServer) {
  UseServer(server.Port(), "s3cret");
  SetFlag(settings, u"Options", kOptKeepChannelsOpen | kOptReconnect, true);
  settings.SetDword(u"en_notify", 1);
  settings.SetString(u"notify", u"bob ", 2002);
  ctx.tabs.OpenTab(u"#chan", TabKind::Channel);
  ctx.tabs.OpenTab(u"bob", TabKind::DccChat);
  ASSERT_TRUE(ConnectAndWait());
  const QByteArray registration = "PASS s3cret\nnick pocketfan\nuser me home tolv :Pocket Fan\n";
  ASSERT_TRUE(server.WaitFor(registration));
  EXPECT_EQ(server.Received(), registration);
  EXPECT_EQ(Lines().last(), Connecting(server.Port()));
  server.Send(":irc.test NOTICE AUTH :*** Looking up your hostname\r\nPING :irc.test\r\n");
  EXPECT_TRUE(server.WaitFor("PONG :irc.test\n", 500));
  EXPECT_EQ(ctx.session.currentNick, u""_s);

  // The ticks are driven by hand, without the event loop, so the timer adds none; a marker
  // line sent behind them shows when all they sent has arrived.
  server.Send(":irc.test 001 pocketfan :Welcome\r\n:irc.test 002 pocketfan :half");
  for (int tick = 0; tick < 300 && ctx.session.currentNick.isEmpty(); ++tick) control.PollTick();
  int mark = 0;
  const auto isonAfter = [&](int ticks) {
    for (int tick = 0; tick < ticks; ++tick) control.PollTick();
    const QByteArray marker = "MARK " + QByteArray::number(++mark);
    ctx.SendToServer(QString::fromLatin1(marker));
    for (QDeadlineTimer wait(3000); !server.Received().contains(marker) && !wait.hasExpired();)
      QThread::msleep(1);
    return server.Received().count("ISON bob \n");
  };
  EXPECT_EQ(isonAfter(1), 1);
  EXPECT_EQ(isonAfter(20), 1);
  EXPECT_EQ(isonAfter(1), 2);
  EXPECT_EQ(isonAfter(20), 2);
  EXPECT_EQ(isonAfter(1), 3);
  EXPECT_EQ(ctx.session.receiveBuffer, ":irc.test 002 pocketfan :half");
  server.Send(" a line\n");
  EXPECT_TRUE(RunUntil([&] { return Lines().contains(u"half a line"_s); }));

  RawIrcUser asker(control.identdPort);
  asker.Send("6667, 1025\r\n");
  EXPECT_TRUE(asker.WaitFor("6667, 1025 : USERID : UNIX : tolv\r\n", 3000));
  EXPECT_TRUE(Lines().contains(u"* Identd request from 127.0.0.1"_s));
  EXPECT_EQ(Lines().filter(u"Identd can't"_s), QStringList());  // a port it could bind is not told

  EXPECT_TRUE(SubmitInputText(ctx, u"/quit bye"_s));
  EXPECT_TRUE(server.WaitFor("quit :bye\n"));
  RunUntil([] { return false; }, 1200);  // the server takes its time to answer
  ASSERT_NE(ctx.session.serverSocket, kNoSocket);
  server.Send("ERROR :Closing Link: pocketfan (bye)\r\n");
  server.CloseClient();
  ASSERT_TRUE(RunUntil([&] { return ctx.session.serverSocket == kNoSocket; }));
  EXPECT_EQ(Lines().mid(Lines().size() - 2), (QStringList{u"Closing Link: pocketfan (bye)"_s, u"* Disconnected"_s}));
  EXPECT_EQ(Lines(1).last(), u"* Disconnected"_s);
  EXPECT_TRUE(Lines(2).isEmpty());
  EXPECT_FALSE(control.IsConnecting() || control.PollTimerRunning() || ctx.session.userQuit);
}

// A server gone silent is asked with a PING of our own; its PONG keeps the link and is not
// shown; a second silence past the PING ends the link as a lost one.
TEST_F(Session, ASilentServerIsPingedThenGivenUp) {
  UseServer(server.Port());
  control.silenceBeforePing = 300ms;
  control.silenceAfterPing = 300ms;
  ASSERT_TRUE(ConnectAndWait());
  server.Send(":irc.test 001 pocketfan :Welcome\r\n");
  const auto tickUntil = [&](const std::function<bool()>& done) {
    return RunUntil([&] { return control.PollTick(), done(); }, 5000);
  };
  ASSERT_TRUE(tickUntil([&] { return server.Received().contains("PING :tolv-1\n"); }));
  server.Send(":irc.test PONG irc.test :tolv-1\r\n");
  ASSERT_TRUE(tickUntil([&] { return server.Received().contains("PING :tolv-2\n"); }));
  EXPECT_EQ(Lines().filter(u"tolv-1"_s), QStringList());
  ASSERT_TRUE(tickUntil([&] { return ctx.session.serverSocket == kNoSocket; }));
  EXPECT_TRUE(server.WaitForClose());
  const QStringList last = Lines().mid(Lines().size() - 2);
  EXPECT_TRUE(last.value(0).startsWith(u"* No answer from the server for "_s)) << last.value(0).toStdString();
  EXPECT_TRUE(last.value(0).endsWith(u" seconds: the connection is lost"_s));
  EXPECT_EQ(last.value(1), u"* Disconnected"_s);
}

// Failures are told, and nothing stays open. Each connect closes the channel tabs unless
// they are to be rejoined or kept; a port identd cannot bind is told once.
TEST_F(Session, FailuresTellTheUserAndLeaveNothingOpen) {
  int identd = 0;
  const int taken = OpenListener(0, identd);
  control.identdPort = identd;
  const struct {
    QByteArray line;
    QString status;   // empty: none expected
    QString message;  // empty: none expected
    quint32 options;
    int tabsAfter;
  } cases[] = {
      {"T\t127.0.0.1\t" + QByteArray::number(FreeLoopbackPort()) + "\t", u"* [10061] Software caused connection abort"_s, {}, 0, 2},
      {"T\tno-such-host.invalid\t6667\t", u"* [11001] Software caused connection abort"_s, {}, kOptRejoinOnConnect, 3},
      {"T\t127.0.0.1\t6669-6660\t", {}, u"Select the IRC server first!~"_s, kOptKeepChannelsOpen, 3},
      {"", {}, u"Select the IRC server first!~"_s, 0, 2},
  };
  ctx.tabs.OpenTab(u"bob", TabKind::Chat);
  for (const auto& c : cases) {
    shell.messages.clear();
    WriteBytes(ServerListPath(settings), c.line + "\r\n");
    settings.SetDword(u"Options", c.options | kOptIdentdEnable);
    ctx.tabs.OpenTab(u"#chan", TabKind::Channel);
    ASSERT_TRUE(ConnectAndWait());
    EXPECT_EQ(ctx.tabs.Count(), c.tabsAfter);
    EXPECT_EQ(ctx.session.serverSocket, kNoSocket);
    EXPECT_FALSE(control.PollTimerRunning() || control.ReconnectTimerRunning());
    EXPECT_EQ(c.status.isEmpty() ? QString() : Lines().last(), c.status);
    using Messages = QList<FakeShell::Message>;
    EXPECT_EQ(shell.messages, c.message.isEmpty() ? Messages() : Messages({{u"Error!"_s, c.message}}));
    ctx.tabs.CloseTabByName(u"#chan", TabKind::Channel);
  }
  EXPECT_EQ(Lines().count(u"* Identd can't listen on port %1: Address already in use"_s.arg(identd)), 1);
  CloseSocketQuietly(taken);
}

// Registration is not sent without a nick and an e-mail address with "@"; with Reconnect on,
// it is tried again five seconds later, until the user cancels.
TEST_F(Session, IncompleteUserOptionsStopRegistrationAndRetryWithReconnect) {
  settings.SetString(u"email", u"no-at-sign", 240);
  for (const bool reconnect : {false, true}) {
    ScriptedServer fresh;
    UseServer(fresh.Port());
    SetFlag(settings, u"Options", kOptReconnect, reconnect);
    shell.messages.clear();
    ASSERT_TRUE(ConnectAndWait());
    EXPECT_EQ(shell.messages, (QList<FakeShell::Message>{{u"Error!"_s, u"First fill in the user options!"_s}}));
    EXPECT_TRUE(fresh.WaitForClose());
    EXPECT_EQ(fresh.Received(), "");
    EXPECT_EQ(control.ReconnectTimerRunning(), reconnect);
    EXPECT_FALSE(Lines().contains(Connecting(fresh.Port())));
  }
  control.ToggleConnection();  // cancels the pending retry
  EXPECT_FALSE(control.ReconnectTimerRunning());
}

// Against ngircd: a nick in use gives way to "alternick", pings are answered, a KILL brings
// the client back at once, and after /quit the server's farewell is shown and it stays away.
TEST_F(Session, AgainstNgircd) {
  NgircdServer ngircd;
  ASSERT_TRUE(ngircd.Start()) << "ngircd did not start";
  UseServer(ngircd.Port());
  settings.SetString(u"alternick", u"tolvfan", 60);
  SetFlag(settings, u"Options", kOptReconnect, true);
  RawIrcUser oper(ngircd.Port(), "pocketfan");
  ASSERT_TRUE(oper.WaitFor(" 001 "));
  const auto registered = [&] { return !ctx.session.currentNick.isEmpty(); };
  control.Connect();
  ASSERT_TRUE(RunUntil(registered, 10000)) << Lines().join(u'\n').toStdString();
  EXPECT_EQ(ctx.session.currentNick, u"tolvfan"_s);
  // ngircd pings after three quiet seconds and drops a client that does not answer.
  ASSERT_TRUE(RunUntil([&] { return Lines().contains(u"PING? PONG!"_s); }, 10000));

  oper.Send("OPER tolvtest secret\r\nKILL tolvfan :test over\r\n");
  ASSERT_TRUE(RunUntil([&] { return Lines().contains(u"* Disconnected"_s); }));
  ASSERT_TRUE(RunUntil(registered, 10000)) << Lines().join(u'\n').toStdString();
  EXPECT_EQ(Lines().count(Connecting(ngircd.Port())), 2);

  EXPECT_TRUE(SubmitInputText(ctx, u"/quit bye"_s));
  ASSERT_TRUE(RunUntil([&] { return ctx.session.serverSocket == kNoSocket; }));
  RunUntil([] { return false; }, 500);
  // ngircd's farewell is "ERROR :\"bye\"": the quit message in quotes.
  EXPECT_EQ(Lines().mid(Lines().size() - 2), (QStringList{u"\"bye\""_s, u"* Disconnected"_s}));
  EXPECT_EQ(Lines().count(Connecting(ngircd.Port())), 2);
  EXPECT_EQ(shell.connectionStates.last(), false);
}

}  // namespace
