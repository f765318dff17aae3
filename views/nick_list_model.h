#pragma once
// The nick list of one channel tab as an item model for the list beside the text. It
// follows the tab bar's change signals with one reset per turn of the event loop: a
// names burst of thousands of nicks becomes one reset, not thousands. Until that reset
// the model keeps reporting the row count the view last saw.

#include "views/conversation_tab.h"

#include <QAbstractListModel>

class TabBar;

class NickListModel : public QAbstractListModel {
  Q_OBJECT

 public:
  explicit NickListModel(TabBar& tabs, QObject* parent = nullptr);

  // The channel tab shown; 0 for none.
  void ShowTab(TabId tab);
  TabId ShownTab() const { return tab_; }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  const NickList* List() const;
  void OnNickListChanged(TabId tab);
  void Reset();

  TabBar& tabs_;
  TabId tab_ = 0;
  int rows_ = 0;
  bool resetPending_ = false;
};
