#pragma once
// The page of a file-transfer tab ("DCCFile"): the transfer's record as label/value rows,
// a progress bar, and "Cancel" and "Close". It shows the core's DccTransfer and forwards
// the buttons; the peer's name opens the peer's menu.

#include "views/conversation_tab.h"

#include <QWidget>

class DccEngine;
class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

class DccProgressWidget : public QWidget {
  Q_OBJECT

 public:
  DccProgressWidget(DccEngine& engine, TabId tab, QWidget* parent = nullptr);

  // The value shown beside a label ("Status:", "Rate:", ...), for tests.
  QString Value(const QString& label) const;
  QPushButton* CancelButton() const { return cancel_; }
  QPushButton* CloseButton() const { return close_; }

 signals:
  void menuRequested(QPoint globalPos);

 private:
  void Refresh();

  DccEngine& engine_;
  TabId tab_;
  QLabel* heading_;
  QToolButton* peer_;
  QLabel* peerLabel_;
  QLabel* doneLabel_;
  std::vector<std::pair<QString, QLabel*>> values_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  QPushButton* close_;
};
