// The connect sequence and registration against a scripted server that records every
// byte, and the failures a user can meet on the way.

#include "client/client_context.h"
#include "commands/submit_input.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "support/fake_shell.h"
#include "support/ngircd_fixture.h"
#include "support/scripted_server.h"
#include "support/test_app.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class SessionControlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TestApp();
    InitialiseDefaults(settings);
    settings.SetString(u"nick", u"pocketfan", 120);
    settings.SetString(u"email", u"me@home", 240);
    settings.SetString(u"fullname", u"Pocket Fan", 500);
    control.identdPort = FreeLoopbackPort();
    control.connectTimeout = 3s;
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    ctx.tabs.ActivateTab(0);
  }
  void UseServer(const QString& host, const QString& ports, const QString& password = {}) {
    ServerList list;
    list.AppendServer({u"Test"_s, host, ports, password});
    ASSERT_TRUE(SaveServerList(list, ServerListPath(settings)));
  }
  QStringList Lines(int position) const {
    QStringList lines;
    const LineStore& store = *ctx.tabs.At(position)->lines;
    for (qsizetype i = 0; i < store.LineCount(); ++i) lines << store.Line(i).text;
    return lines;
  }
  bool ConnectAndWait() {
    control.Connect();
    return RunUntil([&] { return !control.IsConnecting(); }, 5000);
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};
  SessionControl control{ctx};
  ScriptedServer server;
};

TEST_F(SessionControlTest, RegistrationLinesByteForByte) {
  const struct {
    QString password;
    QByteArray expected;
  } cases[] = {
      {u""_s, "nick pocketfan\nuser me home tolv :Pocket Fan\n"},
      {u"s3cret"_s, "PASS s3cret\nnick pocketfan\nuser me home tolv :Pocket Fan\n"},
  };
  for (const auto& c : cases) {
    ScriptedServer fresh;
    UseServer(u"127.0.0.1"_s, QString::number(fresh.Port()), c.password);
    ASSERT_TRUE(ConnectAndWait());
    EXPECT_TRUE(fresh.WaitForBytes(c.expected));
    EXPECT_EQ(fresh.Received(), c.expected);
    EXPECT_TRUE(ctx.session.connected);
    EXPECT_TRUE(control.PollTimerRunning());
    EXPECT_EQ(ctx.session.requestedNick, u"pocketfan"_s);
    EXPECT_EQ(Lines(0).last(), u"* Connecting to 127.0.0.1 (%1)"_s.arg(fresh.Port()));
    control.Disconnect();
  }
}

TEST_F(SessionControlTest, ServerLinesAreReadAsSoonAsTheyArrive) {
  UseServer(u"127.0.0.1"_s, QString::number(server.Port()));
  ASSERT_TRUE(ConnectAndWait());
  ASSERT_TRUE(server.WaitForBytes("user me home"));
  server.TakeReceived();
  // A NOTICE to AUTH does not complete registration; the first line to our nick does.
  server.Send(":irc.test NOTICE AUTH :*** Looking up your hostname\r\n");
  server.Send("PING :irc.test\r\n:irc.test 001 pocketfan :Welcome\r\n:irc.test 002 pocketfan :half");
  // Read on arrival, well before the one-second tick would have polled.
  EXPECT_TRUE(RunUntil([&] { return server.Received().contains("PONG :irc.test\n"); }, 500));
  ASSERT_TRUE(RunUntil([&] { return !ctx.session.currentNick.isEmpty(); }, 2000));
  EXPECT_EQ(ctx.session.currentNick, u"pocketfan"_s);
  EXPECT_EQ(ctx.session.receiveBuffer, QByteArray(":irc.test 002 pocketfan :half"));
  server.Send(" a line\n");
  ASSERT_TRUE(RunUntil([&] { return Lines(0).contains(u"Welcome"_s) && Lines(0).contains(u"half a line"_s); }));
}

