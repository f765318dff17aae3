// Starts the real program with an empty home folder, then again, and looks at the files.

#include "support/file_bytes.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Without a display the program says where its files are and ends.
QString StartTolv(const QString& home) {
  QProcess tolv;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(u"TOLV_HOME"_s, home);
  for (auto name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s}) env.remove(name);
  tolv.setProcessEnvironment(env);
  tolv.start(QStringLiteral(TOLV_BINARY), {});
  if (tolv.waitForFinished(20000)) return QString::fromUtf8(tolv.readAllStandardOutput());
  tolv.kill();
  tolv.waitForFinished(2000);
  return u"<hung>"_s;
}

// The whole settings file is first_start.reg beside this file, with the home folder shown
// as HOME and the nicks, drawn from 1 to 250, as tolvN; the shipped files are copied.
TEST(FirstStart, FillsAnEmptyHomeAndKeepsWhatTheUserChanged) {
  QTemporaryDir dir;
  const QString home = dir.path() + u"/home"_s;
  EXPECT_TRUE(StartTolv(home).contains(home));
  const QByteArray settings = ReadBytes(home + u"/settings.reg"_s);
  QString masked = QString::fromUtf8(settings).replace(home, u"HOME"_s);
  masked.replace(QRegularExpression(u"\"tolv([1-9][0-9]?|1[0-9][0-9]|2[0-4][0-9]|250)\""_s), u"\"tolvN\""_s);
  EXPECT_EQ(masked, QString::fromUtf8(ReadBytes(QFileInfo(QStringLiteral(__FILE__)).dir().filePath(u"first_start.reg"_s))));
  const QString shipped = QStringLiteral(TOLV_DATA_DIR "/");
  for (const QString& file : QDir(shipped).entryList(QDir::Files))
    EXPECT_EQ(ReadBytes(home + u'/' + file), ReadBytes(shipped + file)) << file.toStdString();
  EXPECT_TRUE(QDir(home + u"/downloads"_s).exists());

  // The user edits a setting and the server list by hand; a second start keeps both.
  QByteArray edited = settings;
  WriteBytes(home + u"/settings.reg"_s, edited.replace("\"Options\"=dword:010001c0", "\"Options\"=dword:00000001"));
  WriteBytes(home + u"/servers.txt"_s, "Mine\tirc.example.org\t6667\t\r\n");
  StartTolv(home);
  EXPECT_EQ(ReadBytes(home + u"/settings.reg"_s), edited);
  EXPECT_EQ(ReadBytes(home + u"/servers.txt"_s), "Mine\tirc.example.org\t6667\t\r\n");
}

}  // namespace
