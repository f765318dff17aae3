#include "gui/dcc_dialogs.h"

#include "gui/touch_targets_widget.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int kDefaultPacketIndex = 3;  // 4096
constexpr int kButtonPadding = 16;

// A path field with "..." beside it; paths are long, so the field takes the width.
QLineEdit* AddPathRow(QVBoxLayout* layout, const std::function<void(QLineEdit*)>& browse) {
  auto* row = new QHBoxLayout;
  auto* field = new QLineEdit;
  auto* button = new QToolButton;
  button->setText(u"..."_s);
  row->addWidget(field, 1);
  row->addWidget(button);
  layout->addLayout(row);
  QObject::connect(button, &QToolButton::clicked, field, [field, browse] { browse(field); });
  return field;
}

}  // namespace

DccSendDialog::DccSendDialog(const QString& nick, QWidget* parent)
    : QDialog(parent), nick_(new QLineEdit(nick)), packet_(new QComboBox) {
  setWindowTitle(u"Tolv DCC Sending"_s);
  auto* layout = new QVBoxLayout(this);
  AddWrappedLabel(layout, u"Nickname:"_s, nick_);
  layout->addWidget(nick_);
  AddWrappedLabel(layout, u"Packet:"_s, packet_);
  for (int size : kDccPacketSizes) packet_->addItem(QString::number(size), size);
  packet_->setCurrentIndex(kDefaultPacketIndex);
  layout->addWidget(packet_);
  AddWrappedLabel(layout, u"Source file:"_s);
  file_ = AddPathRow(layout, [this](QLineEdit*) { Browse(); });
  layout->addStretch();
  auto* buttons = new QDialogButtonBox;
  send_ = buttons->addButton(u"Send"_s, QDialogButtonBox::AcceptRole);
  buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
  send_->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  connect(nick_, &QLineEdit::textChanged, this, &DccSendDialog::UpdateSend);
  connect(file_, &QLineEdit::textChanged, this, &DccSendDialog::UpdateSend);
  UpdateSend();
}

void DccSendDialog::Browse() {
  const QString file = QFileDialog::getOpenFileName(this, u"Select a file to send"_s, file_->text());
  if (!file.isEmpty()) file_->setText(file);
}

void DccSendDialog::UpdateSend() {
  send_->setEnabled(!nick_->text().trimmed().isEmpty() && !file_->text().isEmpty());
}

DccSendChoice DccSendDialog::Choice() const {
  return {nick_->text().trimmed(), packet_->currentData().toInt(), file_->text()};
}

DccQuestionDialog::DccQuestionDialog(const QString& title, const QString& text, const Buttons& buttons,
                                     const QString* destination, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(title);
  auto* layout = new QVBoxLayout(this);
  AddWrappedLabel(layout, text);
  if (destination) {
    AddWrappedLabel(layout, u"Destination file:"_s);
    destination_ = AddPathRow(layout, [this](QLineEdit* field) {
      const QString file = QFileDialog::getSaveFileName(this, u"Destination file"_s, field->text(), {}, nullptr,
                                                        QFileDialog::DontConfirmOverwrite);
      if (!file.isEmpty()) field->setText(file);
    });
    destination_->setText(*destination);
  }
  layout->addStretch();
  auto* box = new QDialogButtonBox;
  for (const auto& [label, choice] : buttons) {
    QPushButton* button = box->addButton(label, QDialogButtonBox::ActionRole);
    // Three buttons side by side must fit a 240-pixel screen: as narrow as their text.
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(label) + kButtonPadding);
    buttons_.emplace_back(button, choice);
    connect(button, &QPushButton::clicked, this, [this, choice] {
      choice_ = choice;
      done(QDialog::Accepted);
    });
  }
  if (!buttons_.empty()) buttons_.front().first->setDefault(true);
  layout->addWidget(box);
}

QString DccQuestionDialog::Destination() const { return destination_ ? destination_->text() : QString(); }

QPushButton* DccQuestionDialog::Button(DccChoice choice) const {
  for (const auto& [button, buttonChoice] : buttons_)
    if (buttonChoice == choice) return button;
  return nullptr;
}
