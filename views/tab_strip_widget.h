#pragma once
// The tab bar as the user sees it: one label per conversation, with the kind's icon and
// the name as "TabSets" asks, in the colour of the last news (grey for nothing new).
// It mirrors the TabBar model and hands the user's choice back to it.

#include "views/conversation_tab.h"

#include <QTabBar>

class TabBar;

class TabStripWidget : public QTabBar {
  Q_OBJECT

 public:
  explicit TabStripWidget(TabBar& tabs, QWidget* parent = nullptr);

  // Icons follow the screen factor.
  void SetScaleFactor(int factor);

 private:
  void OnOpened(TabId id, int position);
  void OnClosed(TabId id, int position);
  void OnModelCurrent(int position);
  void ShowLabel(int position);
  void ShowLabelColour(int position);
  void OnUserChoice(int position);

  TabBar& tabs_;
  int factor_ = 1;
  bool mirroring_ = false;  // true while the model's change is copied, not the user's
};

// 0x00BBGGRR as the settings and lines store colours.
QColor ColourFromRef(quint32 colourRef);
