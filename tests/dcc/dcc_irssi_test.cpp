// Interop with irssi through a real ngircd: a file irssi sends and we resume, compared
// byte for byte, and a chat both ways. Bounded waits.

#include "client/client_context.h"
#include "dcc/dcc_chat.h"
#include "dcc/dcc_engine.h"
#include "dcc/dcc_transfer.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/fake_shell.h"
#include "support/file_bytes.h"
#include "support/irssi_peer.h"
#include "support/ngircd_fixture.h"
#include "support/test_app.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kWait = 20000;

class IrssiInterop : public ::testing::Test {
 protected:
  void SetUp() override {
    TestApp();
    InitialiseDefaults(settings);
    settings.SetString(u"nick", u"tolvbot"_s, 120);
    settings.SetString(u"email", u"me@home"_s, 240);
    settings.SetString(u"fullname", u"Tolv Bot"_s, 500);
    settings.SetDword(u"server", 0);
    settings.SetDword(u"tstamps", 0);
    control.identdPort = FreeLoopbackPort();
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    ctx.tabs.ActivateTab(0);
    ASSERT_TRUE(server.Start()) << "ngircd did not start";
    ServerList list;
    list.AppendServer({u"Test"_s, u"127.0.0.1"_s, QString::number(server.Port()), QString()});
    ASSERT_TRUE(SaveServerList(list, ServerListPath(settings)));
    irssi = std::make_unique<IrssiPeer>(u"irssibot"_s, server.Port());
    if (!irssi->Start()) GTEST_SKIP() << "irssi is not installed (scripts/setup.sh installs it)";
    control.Connect();
    // The own address comes from the server's answer to our USERHOST.
    ASSERT_TRUE(RunUntil([&] { return LocalHost() == u"127.0.0.1"_s; }, kWait)) << Status().toStdString();
    ASSERT_TRUE(RunUntil([&] {
      ctx.isonRequested = true;
      ctx.SendToServer(u"ISON irssibot"_s);
      return RunUntil([&] { return Status().contains(u"ison: irssibot"_s); }, 300);
    }, kWait)) << "irssi did not come online";
  }

  QString LocalHost() const {
    QString text;
    settings.GetString(u"LocalHost", text, 30);
    return text;
  }
  QString Status() const {
    QStringList lines;
    for (qsizetype i = 0; i < ctx.tabs.At(0)->lines->LineCount(); ++i) lines << ctx.tabs.At(0)->lines->Line(i).text;
    return lines.join(u'\n');
  }
  QString Downloads() const { return home.path() + u"/downloads/"_s; }
  QByteArray MakeFile(const QString& path, qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator(size).fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
    WriteBytes(path, bytes);
    return bytes;
  }

  QTemporaryDir home;
  QTemporaryDir files;
  SettingsStore settings{home.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};
  SessionControl control{ctx};
  NgircdServer server;
  std::unique_ptr<IrssiPeer> irssi;
};

// irssi -> us, with part of the file already here: we ask to resume, irssi agrees; then
// irssi opens a chat and both sides talk until irssi closes it.
TEST_F(IrssiInterop, IrssiSendsWeResumeThenWeChat) {
  const QByteArray content = MakeFile(files.path() + u"/a.bin"_s, 3 << 20);
  WriteBytes(Downloads() + u"a.bin"_s, content.left(700000));
  shell.dccReceiveAnswers = {DccChoice::Accept};
  shell.dccExistingAnswers = {DccChoice::Resume};
  shell.dccChatAnswers = {DccChoice::Accept};
  irssi->Type("/dcc send tolvbot " + files.path().toLocal8Bit() + "/a.bin");
  const auto tabOf = [&](TabKind kind) {
    for (int i = 0; i < ctx.tabs.Count(); ++i)
      if (ctx.tabs.At(i)->kind == kind) return ctx.tabs.At(i);
    return static_cast<ConversationTab*>(nullptr);
  };
  const auto received = [&] {
    const DccTransfer* t = tabOf(TabKind::DccRecv) ? ctx.dccEngine.TransferOf(tabOf(TabKind::DccRecv)->id) : nullptr;
    return t ? t->Status() : QString();
  };
  ASSERT_TRUE(RunUntil([&] { return received() == u"File received!"_s; }, kWait))
      << received().toStdString() << "\n" << Status().toStdString();
  EXPECT_TRUE(ReadBytes(Downloads() + u"a.bin"_s) == content);
  EXPECT_EQ(shell.dccAsked.value(1), u"existing "_s + Downloads() + u"a.bin resume"_s);

  irssi->Type("/dcc chat tolvbot");
  const auto chat = [&]() -> DccChat* {
    return tabOf(TabKind::DccChat) ? ctx.dccEngine.ChatOf(tabOf(TabKind::DccChat)->id) : nullptr;
  };
  ASSERT_TRUE(RunUntil([&] { return chat() && chat()->CurrentState() == DccChat::State::Connected; }, kWait));
  const auto lines = [&] {
    QStringList out;
    const ConversationTab* tab = tabOf(TabKind::DccChat);
    for (qsizetype i = 0; i < tab->lines->LineCount(); ++i) out << tab->lines->Line(i).text;
    return out;
  };
  irssi->Type("/msg =tolvbot hello from irssi");
  EXPECT_TRUE(RunUntil([&] { return lines().contains(u"<irssibot> hello from irssi"_s); }, kWait));
  chat()->Say(u"hello from tolv"_s);
  EXPECT_TRUE(RunUntil([&] { return irssi->Screen().contains("hello from tolv"); }, kWait));
  irssi->Type("/dcc close chat tolvbot");
  EXPECT_TRUE(RunUntil([&] { return lines().contains(u"DCC session closed"_s); }, kWait)) << lines().join(u'\n').toStdString();
}

}  // namespace
