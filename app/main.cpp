// Start-up: the home folder and the settings are made ready before anything reads them.
// The window comes later; until then the program says where its files are and exits.

#include "app/home_folder.h"
#include "app/startup_notice_dialog.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

#include <QApplication>
#include <QCoreApplication>
#include <QTextStream>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

bool HasDisplay() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

int main(int argc, char** argv) {
  std::unique_ptr<QCoreApplication> app;
  if (HasDisplay())
    app = std::make_unique<QApplication>(argc, argv);
  else
    app = std::make_unique<QCoreApplication>(argc, argv);
  QCoreApplication::setApplicationName(u"tolv"_s);

  const QString home = SettingsStore::DefaultHomeDir();
  FillHomeFolder(home, ShippedDataFolder());
  SettingsStore store(home);
  InitialiseDefaults(store);

  QTextStream out(stdout);
  out << "Tolv home folder: " << home << "\nSettings: " << store.FilePath() << "\n";
  if (!store.LoadProblem().isEmpty()) {
    QTextStream(stderr) << store.LoadProblem() << "\n";
    if (HasDisplay()) ShowStartupNotice(store.LoadProblem());
  }
  return 0;
}
