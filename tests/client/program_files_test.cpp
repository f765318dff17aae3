// Where the program finds its shipped files, and what its command line answers.

#include "client/home_folder.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct DataCase {
  const char* name;
  QStringList holdingData;  // folders under the root with a servers.txt; the program is in bin/
  QString found;            // relative to the root; empty: none
};

class ShippedData : public ::testing::TestWithParam<DataCase> {};

TEST_P(ShippedData, InstalledThenEnvironmentThenBuildFolder) {
  QTemporaryDir root;
  for (const QString& dir : GetParam().holdingData) {
    QDir().mkpath(root.filePath(dir));
    QFile(root.filePath(dir + u"/servers.txt"_s)).open(QIODevice::WriteOnly);
  }
  QDir().mkpath(root.filePath(u"env"_s));  // $TOLV_DATA always names a folder, maybe empty
  qputenv("TOLV_DATA", root.filePath(u"env"_s).toLocal8Bit());
  const QString found = ShippedDataFolder(root.filePath(u"bin"_s));
  qunsetenv("TOLV_DATA");
  EXPECT_EQ(found, GetParam().found.isEmpty() ? QString() : root.filePath(GetParam().found));
}

INSTANTIATE_TEST_SUITE_P(
    Lookup, ShippedData,
    ::testing::Values(DataCase{"Installed", {u"share/tolv"_s, u"env"_s, u"bin/data"_s}, u"share/tolv"_s},
                      DataCase{"Environment", {u"env"_s, u"bin/data"_s}, u"env"_s},
                      DataCase{"BuildFolder", {u"bin/data"_s, u"share"_s}, u"bin/data"_s},
                      DataCase{"Nowhere", {u"share"_s}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

struct CommandLineCase {
  const char* name;
  QStringList arguments;
  int status;
  QStringList outHas;
  QString err;
};

class CommandLine : public ::testing::TestWithParam<CommandLineCase> {};

TEST_P(CommandLine, AnswersAndEnds) {
  const CommandLineCase& c = GetParam();
  QTemporaryDir home;
  QProcess tolv;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert(u"TOLV_HOME"_s, home.path());
  env.remove(u"QT_QPA_PLATFORM"_s);
  env.remove(u"DISPLAY"_s);
  tolv.setProcessEnvironment(env);
  tolv.start(QStringLiteral(TOLV_BINARY), c.arguments);
  ASSERT_TRUE(tolv.waitForFinished(20000));
  const QString out = QString::fromUtf8(tolv.readAllStandardOutput());
  EXPECT_EQ(tolv.exitCode(), c.status);
  for (const QString& text : c.outHas) EXPECT_TRUE(out.contains(text)) << out.toStdString();
  EXPECT_EQ(QString::fromUtf8(tolv.readAllStandardError()), c.err);
  EXPECT_TRUE(QDir(home.path()).isEmpty());  // nothing is touched before the answer
}

INSTANTIATE_TEST_SUITE_P(
    Options, CommandLine,
    ::testing::Values(
        CommandLineCase{"Version", {u"--version"_s}, 0, {u"tolv 1.4\n"_s}, {}},
        CommandLineCase{"Help", {u"--help"_s}, 0, {u"--headless"_s, u"--connect"_s, u"--version"_s}, {}},
        CommandLineCase{"UnknownOption", {u"--frobnicate"_s}, 2, {},
                        u"tolv: Unknown option 'frobnicate'.\nTry 'tolv --help' for the options.\n"_s},
        CommandLineCase{"StrayArgument", {u"--connect"_s, u"irc.example.org"_s}, 2, {},
                        u"tolv: Unexpected argument 'irc.example.org'.\nTry 'tolv --help' for the options.\n"_s}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
