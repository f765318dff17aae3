#pragma once
// The tab bar as the user sees it: one label per conversation, with the kind's icon and
// the name as "TabSets" asks, in the colour of the last news (grey for nothing new),
// and a badge with the count of lines not yet seen, which shows news even when their
// colour leaves the label grey. It mirrors the TabBar model and hands the user's choice
// back to it.

#include "views/conversation_tab.h"

#include <QTabBar>
#include <QTimer>

class QLabel;

class TabBar;

class TabStripWidget : public QTabBar {
  Q_OBJECT

 public:
  explicit TabStripWidget(TabBar& tabs, QWidget* parent = nullptr);

  // Icons and badges follow the screen factor.
  void SetScaleFactor(int factor);
  // The unread badge of a tab; null while it has none.
  QLabel* UnreadBadge(int position) const;

 private:
  void OnOpened(TabId id, int position);
  void OnClosed(TabId id, int position);
  void OnModelCurrent(int position);
  void ShowLabel(int position);
  void ShowLabelColour(int position);
  void OnUserChoice(int position);
  void ShowUnread(int position, bool redraw = false);

  TabBar& tabs_;
  QTimer unreadTimer_;  // a flood of lines redraws the badges once a frame
  int factor_ = 1;
  bool mirroring_ = false;  // true while the model's change is copied, not the user's
};

// 0x00BBGGRR as the settings and lines store colours.
QColor ColourFromRef(quint32 colourRef);
