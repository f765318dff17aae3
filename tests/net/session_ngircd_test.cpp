// The session against a real IRC server (Debian's ngircd on a loopback port): connect,
// register, keep the link alive, notice its loss, and come back after a kill.

#include "client/client_context.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "support/fake_shell.h"
#include "support/ngircd_fixture.h"
#include "support/raw_irc_user.h"
#include "support/test_app.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>


using namespace Qt::StringLiterals;

namespace {

class SessionAgainstNgircd : public ::testing::Test {
 protected:
  void SetUp() override {
    TestApp();
    InitialiseDefaults(settings);
    settings.SetString(u"nick", u"tolvtest", 120);
    settings.SetString(u"email", u"me@home", 240);
    settings.SetString(u"fullname", u"Tolv Tester", 500);
    settings.SetDword(u"server", 0);
    control.identdPort = FreeLoopbackPort();
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    ctx.tabs.ActivateTab(0);
    ASSERT_TRUE(server.Start()) << "ngircd did not start";
    ServerList list;
    list.AppendServer({u"Test"_s, u"127.0.0.1"_s, QString::number(server.Port()), QString()});
    ASSERT_TRUE(SaveServerList(list, ServerListPath(settings)));
  }
  QStringList Status() const {
    QStringList lines;
    const LineStore& store = *ctx.tabs.At(0)->lines;
    for (qsizetype i = 0; i < store.LineCount(); ++i) lines << store.Line(i).text;
    return lines;
  }
  bool Registered() const { return !ctx.session.currentNick.isEmpty(); }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};
  SessionControl control{ctx};
  NgircdServer server;
};

TEST_F(SessionAgainstNgircd, RegistersAnswersPingsAndNoticesTheServerGoing) {
  control.Connect();
  ASSERT_TRUE(RunUntil([&] { return Registered(); }, 10000)) << Status().join(u'\n').toStdString();
  EXPECT_EQ(ctx.session.currentNick, u"tolvtest"_s);
  EXPECT_EQ(ctx.session.requestedNick, u""_s);
  EXPECT_EQ(Status().value(0), u"* Connecting to 127.0.0.1 (%1)"_s.arg(server.Port()));
  EXPECT_TRUE(control.PollTimerRunning());

  // ngircd pings after three quiet seconds and drops a client that does not answer.
  ASSERT_TRUE(RunUntil([&] { return Status().contains(u"PING? PONG!"_s); }, 10000));
  RunUntil([] { return false; }, 1500);
  EXPECT_TRUE(ctx.session.connected);

  server.Stop();
  ASSERT_TRUE(RunUntil([&] { return ctx.session.serverSocket == kNoSocket; }, 5000));
  EXPECT_TRUE(Status().contains(u"* Disconnected"_s));
  EXPECT_FALSE(control.PollTimerRunning());
  EXPECT_FALSE(control.ReconnectTimerRunning());
}

TEST_F(SessionAgainstNgircd, ReconnectsAtOnceAfterBeingKilled) {
  SetFlag(settings, u"Options", kOptReconnect, true);
  control.Connect();
  ASSERT_TRUE(RunUntil([&] { return Registered(); }, 10000));

  RawIrcUser oper(server.Port());
  ASSERT_TRUE(oper.connected);
  oper.Send("NICK watcher\r\nUSER watcher 0 * :Watcher\r\n");
  ASSERT_TRUE(oper.WaitFor(" 001 "));
  oper.Send("OPER tolvtest secret\r\n");
  ASSERT_TRUE(oper.WaitFor(" 381 "));
  oper.Send("KILL tolvtest :test over\r\n");

  ASSERT_TRUE(RunUntil([&] { return Status().contains(u"* Disconnected"_s); }, 5000));
  ASSERT_TRUE(RunUntil([&] { return Registered(); }, 10000)) << Status().join(u'\n').toStdString();
  EXPECT_EQ(Status().count(u"* Connecting to 127.0.0.1 (%1)"_s.arg(server.Port())), 2);
}

TEST_F(SessionAgainstNgircd, TheUsersDisconnectDoesNotReconnect) {
  SetFlag(settings, u"Options", kOptReconnect, true);
  control.Connect();
  ASSERT_TRUE(RunUntil([&] { return Registered(); }, 10000));
  RawIrcUser watcher(server.Port());
  watcher.Send("NICK watcher\r\nUSER watcher 0 * :Watcher\r\nISON tolvtest\r\n");
  ASSERT_TRUE(watcher.WaitFor(" 303 watcher :tolvtest"));

  control.ToggleConnection();
  ASSERT_TRUE(RunUntil([&] { return ctx.session.serverSocket == kNoSocket; }, 3000));
  RunUntil([] { return false; }, 500);
  EXPECT_EQ(Status().count(u"* Connecting to 127.0.0.1 (%1)"_s.arg(server.Port())), 1);
  EXPECT_FALSE(ctx.session.userQuit);  // used up by this disconnect
  ASSERT_FALSE(shell.connectionStates.isEmpty());
  EXPECT_FALSE(shell.connectionStates.last());
}

}  // namespace
