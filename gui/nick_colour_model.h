#pragma once
// The nick list as the window shows it: each nick in the colour the scheme ("kolory")
// gives its rank, operators, voiced users and the others apart. The list itself stays in
// the core's model; this only adds the colours.

#include <QColor>
#include <QIdentityProxyModel>

class NickColourModel : public QIdentityProxyModel {
 public:
  using QIdentityProxyModel::QIdentityProxyModel;

  void SetColours(QColor user, QColor voice, QColor op);
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  QColor user_, voice_, op_;
};