TEST_F(SessionControlTest, DisconnectMarksEveryConversationButDccTabs) {
  UseServer(u"127.0.0.1"_s, QString::number(server.Port()));
  SetFlag(settings, u"Options", kOptKeepChannelsOpen, true);
  ctx.tabs.OpenTab(u"#chan", TabKind::Channel);
  ctx.tabs.OpenTab(u"bob", TabKind::Chat);
  ctx.tabs.OpenTab(u"bob", TabKind::DccChat);
  ASSERT_TRUE(ConnectAndWait());
  server.CloseClient();
  ASSERT_TRUE(RunUntil([&] { return ctx.session.serverSocket == kNoSocket; }, 3000));
  for (int position : {0, 1, 2}) EXPECT_EQ(Lines(position).last(), u"* Disconnected"_s) << position;
  EXPECT_TRUE(Lines(3).isEmpty());
  EXPECT_FALSE(control.PollTimerRunning());
}

TEST_F(SessionControlTest, ConnectingClosesChannelTabsUnlessKept) {
  const struct {
    quint32 option;
    int tabsAfter;
  } cases[] = {{0, 2}, {kOptRejoinOnConnect, 3}, {kOptKeepChannelsOpen, 3}};
  UseServer(u"127.0.0.1"_s, QString::number(FreeLoopbackPort()));  // refused: fine here
  for (const auto& c : cases) {
    SetFlag(settings, u"Options", kOptRejoinOnConnect | kOptKeepChannelsOpen, false);
    if (c.option) SetFlag(settings, u"Options", c.option, true);
    ctx.tabs.OpenTab(u"#chan", TabKind::Channel);
    ctx.tabs.OpenTab(u"bob", TabKind::Chat);
    ASSERT_TRUE(ConnectAndWait());
    EXPECT_EQ(ctx.tabs.Count(), c.tabsAfter) << c.option;
    ctx.tabs.CloseTabByName(u"#chan", TabKind::Channel);
    ctx.tabs.CloseTabByName(u"bob", TabKind::Chat);
  }
}

TEST_F(SessionControlTest, FailuresTellTheUserAndLeaveNothingOpen) {
  const int closedPort = FreeLoopbackPort();
  const struct {
    QString host;
    QString ports;
    QString statusLine;  // empty: none expected
    QString message;     // empty: none expected
  } cases[] = {
      {u"127.0.0.1"_s, QString::number(closedPort), u"* [10061] Software caused connection abort"_s, {}},
      {u"no-such-host.invalid"_s, u"6667"_s, u"* [11001] Software caused connection abort"_s, {}},
      {u"127.0.0.1"_s, u"6669-6660"_s, {}, u"Select the IRC server first!~"_s},
  };
  for (const auto& c : cases) {
    shell.messages.clear();
    UseServer(c.host, c.ports);
    control.Connect();
    ASSERT_TRUE(RunUntil([&] { return !control.IsConnecting(); }, 8000));
    EXPECT_EQ(ctx.session.serverSocket, kNoSocket);
    EXPECT_FALSE(control.PollTimerRunning());
    EXPECT_FALSE(control.ReconnectTimerRunning());
    if (!c.statusLine.isEmpty()) {
      EXPECT_EQ(Lines(0).last(), c.statusLine);
    }
    if (c.message.isEmpty()) {
      EXPECT_TRUE(shell.messages.isEmpty());
    } else {
      ASSERT_EQ(shell.messages.size(), 1);
      EXPECT_EQ(shell.messages[0].title, u"Error!"_s);
      EXPECT_EQ(shell.messages[0].text, c.message);
    }
  }
  settings.SetDword(u"server", 5);  // past the end of the list
  control.Connect();
  EXPECT_EQ(shell.messages.last().text, u"Select the IRC server first!~"_s);
}

