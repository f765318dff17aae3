#include "gui/server_dialog.h"

#include "gui/shell_window.h"
#include "gui/whisper_attachment.h"
#include "settings/option_pages.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kTitle = u"Server";
constexpr auto kIncompleteTitle = u"Warning";
constexpr auto kIncompleteText = u"You must fill in network,\r\nurl and port fields!";
// What the dialog lets a user type; the list's capacities leave room for more.
constexpr int kNetworkLimit = 60;
constexpr int kServerLimit = 120;
constexpr int kPortsLimit = 60;
constexpr int kPasswordLimit = 60;

QLineEdit* AddField(QVBoxLayout* layout, const QString& label, const QString& text, int limit) {
  auto* field = new QLineEdit(text.left(limit));
  field->setMaxLength(limit);
  auto* caption = new QLabel(label);
  caption->setBuddy(field);
  layout->addWidget(caption);
  layout->addWidget(field);
  return field;
}

}  // namespace

ServerDialog::ServerDialog(const ServerEntry& entry, bool adding, ClientContext& ctx,
                           WindowShell& shell, QWidget* parent)
    : QDialog(parent), shell_(shell) {
  setWindowTitle(QString::fromUtf16(kTitle));
  auto* layout = new QVBoxLayout(this);
  network_ = AddField(layout, u"Network"_s, entry.network, kNetworkLimit);
  server_ = AddField(layout, u"Server"_s, entry.server, kServerLimit);
  ports_ = AddField(layout, u"Port(s)"_s, entry.ports, kPortsLimit);
  password_ = AddField(layout, u"Password"_s, entry.password, kPasswordLimit);
  password_->setEchoMode(QLineEdit::Password);
  // An existing network's name is chosen, not typed: only a new one is completed.
  if (adding) AttachWhispers(network_, ctx);
  for (QLineEdit* field : {server_, ports_, password_}) AttachWhispers(field, ctx);
  layout->addStretch();
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole)->setDefault(true);
  buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

ServerEntry ServerDialog::Entry() const {
  return {network_->text(), server_->text(), ports_->text(), password_->text()};
}

void ServerDialog::accept() {
  if (!ServerEntryComplete(Entry())) {
    shell_.ShowMessage(QString::fromUtf16(kIncompleteTitle), QString::fromUtf16(kIncompleteText));
    return;
  }
  QDialog::accept();
}
