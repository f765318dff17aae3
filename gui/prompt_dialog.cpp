#include "gui/prompt_dialog.h"

#include "gui/touch_targets_widget.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QLineEdit* NewField() {
  auto* field = new QLineEdit;
  field->setMaxLength(kPromptMaxLength);
  return field;
}

// The confirming button is the default one, so Enter confirms, but only while it is
// enabled (QDialog does not click a greyed default button).
QPushButton* AddButtons(QDialog* dialog, QVBoxLayout* layout, const QString& acceptText) {
  auto* buttons = new QDialogButtonBox;
  QPushButton* accept = buttons->addButton(acceptText, QDialogButtonBox::AcceptRole);
  buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
  accept->setDefault(true);
  QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  layout->addWidget(buttons);
  return accept;
}

}  // namespace

OneLinePromptDialog::OneLinePromptDialog(const QString& title, const QString& label,
                                         const QString& initial, EmptyAnswer empty,
                                         QWidget* parent)
    : QDialog(parent), field_(NewField()), empty_(empty) {
  setWindowTitle(title);
  auto* layout = new QVBoxLayout(this);
  AddWrappedLabel(layout, label, field_);
  layout->addWidget(field_);
  layout->addStretch();
  ok_ = AddButtons(this, layout, u"OK"_s);
  field_->setText(initial);
  field_->selectAll();
  connect(field_, &QLineEdit::textChanged, this, &OneLinePromptDialog::UpdateOk);
  UpdateOk();
}

QString OneLinePromptDialog::Text() const { return field_->text(); }

void OneLinePromptDialog::UpdateOk() {
  ok_->setEnabled(empty_ == EmptyAnswer::Allowed || !field_->text().isEmpty());
}

TwoLinePromptDialog::TwoLinePromptDialog(const QString& title, const QString& firstLabel,
                                         const QString& secondLabel, QWidget* parent)
    : QDialog(parent), first_(NewField()), second_(NewField()) {
  setWindowTitle(title);
  auto* layout = new QVBoxLayout(this);
  AddWrappedLabel(layout, firstLabel, first_);
  layout->addWidget(first_);
  AddWrappedLabel(layout, secondLabel, second_);
  layout->addWidget(second_);
  layout->addStretch();
  ok_ = AddButtons(this, layout, u"OK"_s);
  connect(first_, &QLineEdit::textChanged, this, &TwoLinePromptDialog::UpdateOk);
  connect(second_, &QLineEdit::textChanged, this, &TwoLinePromptDialog::UpdateOk);
  UpdateOk();
}

std::pair<QString, QString> TwoLinePromptDialog::Texts() const {
  return {first_->text(), second_->text()};
}

void TwoLinePromptDialog::UpdateOk() {
  ok_->setEnabled(!first_->text().isEmpty() && !second_->text().isEmpty());
}

ListPromptDialog::ListPromptDialog(const QString& title, const QString& label,
                                   const QStringList& entries, const QString& acceptText,
                                   QWidget* parent)
    : QDialog(parent), list_(new QListWidget) {
  setWindowTitle(title);
  auto* layout = new QVBoxLayout(this);
  AddWrappedLabel(layout, label, list_);
  list_->addItems(entries);
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  layout->addWidget(list_, 1);
  accept_ = AddButtons(this, layout, acceptText);
  connect(list_, &QListWidget::itemSelectionChanged, this, &ListPromptDialog::UpdateAccept);
  UpdateAccept();
}

std::optional<int> ListPromptDialog::ChosenIndex() const {
  const QList<QListWidgetItem*> chosen = list_->selectedItems();
  if (chosen.isEmpty()) return std::nullopt;
  return list_->row(chosen.first());
}

void ListPromptDialog::UpdateAccept() { accept_->setEnabled(ChosenIndex().has_value()); }