TEST_F(SessionControlTest, IdentdThatCannotListenSaysSoOnce) {
  int port = 0;
  const int taken = OpenListener(0, port);
  ASSERT_NE(taken, kNoSocket);
  control.identdPort = port;
  UseServer(u"127.0.0.1"_s, QString::number(FreeLoopbackPort()));  // refused: fine here
  ASSERT_TRUE(ConnectAndWait());
  ASSERT_TRUE(ConnectAndWait());
  EXPECT_EQ(Lines(0).count(u"* Identd can't listen on port %1: Address already in use"_s.arg(port)), 1)
      << Lines(0).join(u'\n').toStdString();
  CloseSocketQuietly(taken);
}

TEST_F(SessionControlTest, IncompleteUserOptionsStopRegistrationAndRetryWithReconnect) {
  for (const bool reconnect : {false, true}) {
    ScriptedServer fresh;
    UseServer(u"127.0.0.1"_s, QString::number(fresh.Port()));
    settings.SetString(u"email", u"no-at-sign", 240);
    SetFlag(settings, u"Options", kOptReconnect, reconnect);
    shell.messages.clear();
    ASSERT_TRUE(ConnectAndWait());
    ASSERT_EQ(shell.messages.size(), 1);
    EXPECT_EQ(shell.messages[0].text, u"First fill in the user options!"_s);
    EXPECT_TRUE(fresh.WaitForClientClose());
    EXPECT_EQ(fresh.Received(), QByteArray());
    EXPECT_EQ(ctx.session.serverSocket, kNoSocket);
    EXPECT_EQ(control.ReconnectTimerRunning(), reconnect);
    EXPECT_FALSE(Lines(0).contains(u"* Connecting to 127.0.0.1 (%1)"_s.arg(fresh.Port())));
    if (reconnect) {
      control.ToggleConnection();  // cancels the pending retry
      EXPECT_FALSE(control.ReconnectTimerRunning());
    }
  }
}

TEST_F(SessionControlTest, ASilentServerNeitherHangsNorRegisters) {
  UseServer(u"127.0.0.1"_s, QString::number(server.Port()));
  ASSERT_TRUE(ConnectAndWait());
  RunUntil([] { return false; }, 1200);  // a tick or so
  EXPECT_TRUE(ctx.session.connected);
  EXPECT_TRUE(ctx.session.currentNick.isEmpty());
  EXPECT_EQ(ctx.session.notifyTicks, 20);  // the notify count waits for registration
}

// The first notify poll follows the welcome at once; a typed quit leaves the link open
// until the server closes it, so its farewell is shown, and nothing reconnects.
TEST_F(SessionControlTest, QuitWaitsForTheServersFarewellAfterTheFirstNotifyPoll) {
  UseServer(u"127.0.0.1"_s, QString::number(server.Port()));
  SetFlag(settings, u"Options", kOptReconnect, true);
  settings.SetDword(u"en_notify", 1);
  settings.SetString(u"notify", u"bob ", 2002);
  ASSERT_TRUE(ConnectAndWait());
  server.Send(":irc.test 001 pocketfan :Welcome\r\n");
  EXPECT_TRUE(RunUntil([&] { return server.Received().contains("ISON bob \n"); }, 1500));
  ctx.tabs.OpenTab(u"bob", TabKind::Chat);
  ctx.tabs.ActivateTab(1);
  EXPECT_TRUE(SubmitInputText(ctx, u"/quit bye"_s));
  EXPECT_TRUE(RunUntil([&] { return server.Received().contains("quit :bye\n"); }));
  RunUntil([] { return false; }, 1500);  // the server takes its time to answer
  ASSERT_NE(ctx.session.serverSocket, kNoSocket);
  server.Send("ERROR :Closing Link: pocketfan (bye)\r\n");
  server.CloseClient();
  ASSERT_TRUE(RunUntil([&] { return ctx.session.serverSocket == kNoSocket; }, 3000));
  EXPECT_EQ(Lines(0).mid(Lines(0).size() - 2),
            (QStringList{u"Closing Link: pocketfan (bye)"_s, u"* Disconnected"_s}));
  EXPECT_FALSE(control.IsConnecting());
  EXPECT_FALSE(ctx.session.userQuit);
}

}  // namespace
