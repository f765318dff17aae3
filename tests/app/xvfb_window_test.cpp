// The real program in a real X server (Xvfb), driven by typed keys: it connects to a
// local ngircd, joins a channel typed into its input line, and shows what another user
// says there (the channel log, written by the same road as the screen, is the witness).

#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "support/ngircd_fixture.h"
#include "support/raw_irc_user.h"
#include "support/test_app.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class XvfbWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    xvfb_ = QStandardPaths::findExecutable(u"Xvfb"_s);
    xdotool_ = QStandardPaths::findExecutable(u"xdotool"_s);
    if (xvfb_.isEmpty() || xdotool_.isEmpty()) GTEST_SKIP() << "Xvfb and xdotool are needed";
    ASSERT_TRUE(server.Start());
    ASSERT_TRUE(StartXvfb());
    PrepareHome();
  }

  void TearDown() override {
    for (QProcess* process : {&tolv, &xvfbProcess}) {
      if (process->state() == QProcess::NotRunning) continue;
      process->terminate();
      if (!process->waitForFinished(3000)) process->kill();
      process->waitForFinished(2000);
    }
  }

  // A display number nobody uses: its lock file is free.
  bool StartXvfb() {
    for (int n = 90; n < 140; ++n) {
      if (QFile::exists(u"/tmp/.X%1-lock"_s.arg(n))) continue;
      display = u":%1"_s.arg(n);
      xvfbProcess.start(xvfb_, {display, u"-screen"_s, u"0"_s, u"480x640x24"_s, u"-nolisten"_s, u"tcp"_s});
      if (!xvfbProcess.waitForStarted(3000)) return false;
      if (RunUntil([&] { return QFile::exists(u"/tmp/.X11-unix/X%1"_s.arg(n)); }, 5000)) return true;
      xvfbProcess.kill();
      xvfbProcess.waitForFinished(2000);
    }
    return false;
  }

  void PrepareHome() {
    QFile servers(home.path() + u"/servers.txt"_s);
    ASSERT_TRUE(servers.open(QIODevice::WriteOnly));
    servers.write("Test\t127.0.0.1\t" + QByteArray::number(server.Port()) + "\t\r\n");
    servers.close();
    SettingsStore store(home.path());
    InitialiseDefaults(store);
    store.SetString(u"nick", u"xvtolv", 10);
    store.SetDword(u"Options", store.GetDword(u"Options") & ~qint32(kOptSplash));
    store.SetDword(u"Files", store.GetDword(u"Files") | qint32(kLogChannels));
  }

  bool XdoTool(const QStringList& arguments) {
    QProcess xdo;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"DISPLAY"_s, display);
    xdo.setProcessEnvironment(env);
    xdo.start(xdotool_, arguments);
    const bool ok = xdo.waitForFinished(10000) && xdo.exitCode() == 0;
    if (!ok) ADD_FAILURE() << "xdotool " << arguments.join(u' ').toStdString() << ": "
                           << xdo.readAllStandardError().toStdString();
    return ok;
  }

  bool TypeLine(const QString& line) {
    return XdoTool({u"search"_s, u"--sync"_s, u"--onlyvisible"_s, u"--name"_s, u"^Tolv$"_s, u"windowfocus"_s, u"--sync"_s}) &&
           XdoTool({u"type"_s, u"--delay"_s, u"30"_s, line}) && XdoTool({u"key"_s, u"Return"_s});
  }

  QString ChannelLogText() {
    QString text;
    QDirIterator it(home.path(), {u"*.txt"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
      QFile log(it.next());
      if (log.fileName().contains(u"xvroom"_s) && log.open(QIODevice::ReadOnly))
        text += QString::fromUtf8(log.readAll());
    }
    return text;
  }

  NgircdServer server;
  QTemporaryDir home;
  QProcess xvfbProcess;
  QProcess tolv;
  QString display;

 private:
  QString xvfb_;
  QString xdotool_;
};

TEST_F(XvfbWindowTest, TypedKeysJoinAndTheOtherUserIsShown) {
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(u"DISPLAY"_s, display);
  env.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
  env.insert(u"TOLV_HOME"_s, home.path());
  tolv.setProcessEnvironment(env);
  tolv.start(QStringLiteral(TOLV_BINARY), {u"--connect"_s});
  ASSERT_TRUE(tolv.waitForStarted(5000));

  RawIrcUser other(server.Port(), "outsider");
  ASSERT_TRUE(other.WaitFor(" 001 "));
  other.Send("JOIN #xvroom\r\n");
  // The window connects on its own; once the server knows the nick, typing may begin.
  ASSERT_TRUE(RunUntil([&] {
    other.Send("ISON xvtolv\r\n");
    return other.WaitFor(":xvtolv", 300);
  }, 15000)) << tolv.readAllStandardError().toStdString();

  ASSERT_TRUE(TypeLine(u"/join #xvroom"_s));
  ASSERT_TRUE(other.WaitFor(":xvtolv!", 15000));  // its JOIN: the first line it sends us
  other.Send("PRIVMSG #xvroom :hello from outside\r\n");
  EXPECT_TRUE(RunUntil([&] { return ChannelLogText().contains(u"<outsider> hello from outside"_s); }, 10000))
      << ChannelLogText().toStdString();

  ASSERT_TRUE(TypeLine(u"hi there"_s));
  EXPECT_TRUE(other.WaitFor("PRIVMSG #xvroom :hi there", 10000));
  ASSERT_TRUE(TypeLine(u"/quit typed goodbye"_s));
  EXPECT_TRUE(other.WaitFor("typed goodbye", 10000));
}

}  // namespace
