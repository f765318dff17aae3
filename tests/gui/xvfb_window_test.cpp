// The real program in a real X server (Xvfb) without a window manager, as on a bare
// pocket device. Driven by typed keys, it connects to a local ngircd, joins a channel
// typed into its input line, and shows what another user says there (the channel log,
// written by the same road as the screen, is the witness). On a screen of each pocket
// size its windows fit the screen.

#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "support/ngircd_fixture.h"
#include "support/raw_irc_user.h"
#include "support/test_app.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QMap>
#include <QProcess>
#include <QRect>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <optional>
#include <string>

using namespace Qt::StringLiterals;

namespace {

std::string Describe(const QRect& r) {
  return std::to_string(r.width()) + "x" + std::to_string(r.height()) + "+" +
         std::to_string(r.x()) + "+" + std::to_string(r.y());
}

// One Xvfb screen of a given size and the tolv started on it.
class XvfbFixture {
 protected:
  ~XvfbFixture() {
    for (QProcess* process : {&tolv, &xvfbProcess}) {
      if (process->state() == QProcess::NotRunning) continue;
      process->terminate();
      if (!process->waitForFinished(3000)) process->kill();
      process->waitForFinished(2000);
    }
  }

  bool HaveTools() {
    xvfb_ = QStandardPaths::findExecutable(u"Xvfb"_s);
    xdotool_ = QStandardPaths::findExecutable(u"xdotool"_s);
    return !xvfb_.isEmpty() && !xdotool_.isEmpty();
  }

  // Xvfb picks a free display itself and writes its number once it takes clients, so
  // tests running side by side never share one. The root is black, so that whatever the
  // program leaves uncovered shows in a screenshot.
  bool StartXvfb(QSize screen) {
    xvfbProcess.start(xvfb_, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s,
                              u"%1x%2x24"_s.arg(screen.width()).arg(screen.height()),
                              u"-br"_s, u"-nolisten"_s, u"tcp"_s});
    if (!xvfbProcess.waitForStarted(3000)) return false;
    QByteArray number;
    if (!RunUntil([&] {
          number += xvfbProcess.readAllStandardOutput();
          return number.contains('\n');
        }, 10000))
      return false;
    display = u':' + QString::fromLatin1(number.trimmed());
    return true;
  }

  void StartTolv(const QString& home, const QStringList& arguments) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"DISPLAY"_s, display);
    env.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    env.insert(u"TOLV_HOME"_s, home);
    tolv.setProcessEnvironment(env);
    tolv.start(QStringLiteral(TOLV_BINARY), arguments);
  }

  // Runs a tool on the display; its output, or nullopt when it failed or hung.
  std::optional<QString> RunOnDisplay(const QString& program, const QStringList& arguments,
                                      bool quiet = false) {
    QProcess tool;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"DISPLAY"_s, display);
    tool.setProcessEnvironment(env);
    tool.start(program, arguments);
    if (tool.waitForFinished(10000) && tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0)
      return QString::fromLocal8Bit(tool.readAllStandardOutput());
    if (!quiet) ADD_FAILURE() << program.toStdString() << " " << arguments.join(u' ').toStdString() << ": "
                              << tool.readAllStandardError().toStdString();
    return std::nullopt;
  }

  bool XdoTool(const QStringList& arguments) { return RunOnDisplay(xdotool_, arguments).has_value(); }

  // The program's windows on screen, as X places them.
  QList<QRect> VisibleWindows() {
    QList<QRect> windows;
    const auto ids = RunOnDisplay(xdotool_, {u"search"_s, u"--onlyvisible"_s, u"--pid"_s,
                                             QString::number(tolv.processId())}, true);
    for (const QString& id : ids.value_or(QString()).split(u'\n', Qt::SkipEmptyParts)) {
      const auto shell = RunOnDisplay(xdotool_, {u"getwindowgeometry"_s, u"--shell"_s, id}, true);
      QMap<QString, int> value;
      for (const QString& line : shell.value_or(QString()).split(u'\n', Qt::SkipEmptyParts))
        value[line.section(u'=', 0, 0)] = line.section(u'=', 1).toInt();
      windows << QRect(value[u"X"_s], value[u"Y"_s], value[u"WIDTH"_s], value[u"HEIGHT"_s]);
    }
    return windows;
  }

  QProcess xvfbProcess;
  QProcess tolv;
  QString display;

 private:
  QString xvfb_;
  QString xdotool_;
};

class XvfbWindowTest : public ::testing::Test, protected XvfbFixture {
 protected:
  void SetUp() override {
    if (!HaveTools()) GTEST_SKIP() << "Xvfb and xdotool are needed";
    ASSERT_TRUE(server.Start());
    ASSERT_TRUE(StartXvfb(QSize(480, 640)));
    PrepareHome();
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
};

TEST_F(XvfbWindowTest, TypedKeysJoinAndTheOtherUserIsShown) {
  StartTolv(home.path(), {u"--connect"_s});
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

class XvfbScreenTest : public ::testing::TestWithParam<QSize>, protected XvfbFixture {};

// A fresh home: the first start, with its splash. Every window lies inside the screen,
// the main window fills it, and the bottom row, where the input line is, is the
// program's, not the black root's.
TEST_P(XvfbScreenTest, TheWindowAndTheSplashFitTheScreen) {
  if (!HaveTools()) GTEST_SKIP() << "Xvfb and xdotool are needed";
  const QSize screen = GetParam();
  ASSERT_TRUE(StartXvfb(screen));
  QTemporaryDir home;
  StartTolv(home.path(), {});
  ASSERT_TRUE(tolv.waitForStarted(5000));
  QList<QRect> windows;
  ASSERT_TRUE(RunUntil([&] { return (windows = VisibleWindows()).size() >= 2; }, 15000))
      << "windows seen: " << windows.size() << " " << tolv.readAllStandardError().toStdString();
  const QRect whole(QPoint(0, 0), screen);
  for (const QRect& window : windows) EXPECT_TRUE(whole.contains(window)) << Describe(window);
  EXPECT_TRUE(windows.contains(whole)) << "the main window fills the screen";

  const QString folder = QStringLiteral(TOLV_SCREENSHOT_DIR);
  ASSERT_TRUE(QDir().mkpath(folder));
  const QString file = folder + u"/bare_x_%1x%2.png"_s.arg(screen.width()).arg(screen.height());
  QFile::remove(file);
  RunUntil([] { return false; }, 300);  // the splash's first paint
  const QString import = QStandardPaths::findExecutable(u"import"_s);
  if (import.isEmpty()) GTEST_SKIP() << "no screenshot without ImageMagick's import";
  ASSERT_TRUE(RunOnDisplay(import, {u"-window"_s, u"root"_s, file}));
  const QImage shot(file);
  ASSERT_EQ(shot.size(), screen);
  int black = 0;
  for (int x = 0; x < shot.width(); ++x) black += shot.pixelColor(x, shot.height() - 2) == Qt::black;
  EXPECT_LT(black, shot.width() / 4);
}

INSTANTIATE_TEST_SUITE_P(PocketScreens, XvfbScreenTest,
                         ::testing::Values(QSize(240, 320), QSize(320, 240), QSize(480, 640)),
                         [](const auto& info) {
                           return std::to_string(info.param.width()) + "x" +
                                  std::to_string(info.param.height());
                         });

}  // namespace
