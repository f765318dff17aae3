#pragma once
// "Server": network, server, port(s) and password of one entry of the server list, for
// the Connection page's "Add" and "Edit", and the entry's SASL login (kept apart, in
// "sasl_accounts.txt"). OK keeps the dialog open with a warning until network, server and
// port(s) are filled in. The fields scroll when the screen is shorter than they are; OK
// and Cancel stay in sight.

#include "net/sasl_accounts.h"
#include "net/server_list.h"

#include <QDialog>

class ClientContext;
class QCheckBox;
class QLineEdit;
class WindowShell;

class ServerDialog : public QDialog {
  Q_OBJECT

 public:
  // `entry` fills the fields (empty for "Add"); `adding` gives the network field the
  // whisper pop-up too.
  ServerDialog(const ServerEntry& entry, bool adding, ClientContext& ctx, WindowShell& shell,
               QWidget* parent = nullptr);

  ServerEntry Entry() const;
  void SetSasl(const SaslAccount& sasl);
  SaslAccount Sasl() const;
  QLineEdit* NetworkField() const { return network_; }
  QLineEdit* ServerField() const { return server_; }
  QLineEdit* PortsField() const { return ports_; }
  QLineEdit* PasswordField() const { return password_; }
  QLineEdit* AccountField() const { return account_; }
  QLineEdit* SaslPasswordField() const { return saslPassword_; }
  QLineEdit* CertificateField() const { return certificate_; }
  QCheckBox* AllowPlainCheck() const { return allowPlain_; }
  QCheckBox* DisconnectCheck() const { return disconnect_; }

  void accept() override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  WindowShell& shell_;
  QLineEdit* network_;
  QLineEdit* server_;
  QLineEdit* ports_;
  QLineEdit* password_;
  QLineEdit* account_;
  QLineEdit* saslPassword_;
  QLineEdit* certificate_;
  QCheckBox* allowPlain_;
  QCheckBox* disconnect_;
};
