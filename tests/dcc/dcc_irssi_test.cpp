// Interop with irssi through a real ngircd: files both ways, a resumed transfer, a
// passive offer and a chat, every file compared byte for byte. Small files, bounded waits.

#include "client/client_context.h"
#include "dcc/dcc_chat.h"
#include "dcc/dcc_engine.h"
#include "dcc/dcc_transfer.h"
#include "net/server_list.h"
#include "net/session_control.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
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
  DccTransfer* Transfer(TabKind kind) {
    for (int i = ctx.tabs.Count() - 1; i >= 0; --i)
      if (ctx.tabs.At(i)->kind == kind) return ctx.dccEngine.TransferOf(ctx.tabs.At(i)->id);
    return nullptr;
  }
  QString StatusOf(TabKind kind) {
    const DccTransfer* transfer = Transfer(kind);
    return transfer ? transfer->Status() : QString();
  }
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

// irssi -> us, with part of the file already here: we ask to resume, irssi agrees.
TEST_F(IrssiInterop, IrssiSendsAndWeResume) {
  const QByteArray content = MakeFile(files.path() + u"/a.bin"_s, 3 << 20);
  WriteBytes(Downloads() + u"a.bin"_s, content.left(700000));
  shell.dccReceiveAnswers = {DccChoice::Accept};
  shell.dccExistingAnswers = {DccChoice::Resume};
  irssi->Type("/dcc send tolvbot " + files.path().toLocal8Bit() + "/a.bin");
  ASSERT_TRUE(RunUntil([&] { return StatusOf(TabKind::DccRecv) == u"File received!"_s; }, kWait))
      << StatusOf(TabKind::DccRecv).toStdString() << "\n" << Status().toStdString();
  EXPECT_TRUE(ReadBytes(Downloads() + u"a.bin"_s) == content);
  EXPECT_EQ(shell.dccAsked.value(1), u"existing "_s + Downloads() + u"a.bin resume"_s);
}

// us -> irssi, in the largest packets.
TEST_F(IrssiInterop, WeSendAndIrssiReceives) {
  const QByteArray content = MakeFile(files.path() + u"/b file.bin"_s, 4 << 20);
  ctx.dccEngine.OfferFile(u"irssibot"_s, files.path() + u"/b file.bin"_s, 8192);
  ASSERT_TRUE(RunUntil([&] { return StatusOf(TabKind::DccSend) == u"File sent!"_s; }, kWait))
      << StatusOf(TabKind::DccSend).toStdString();
  EXPECT_TRUE(ReadBytes(irssi->Downloads() + u"b_file.bin"_s) == content);
}

// irssi behind a pretend NAT: it asks us to listen, and we answer with port and token.
TEST_F(IrssiInterop, PassiveOfferFromIrssi) {
  SetNibble(settings, u"DCC", kDccSendPolicyShift, 1);
  const QByteArray content = MakeFile(files.path() + u"/c.bin"_s, 1 << 20);
  irssi->Type("/dcc send -passive tolvbot " + files.path().toLocal8Bit() + "/c.bin");
  ASSERT_TRUE(RunUntil([&] { return StatusOf(TabKind::DccRecv) == u"File received!"_s; }, kWait))
      << StatusOf(TabKind::DccRecv).toStdString() << "\n" << Status().toStdString();
  EXPECT_TRUE(ReadBytes(Downloads() + u"c.bin"_s) == content);
}

TEST_F(IrssiInterop, ChatWithIrssi) {
  shell.dccChatAnswers = {DccChoice::Accept};
  irssi->Type("/dcc chat tolvbot");
  const auto chat = [&]() -> DccChat* {
    return ctx.tabs.Count() > 1 ? ctx.dccEngine.ChatOf(ctx.tabs.At(1)->id) : nullptr;
  };
  ASSERT_TRUE(RunUntil([&] { return chat() && chat()->CurrentState() == DccChat::State::Connected; }, kWait));
  const auto lines = [&] {
    QStringList out;
    for (qsizetype i = 0; i < ctx.tabs.At(1)->lines->LineCount(); ++i) out << ctx.tabs.At(1)->lines->Line(i).text;
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
