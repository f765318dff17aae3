// Starts the real program with an empty home folder, then again, and looks at the files.

#include "support/file_bytes.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {


QString StartTolv(const QString& home) {
  QProcess tolv;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(u"TOLV_HOME"_s, home);
  env.remove(u"DISPLAY"_s);
  env.remove(u"WAYLAND_DISPLAY"_s);
  env.remove(u"QT_QPA_PLATFORM"_s);  // no display at all: it says where its files are and ends
  tolv.setProcessEnvironment(env);
  tolv.start(QStringLiteral(TOLV_BINARY), {});
  if (!tolv.waitForFinished(20000)) {
    tolv.kill();
    tolv.waitForFinished(2000);
    return u"<hung>"_s;
  }
  return QString::fromUtf8(tolv.readAllStandardOutput());
}

TEST(FirstStart, FillsAnEmptyHomeAndKeepsWhatTheUserChanged) {
  QTemporaryDir dir;
  const QString home = dir.path() + u"/home"_s;
  const QString out = StartTolv(home);
  EXPECT_TRUE(out.contains(home)) << out.toStdString();

  const QByteArray settings = ReadBytes(home + u"/settings.reg"_s);
  for (const char* line :
       {"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n", "\"Options\"=dword:010001c0\n",
        "\"Files\"=dword:00002100\n", "\"TabSets\"=dword:05550fff\n",
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv\\sounds]\n", "\"join\"=\"join.wav\"\n",
        "\"fullname\"=\"Kelvane Tolv v1.4\"\n"})
    EXPECT_TRUE(settings.contains(line)) << line;

  const QStringList shipped = {u"servers.txt"_s, u"favorites.txt"_s, u"join.wav"_s,
                               u"part.wav"_s,    u"query.wav"_s,     u"invite.wav"_s,
                               u"notice.wav"_s,  u"highlight.wav"_s, u"quit.wav"_s,
                               u"ping.wav"_s,    u"kick.wav"_s,      u"op.wav"_s,
                               u"deop.wav"_s,    u"voice.wav"_s,     u"devoice.wav"_s};
  for (const QString& file : shipped) EXPECT_TRUE(QFile::exists(home + u'/' + file)) << file.toStdString();
  EXPECT_TRUE(QDir(home + u"/downloads"_s).exists());

  // The user changes a setting by hand and edits the server list; a second start keeps both.
  QByteArray edited = settings;
  edited.replace("\"Options\"=dword:010001c0", "\"Options\"=dword:00000001");
  QFile f(home + u"/settings.reg"_s);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write(edited);
  f.close();
  QFile servers(home + u"/servers.txt"_s);
  ASSERT_TRUE(servers.open(QIODevice::WriteOnly));
  servers.write("Mine\tirc.example.org\t6667\t\r\n");
  servers.close();

  StartTolv(home);
  EXPECT_EQ(ReadBytes(home + u"/settings.reg"_s), edited);
  EXPECT_EQ(ReadBytes(home + u"/servers.txt"_s), QByteArray("Mine\tirc.example.org\t6667\t\r\n"));
}

}  // namespace
