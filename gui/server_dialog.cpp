#include "gui/server_dialog.h"

#include "gui/shell_window.h"
#include "gui/whisper_attachment.h"
#include "settings/option_pages.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFontInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kTitle = u"Server";
constexpr auto kIncompleteTitle = u"Warning";
constexpr auto kIncompleteText = u"You must fill in network,\r\nurl and port fields!";
constexpr auto kSaslGroup = u"SASL login";
constexpr auto kAllowPlainText = u"Allow without TLS";
constexpr auto kDisconnectText = u"On failure: disconnect";
// What the dialog lets a user type; the list's capacities leave room for more.
constexpr int kNetworkLimit = 60;
constexpr int kServerLimit = 120;
constexpr int kPortsLimit = 60;
constexpr int kPasswordLimit = 60;
// Services accounts are short; a login token may not be.
constexpr int kAccountLimit = 100;
constexpr int kSaslPasswordLimit = 400;
constexpr int kCertificateLimit = 400;

QLineEdit* AddField(QVBoxLayout* layout, const QString& label, const QString& text, int limit) {
  auto* field = new QLineEdit(text.left(limit));
  field->setMaxLength(limit);
  auto* caption = new QLabel(label);
  caption->setBuddy(field);
  layout->addWidget(caption);
  layout->addWidget(field);
  return field;
}

QCheckBox* AddCheck(QVBoxLayout* layout, const char16_t* text) {
  auto* check = new QCheckBox(QString::fromUtf16(text));
  layout->addWidget(check);
  return check;
}

}  // namespace

ServerDialog::ServerDialog(const ServerEntry& entry, bool adding, ClientContext& ctx,
                           WindowShell& shell, QWidget* parent)
    : QDialog(parent), shell_(shell) {
  setWindowTitle(QString::fromUtf16(kTitle));
  auto* outer = new QVBoxLayout(this);
  auto* scroll = new QScrollArea;
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  network_ = AddField(layout, u"Network"_s, entry.network, kNetworkLimit);
  server_ = AddField(layout, u"Server"_s, entry.server, kServerLimit);
  ports_ = AddField(layout, u"Port(s)"_s, entry.ports, kPortsLimit);
  password_ = AddField(layout, u"Password"_s, entry.password, kPasswordLimit);
  password_->setEchoMode(QLineEdit::Password);
  auto* sasl = new QGroupBox(QString::fromUtf16(kSaslGroup));
  auto* saslLayout = new QVBoxLayout(sasl);
  account_ = AddField(saslLayout, u"Account"_s, {}, kAccountLimit);
  saslPassword_ = AddField(saslLayout, u"Password"_s, {}, kSaslPasswordLimit);
  saslPassword_->setEchoMode(QLineEdit::Password);
  // Filled in, the login is by this certificate (EXTERNAL) and the password is not used.
  certificate_ = AddField(saslLayout, u"Certificate file (instead of password)"_s, {}, kCertificateLimit);
  allowPlain_ = AddCheck(saslLayout, kAllowPlainText);
  disconnect_ = AddCheck(saslLayout, kDisconnectText);
  layout->addWidget(sasl);
  layout->addStretch();
  scroll->setWidget(page);
  outer->addWidget(scroll, 1);
  // An existing network's name is chosen, not typed: only a new one is completed. A SASL
  // password is a secret and is never offered words.
  if (adding) AttachWhispers(network_, ctx);
  for (QLineEdit* field : {server_, ports_, password_, account_}) AttachWhispers(field, ctx);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole)->setDefault(true);
  buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  outer->addWidget(buttons);
}

ServerEntry ServerDialog::Entry() const {
  return {network_->text(), server_->text(), ports_->text(), password_->text()};
}

void ServerDialog::SetSasl(const SaslAccount& sasl) {
  account_->setText(sasl.account.left(kAccountLimit));
  saslPassword_->setText(sasl.password.left(kSaslPasswordLimit));
  allowPlain_->setChecked(sasl.allowPlain);
  disconnect_->setChecked(sasl.disconnectOnFailure);
  certificate_->setText(sasl.certificate.left(kCertificateLimit));
}

SaslAccount ServerDialog::Sasl() const {
  const QString certificate = certificate_->text().trimmed();
  return {account_->text().trimmed(), certificate.isEmpty() ? saslPassword_->text() : QString(),
          allowPlain_->isChecked(), disconnect_->isChecked(), certificate};
}

// The marks grow with the text, which the shell sets for the screen just before showing.
void ServerDialog::showEvent(QShowEvent* event) {
  const QString indicator = u"QCheckBox::indicator { width: %1px; height: %1px; }"_s.arg(QFontInfo(font()).pixelSize());
  for (QCheckBox* check : {allowPlain_, disconnect_}) check->setStyleSheet(indicator);
  QDialog::showEvent(event);
}

void ServerDialog::accept() {
  if (!ServerEntryComplete(Entry())) {
    shell_.ShowMessage(QString::fromUtf16(kIncompleteTitle), QString::fromUtf16(kIncompleteText));
    return;
  }
  QDialog::accept();
}
