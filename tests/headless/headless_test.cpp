// Drives the real program through its headless front end against a real server.

#include "net/server_list.h"
#include "support/ngircd_fixture.h"
#include "support/test_app.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class HeadlessTolv : public ::testing::Test {
 protected:
  void SetUp() override {
    TestApp();
    ASSERT_TRUE(server.Start());
    QDir().mkpath(home.path());
    QFile servers(home.path() + u"/servers.txt"_s);
    ASSERT_TRUE(servers.open(QIODevice::WriteOnly));
    servers.write("Test\t127.0.0.1\t" + QByteArray::number(server.Port()) + "\t\r\n");
    servers.close();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"TOLV_HOME"_s, home.path());
    tolv.setProcessEnvironment(env);
  }
  void TearDown() override {
    if (tolv.state() != QProcess::NotRunning) {
      tolv.kill();
      tolv.waitForFinished(2000);
    }
  }
  void Type(const QByteArray& line) { tolv.write(line + '\n'); }
  // Output lines seen so far; waits (bounded) until `line` is among them.
  bool WaitForLine(const QString& line, int milliseconds = 8000) {
    return RunUntil([&] {
      output += QString::fromUtf8(tolv.readAllStandardOutput());
      return output.split(u'\n').contains(line);
    }, milliseconds);
  }

  NgircdServer server;
  QTemporaryDir home;
  QProcess tolv;
  QString output;
};

TEST_F(HeadlessTolv, ConnectsTalksAndExitsAtTheEndOfInput) {
  tolv.start(QStringLiteral(TOLV_BINARY), {u"--headless"_s, u"--connect"_s});
  ASSERT_TRUE(tolv.waitForStarted(5000));
  ASSERT_TRUE(WaitForLine(u"\x1bstate\tconnected"_s));
  ASSERT_TRUE(WaitForLine(u"Status\t* Connecting to 127.0.0.1 (%1)"_s.arg(server.Port())));
  ASSERT_TRUE(WaitForLine(u"Status\tEnd of MOTD command"_s)) << output.toStdString();

  Type("hello");
  EXPECT_TRUE(WaitForLine(u"Status\t* You're not on a channel"_s));
  Type("\x1b" "answer ok x");
  EXPECT_TRUE(WaitForLine(u"\x1b" "error\tno prompt is waiting"_s));
  Type("\x1btab nowhere");
  EXPECT_TRUE(WaitForLine(u"\x1b" "error\tno tab named nowhere"_s));
  Type("\x1bmenu 40009");
  EXPECT_TRUE(WaitForLine(u"\x1b" "error\tmenu command 40009 is not available"_s));
  Type("\x1bmenu 40101");
  EXPECT_TRUE(WaitForLine(u"\x1bprompt\tJoin channel\tEnter channel to join:"_s));
  Type("\x1b" "answer ok #menu");
  EXPECT_TRUE(WaitForLine(u"#menu\t* Now talking in #menu"_s));

  tolv.closeWriteChannel();
  ASSERT_TRUE(RunUntil([&] { return tolv.state() == QProcess::NotRunning; }, 5000));
  output += QString::fromUtf8(tolv.readAllStandardOutput());
  EXPECT_TRUE(output.endsWith(
      u"\x1bstate\tdisconnected\nStatus\t* Disconnected\n#menu\t* Disconnected\n"_s))
      << output.toStdString();
  EXPECT_EQ(tolv.exitCode(), 0);
}

TEST_F(HeadlessTolv, TheMenuCommandTogglesTheConnection) {
  tolv.start(QStringLiteral(TOLV_BINARY), {u"--headless"_s});
  ASSERT_TRUE(tolv.waitForStarted(5000));
  Type("/join #x");
  EXPECT_TRUE(WaitForLine(u"Status\t* /join: not connected to server"_s));
  Type("\x1bmenu 40008");
  ASSERT_TRUE(WaitForLine(u"Status\tEnd of MOTD command"_s));
  Type("\x1bmenu 40008");  // the user's disconnect: closed on the next tick, no reconnect
  EXPECT_TRUE(WaitForLine(u"Status\t* Disconnected"_s, 3000));
  tolv.closeWriteChannel();
  EXPECT_TRUE(RunUntil([&] { return tolv.state() == QProcess::NotRunning; }, 5000));
}

// Two processes on one home would undo each other's settings: the second one is turned
// away before it writes anything.
TEST_F(HeadlessTolv, ASecondProcessOnTheSameHomeIsTurnedAway) {
  tolv.start(QStringLiteral(TOLV_BINARY), {u"--headless"_s});
  ASSERT_TRUE(tolv.waitForStarted(5000));
  ASSERT_TRUE(RunUntil([&] { return QFile::exists(home.path() + u"/settings.reg"_s); }, 5000));
  Type("/join #x");
  ASSERT_TRUE(WaitForLine(u"Status\t* /join: not connected to server"_s));
  QFile settings(home.path() + u"/settings.reg"_s);
  ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
  const QByteArray before = settings.readAll();
  settings.close();

  for (const QStringList& arguments : {QStringList{u"--headless"_s}, QStringList{}}) {
    QProcess second;
    QProcessEnvironment env = tolv.processEnvironment();
    for (const QString& display : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s}) env.remove(display);
    second.setProcessEnvironment(env);
    second.start(QStringLiteral(TOLV_BINARY), arguments);
    ASSERT_TRUE(second.waitForFinished(5000));
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_TRUE(second.readAllStandardError().contains(
        "Tolv is already running with the home folder " + home.path().toUtf8() + " (process " +
        QByteArray::number(tolv.processId()) + ")"));
  }
  ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
  EXPECT_EQ(settings.readAll(), before);
}

}  // namespace
