#pragma once
// The pages of the "Settings" dialog. Each page fills its controls from the settings when
// the dialog opens and writes every control back, changed or not, when the dialog closes
// with OK; Cancel writes nothing. What a page reads and writes is decided by functions of
// the core (settings/), so a page only moves values between them and its controls.
// A page scrolls rather than clips on a pocket screen, and what a finger taps is at least
// TouchHeight(factor) tall.

#include <QString>
#include <QWidget>

class ClientContext;
class WindowShell;

// What every page may use: the program's state, the window's message boxes and prompts,
// and the screen factor.
struct OptionsPageEnv {
  ClientContext& ctx;
  WindowShell& shell;
  int factor = 1;
};

class OptionsPage : public QWidget {
 public:
  using QWidget::QWidget;
  virtual void Load() = 0;
  virtual void Save() = 0;
};

// The eight pages, in the order of the dialog's tabs.
OptionsPage* MakeConnectionPage(const OptionsPageEnv& env, QWidget* parent);  // "Connection"
OptionsPage* MakeGeneralPage(const OptionsPageEnv& env, QWidget* parent);     // "Options"
OptionsPage* MakeViewPage(const OptionsPageEnv& env, QWidget* parent);        // "View"
OptionsPage* MakeScreenPage(const OptionsPageEnv& env, QWidget* parent);      // "Screen"
OptionsPage* MakeSoundsPage(const OptionsPageEnv& env, QWidget* parent);      // "Sounds"
OptionsPage* MakeDccPage(const OptionsPageEnv& env, QWidget* parent);         // "DCC"
OptionsPage* MakeInfoPage(const OptionsPageEnv& env, QWidget* parent);        // "Info"
OptionsPage* MakeFilesPage(const OptionsPageEnv& env, QWidget* parent);       // "Files"
