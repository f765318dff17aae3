#pragma once
// "Settings": the one editor of the settings, full screen over the window, with the
// pages "Connection", "Options", "View", "Screen", "Sounds", "DCC", "Info" and "Files".
// Every page is loaded when the dialog is made; OK writes every page back, Cancel
// writes nothing (the server list and the whispers' upkeep act at once on their own).

#include "gui/options_page.h"

#include <QDialog>

#include <vector>

class QTabWidget;

class OptionsDialog : public QDialog {
  Q_OBJECT

 public:
  OptionsDialog(ClientContext& ctx, WindowShell& shell, int factor, QWidget* parent = nullptr);

  QTabWidget* Tabs() const { return tabs_; }
  // The page of tab `index`, in tab order.
  OptionsPage* Page(int index) const { return pages_.at(static_cast<size_t>(index)); }

  void accept() override;

 private:
  ClientContext& ctx_;
  QTabWidget* tabs_;
  std::vector<OptionsPage*> pages_;
};
