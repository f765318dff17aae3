#pragma once
// "Server": network, server, port(s) and password of one entry of the server list, for
// the Connection page's "Add" and "Edit". OK keeps the dialog open with a warning until
// network, server and port(s) are filled in.

#include "net/server_list.h"

#include <QDialog>

class ClientContext;
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
  QLineEdit* NetworkField() const { return network_; }
  QLineEdit* ServerField() const { return server_; }
  QLineEdit* PortsField() const { return ports_; }
  QLineEdit* PasswordField() const { return password_; }

  void accept() override;

 private:
  WindowShell& shell_;
  QLineEdit* network_;
  QLineEdit* server_;
  QLineEdit* ports_;
  QLineEdit* password_;
};
