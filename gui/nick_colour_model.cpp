#include "gui/nick_colour_model.h"

void NickColourModel::SetColours(QColor user, QColor voice, QColor op) {
  user_ = user;
  voice_ = voice;
  op_ = op;
  if (rowCount() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, 0), {Qt::ForegroundRole});
}

// The shown nick carries its rank as its first character.
QVariant NickColourModel::data(const QModelIndex& index, int role) const {
  if (role != Qt::ForegroundRole) return QIdentityProxyModel::data(index, role);
  const QString nick = QIdentityProxyModel::data(index, Qt::DisplayRole).toString();
  return nick.startsWith(u'@') ? op_ : nick.startsWith(u'+') ? voice_ : user_;
}
