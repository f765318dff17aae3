#pragma once
// The tab bar as the user sees it: one label per conversation, with the kind's icon and
// the name as "TabSets" asks, in the colour of the last news (grey for nothing new),
// and a badge with the count of lines not yet seen, which shows news even when their
// colour leaves the label grey. It mirrors the TabBar model and hands the user's choice
// back to it. It owns the balloon that tells of news in a tab in the back (one at a time,
// for ten seconds, closed by a tap on it or any press on the strip) and its own menu
// (held press or right click): the list of tabs and the two settings dialogs.

#include "gui/balloon_widget.h"
#include "views/conversation_tab.h"

#include <QPointer>
#include <QTabBar>
#include <QTimer>

#include <memory>
#include <optional>

class QLabel;
class QMouseEvent;

class TabBar;

class TabStripWidget : public QTabBar {
  Q_OBJECT

 public:
  explicit TabStripWidget(TabBar& tabs, QWidget* parent = nullptr);
  ~TabStripWidget() override;

  // Icons and badges follow the screen factor.
  void SetScaleFactor(int factor);
  // The unread badge of a tab; null while it has none.
  QLabel* UnreadBadge(int position) const;

  // The balloon in sight, null while there is none.
  BalloonWidget* Balloon() const { return balloon_; }
  // Closes the balloon when it fires; a new balloon starts it again.
  QTimer& BalloonTimer() { return balloonTimer_; }
  void CloseBalloon();
  // A command of the strip's menu: a listed tab, "Tab Settings" or "Baloon Settings".
  void RunMenuCommand(int command);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void moveEvent(QMoveEvent* event) override;

 private:
  void OnBalloonRequested(int position, const QString& line, quint32 colour);
  void ShowBalloon();
  void FollowStrip();  // the balloon stays over the strip when the strip moves
  void OnHeld();
  void OpenMenu(QPoint globalPos);
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

  std::optional<BalloonRequest> request_;  // what the balloon in sight shows
  QPointer<BalloonWidget> balloon_;
  QTimer balloonTimer_;
  bool rebuildQueued_ = false;  // a resize asked for the balloon to be built again
  QTimer holdTimer_;
  // A left press waits to be a tap (it then selects a tab) or a hold (it opens the menu).
  std::unique_ptr<QMouseEvent> pendingPress_;
};

// 0x00BBGGRR as the settings and lines store colours.
QColor ColourFromRef(quint32 colourRef);
