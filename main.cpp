// Start-up: the home folder and the settings are made ready before anything reads them.
// With --headless the client runs on standard input and output; otherwise it opens its
// one window (a second start brings the running window to the front and ends).

#include "headless/headless_front_end.h"
#include "client/home_folder.h"
#include "client/home_lock.h"
#include "gui/main_window.h"
#include "gui/single_instance_window.h"
#include "gui/splash_window.h"
#include "gui/startup_notice_dialog.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QMessageBox>
#include <QScreen>
#include <QTextStream>

#include <cstring>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

bool HasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

bool WantsHeadless(int argc, char** argv) {
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], "--headless") == 0) return true;
  return false;
}

// A pocket-sized portrait window on a desktop; the whole screen when it is that small.
// Without a window manager (a bare X device) asking for full screen changes nothing, so
// the window takes the screen's size itself; with one, full screen is the same size.
void ShowWindow(MainWindow& window) {
  const QScreen* screen = QGuiApplication::primaryScreen();
  const QRect available = screen ? screen->availableGeometry() : QRect(0, 0, 480, 640);
  if (available.width() <= 480 || available.height() <= 640) {
    window.setGeometry(available);
    window.showFullScreen();
  } else {
    window.resize(480, 640);
    window.show();
  }
}

// Another process has the home folder: a window of ours comes to the front, anything
// else (the headless client) is named, and this start ends without touching a file.
int RefuseSecondStart(bool headless, const QString& home, const HomeLock& lock) {
  if (!headless && HasDisplay()) {
    if (SingleInstance(home).RaiseRunningInstance()) return 0;
    QMessageBox::warning(nullptr, u"Tolv"_s, lock.InUseText());
  } else {
    QTextStream(stderr) << "tolv: " << lock.InUseText() << "\n";
  }
  return 1;
}

int RunWindow(SettingsStore& store, bool connectAtStart) {
  SingleInstance instance(store.HomeDir());
  MainWindow window(store);
  instance.Listen(&window);
  ShowWindow(window);
  if (!store.LoadProblem().isEmpty()) ShowStartupNotice(store.LoadProblem());
  window.FinishStart(connectAtStart);
  return QApplication::exec();
}

constexpr const char* kNoShippedData =
    "tolv: the shipped server list, sounds and help were not found; set TOLV_DATA to their folder\n";

// --help and --version answer and end the program (status 0); an unknown option or a
// stray argument is named and ends it with status 2, as other command-line tools do.
std::optional<int> ReadCommandLine(QCommandLineParser& options, const QCoreApplication& app) {
  options.setApplicationDescription(u"An IRC client for small touch screens and the desktop."_s);
  const QCommandLineOption help = options.addHelpOption();
  const QCommandLineOption version = options.addVersionOption();
  options.addOption({u"headless"_s, u"Run without a window, on standard input and output."_s});
  options.addOption({u"connect"_s, u"Connect to the selected server at start."_s});
  QString problem;
  if (!options.parse(app.arguments()))
    problem = options.errorText();
  else if (!options.positionalArguments().isEmpty())
    problem = u"Unexpected argument '%1'."_s.arg(options.positionalArguments().constFirst());
  if (!problem.isEmpty()) {
    QTextStream(stderr) << "tolv: " << problem << "\nTry 'tolv --help' for the options.\n";
    return 2;
  }
  if (options.isSet(help)) options.showHelp(0);
  if (options.isSet(version)) options.showVersion();
  return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  const bool headless = WantsHeadless(argc, argv);
  std::unique_ptr<QCoreApplication> app;
  if (!headless && HasDisplay())
    app = std::make_unique<QApplication>(argc, argv);
  else
    app = std::make_unique<QCoreApplication>(argc, argv);
  QCoreApplication::setApplicationName(u"tolv"_s);
  QCoreApplication::setApplicationVersion(QStringLiteral(TOLV_VERSION));
  if (auto* gui = qobject_cast<QApplication*>(app.get())) gui->setWindowIcon(AppIcon());

  QCommandLineParser options;
  if (const auto status = ReadCommandLine(options, *app)) return *status;

  const QString home = SettingsStore::DefaultHomeDir();
  HomeLock lock(home);
  if (!lock.Acquire()) return RefuseSecondStart(headless, home, lock);
  const QString shipped = ShippedDataFolder(QCoreApplication::applicationDirPath());
  if (shipped.isEmpty()) QTextStream(stderr) << kNoShippedData;
  FillHomeFolder(home, shipped);
  SettingsStore store(home);
  InitialiseDefaults(store);

  if (headless) {
    if (!store.LoadProblem().isEmpty()) QTextStream(stderr) << store.LoadProblem() << "\n";
    HeadlessFrontEnd frontEnd(store);
    frontEnd.Start(options.isSet(u"connect"_s));
    return QCoreApplication::exec();
  }

  if (!HasDisplay()) {
    QTextStream(stdout) << "Tolv home folder: " << home << "\nSettings: " << store.FilePath() << "\n";
    if (!store.LoadProblem().isEmpty()) QTextStream(stderr) << store.LoadProblem() << "\n";
    QTextStream(stderr) << "tolv: no display; use --headless to run without a window\n";
    return 2;
  }
  return RunWindow(store, options.isSet(u"connect"_s));
}
