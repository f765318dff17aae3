// The first start of the real program on a bare X server of each pocket size: the windows
// fit, the main one fills the screen down to its bottom row. Screenshots stay in the build.

#include "support/test_app.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QRect>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class XvfbScreenTest : public ::testing::TestWithParam<QSize> {
 protected:
  ~XvfbScreenTest() override {
    for (QProcess* process : {&tolv, &xvfb}) {
      process->terminate();
      if (!process->waitForFinished(3000)) process->kill();
      process->waitForFinished(2000);
    }
  }
  // A tool's output on the display; empty when it failed or hung.
  QString Run(const QString& program, const QStringList& arguments) {
    QProcess tool;
    tool.setProcessEnvironment(env);
    tool.start(program, arguments);
    const bool ok = tool.waitForFinished(10000) && tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0;
    return ok ? QString::fromLocal8Bit(tool.readAllStandardOutput()) : QString();
  }

  QProcess xvfb, tolv;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
};

TEST_P(XvfbScreenTest, TheWindowAndTheSplashFitTheScreen) {
  const QString xdotool = QStandardPaths::findExecutable(u"xdotool"_s);
  const QString import = QStandardPaths::findExecutable(u"import"_s);  // ImageMagick's
  if (xdotool.isEmpty() || import.isEmpty() || QStandardPaths::findExecutable(u"Xvfb"_s).isEmpty())
    GTEST_SKIP() << "Xvfb, xdotool and import are needed";
  const QSize screen = GetParam();
  // A display number of our own drawing: one another run has just released could lose its
  // socket to that run's exit. Xvfb exits at once when the number is taken. Black root; no
  // reset when xdotool's probe is the last client to leave, or the program's own connection,
  // arriving during that reset, is dropped ("could not connect to display").
  QByteArray number;
  for (int attempt = 0; attempt < 5 && !number.contains('\n'); ++attempt) {
    number.clear();
    xvfb.start(u"Xvfb"_s, {u':' + QString::number(QRandomGenerator::global()->bounded(100, 30000)), u"-displayfd"_s, u"1"_s,
                           u"-screen"_s, u"0"_s, u"%1x%2x24"_s.arg(screen.width()).arg(screen.height()),
                           u"-br"_s, u"-noreset"_s, u"-nolisten"_s, u"tcp"_s});
    RunUntil([&] {
      return (number += xvfb.readAllStandardOutput()).contains('\n') || xvfb.state() == QProcess::NotRunning;
    }, 10000);
    if (!number.contains('\n')) {
      xvfb.kill();
      xvfb.waitForFinished(2000);
    }
  }
  ASSERT_TRUE(number.contains('\n')) << "no free display";
  QTemporaryDir home;
  env.insert(u"DISPLAY"_s, u':' + QString::fromLatin1(number.trimmed()));
  env.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
  env.insert(u"TOLV_HOME"_s, home.path());
  tolv.setProcessEnvironment(env);
  tolv.start(QStringLiteral(TOLV_BINARY), {});
  ASSERT_TRUE(tolv.waitForStarted(5000));

  QList<QRect> windows;  // as X places them
  ASSERT_TRUE(RunUntil([&] {
    windows.clear();
    const QString pid = QString::number(tolv.processId());
    for (const QString& id : Run(xdotool, {u"search"_s, u"--onlyvisible"_s, u"--pid"_s, pid}).split(u'\n', Qt::SkipEmptyParts)) {
      QMap<QString, int> value;
      for (const QString& line : Run(xdotool, {u"getwindowgeometry"_s, u"--shell"_s, id}).split(u'\n', Qt::SkipEmptyParts))
        value[line.section(u'=', 0, 0)] = line.section(u'=', 1).toInt();
      windows << QRect(value[u"X"_s], value[u"Y"_s], value[u"WIDTH"_s], value[u"HEIGHT"_s]);
    }
    return windows.size() >= 2;
  }, 15000)) << "windows seen: " << windows.size() << " " << tolv.readAllStandardError().toStdString();
  const QRect whole(QPoint(0, 0), screen);
  for (const QRect& window : windows) EXPECT_TRUE(whole.contains(window)) << window.width() << "x" << window.height();
  EXPECT_TRUE(windows.contains(whole)) << "the main window fills the screen";

  const QString file = QStringLiteral(TOLV_SCREENSHOT_DIR "/bare_x_%1x%2.png").arg(screen.width()).arg(screen.height());
  ASSERT_TRUE(QDir().mkpath(QStringLiteral(TOLV_SCREENSHOT_DIR)));
  // The root is black (-br): shoot until the window has painted down to its input line,
  // however slow a loaded machine is to draw it.
  QImage shot;
  int black = 0;
  RunUntil([&] {
    QFile::remove(file);
    Run(import, {u"-window"_s, u"root"_s, file});
    shot = QImage(file);
    black = 0;
    for (int x = 0; x < shot.width(); ++x) black += shot.pixelColor(x, shot.height() - 2) == Qt::black;
    return shot.size() == screen && black < shot.width() / 4;
  }, 10000);
  ASSERT_EQ(shot.size(), screen);
  EXPECT_LT(black, shot.width() / 4);
}

INSTANTIATE_TEST_SUITE_P(PocketScreens, XvfbScreenTest,
                         ::testing::Values(QSize(240, 320), QSize(320, 240), QSize(480, 640)),
                         [](const auto& info) {
                           return std::to_string(info.param.width()) + "x" + std::to_string(info.param.height());
                         });

}  // namespace
