#pragma once
// The real program started headless against a real ngircd, with its own home folder:
// "servers.txt" names the server, "settings.reg" the nick "tolvbot" and whatever a test
// adds. Tests type lines into its standard input and read what it shows.

#include "support/ngircd_fixture.h"
#include "support/test_app.h"

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

class HeadlessTolvTest : public ::testing::Test {
 protected:
  // Settings lines (registry export form) beyond the nick and the server.
  virtual QByteArray ExtraSettings() const { return {}; }

  void SetUp() override {
    TestApp();
    ASSERT_TRUE(server.Start());
    WriteFile(QStringLiteral("servers.txt"),
              "Test\t127.0.0.1\t" + QByteArray::number(server.Port()) + "\t\r\n");
    WriteFile(QStringLiteral("settings.reg"),
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n\"server\"=dword:00000000\n"
              "\"nick\"=\"tolvbot\"\n\"email\"=\"me@home\"\n\"fullname\"=\"Tolv Bot\"\n"
              "\"tstamps\"=dword:00000000\n" + ExtraSettings());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("TOLV_HOME"), home.path());
    tolv.setProcessEnvironment(env);
    tolv.start(QStringLiteral(TOLV_BINARY), {QStringLiteral("--headless"), QStringLiteral("--connect")});
    ASSERT_TRUE(tolv.waitForStarted(5000));
  }

  void TearDown() override {
    tolv.closeWriteChannel();
    if (!tolv.waitForFinished(3000)) tolv.kill();
    tolv.waitForFinished(2000);
  }

  void WriteFile(const QString& name, const QByteArray& bytes) {
    QFile file(home.path() + u'/' + name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }

  void Type(const QByteArray& line) { tolv.write(line + '\n'); }

  NgircdServer server;
  QTemporaryDir home;
  QProcess tolv;
};
