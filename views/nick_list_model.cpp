#include "views/nick_list_model.h"

#include "views/tab_bar.h"

#include <QTimer>

NickListModel::NickListModel(TabBar& tabs, QObject* parent) : QAbstractListModel(parent), tabs_(tabs) {
  connect(&tabs_, &TabBar::nickListChanged, this, &NickListModel::OnNickListChanged);
  connect(&tabs_, &TabBar::tabClosed, this, [this](TabId id, int) {
    if (id == tab_) ShowTab(0);
  });
}

void NickListModel::ShowTab(TabId tab) {
  tab_ = tab;
  Reset();
}

void NickListModel::Reset() {
  resetPending_ = false;
  beginResetModel();
  const NickList* list = List();
  rows_ = list ? list->Count() : 0;
  endResetModel();
}

const NickList* NickListModel::List() const {
  const ConversationTab* tab = tabs_.At(tabs_.FindTabByView(tab_));
  return tab ? tab->nickList.get() : nullptr;
}

int NickListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

QVariant NickListModel::data(const QModelIndex& index, int role) const {
  const NickList* list = List();
  if (!list || role != Qt::DisplayRole || index.row() < 0 || index.row() >= list->Count()) return {};
  return list->At(index.row()).shown;
}

void NickListModel::OnNickListChanged(TabId tab) {
  if (tab != tab_ || resetPending_) return;
  resetPending_ = true;
  QTimer::singleShot(0, this, &NickListModel::Reset);
}
