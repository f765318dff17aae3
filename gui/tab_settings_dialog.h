#pragma once
// "Tab Settings" (per tab kind: the icon, the name or both on its label) and "Baloon
// Settings" (per tab kind: whether news in the back shows a balloon). Both edit their own
// bits of "TabSets" and nothing else; OK writes the word, Cancel leaves it. The rows
// scroll rather than clip on a pocket screen.

#include "views/conversation_tab.h"
#include "views/tab_sets.h"

#include <QDialog>

#include <map>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class TabBar;

class TabSettingsDialog : public QDialog {
  Q_OBJECT

 public:
  TabSettingsDialog(TabBar& tabs, int factor, QWidget* parent = nullptr);

  // The radio button of one choice of one kind.
  QAbstractButton* Choice(TabKind kind, TabLabelShow show) const;
  // Writes the choices and shows every label as they now ask.
  void accept() override;

 private:
  TabBar& tabs_;
  std::map<TabKind, QButtonGroup*> groups_;
};

class BalloonSettingsDialog : public QDialog {
  Q_OBJECT

 public:
  BalloonSettingsDialog(TabBar& tabs, int factor, QWidget* parent = nullptr);

  QCheckBox* Switch(TabKind kind) const;
  void accept() override;

 private:
  TabBar& tabs_;
  std::map<TabKind, QCheckBox*> switches_;
};
