// Start-up: the home folder and the settings are made ready before anything reads them.
// With --headless the client runs on standard input and output; the window comes later,
// and until then a start without --headless says where the files are and exits.

#include "app/headless_front_end.h"
#include "app/home_folder.h"
#include "app/startup_notice_dialog.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <cstring>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

bool HasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool WantsHeadless(int argc, char** argv) {
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], "--headless") == 0) return true;
  return false;
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

  QCommandLineParser options;
  options.addHelpOption();
  options.addOption({u"headless"_s, u"Run without a window, on standard input and output."_s});
  options.addOption({u"connect"_s, u"Connect to the selected server at start."_s});
  options.process(*app);

  const QString home = SettingsStore::DefaultHomeDir();
  FillHomeFolder(home, ShippedDataFolder());
  SettingsStore store(home);
  InitialiseDefaults(store);

  if (headless) {
    if (!store.LoadProblem().isEmpty()) QTextStream(stderr) << store.LoadProblem() << "\n";
    HeadlessFrontEnd frontEnd(store);
    frontEnd.Start(options.isSet(u"connect"_s));
    return QCoreApplication::exec();
  }

  QTextStream out(stdout);
  out << "Tolv home folder: " << home << "\nSettings: " << store.FilePath() << "\n";
  if (!store.LoadProblem().isEmpty()) {
    QTextStream(stderr) << store.LoadProblem() << "\n";
    if (HasDisplay()) ShowStartupNotice(store.LoadProblem());
  }
  return 0;
}
