// "Connection": the server to connect to, chosen by network and then by server, the
// server list's Add/Edit/Delete, and the user's names.

#include "gui/options_page_parts.h"
#include "gui/server_dialog.h"
#include "gui/shell_window.h"
#include "client/client_context.h"
#include "net/sasl_accounts.h"
#include "net/server_list.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kDeleteTitle = u"Delete server";
constexpr auto kDeleteText = u"Are you sure?";
constexpr auto kSaveFailedTitle = u"ERROR!";
constexpr auto kSaveFailedText = u"Can't write the server list to ";
constexpr auto kSaslSaveFailedText = u"Can't write the SASL logins to ";

class ConnectionPage : public OptionsPage {
 public:
  ConnectionPage(const OptionsPageEnv& env, QWidget* parent);
  void Load() override;
  void Save() override;

 private:
  void Refill(int selected);
  void ShowNetwork(int networkIndex, int selected);
  int SelectedServer() const;
  void Add();
  void Edit();
  void Delete();
  void Store();
  void StoreSasl(const QString& host, const SaslAccount& account, const QString& oldHost = {});
  bool HostInUse(const QString& host) const;

  OptionsPageEnv env_;
  QString listPath_;
  QString saslPath_;
  ServerList list_;
  QComboBox* networks_;
  QComboBox* servers_;
  QLineEdit* nick_;
  QLineEdit* alterNick_;
  QCheckBox* invisible_;
  QLineEdit* fullName_;
  QLineEdit* email_;
};

ConnectionPage::ConnectionPage(const OptionsPageEnv& env, QWidget* parent)
    : OptionsPage(parent), env_(env), listPath_(ServerListPath(env.ctx.settings)),
      saslPath_(SaslAccountsPath(env.ctx.settings)), list_(LoadServerList(listPath_)) {
  QVBoxLayout* page = StartPage(this);
  QVBoxLayout* server = AddGroup(page, u"Server"_s);
  networks_ = AddCombo(server, u"Network:"_s);
  servers_ = AddCombo(server, {});
  auto* buttons = new QHBoxLayout;
  for (const auto& [text, action] : {std::pair{u"Add"_s, &ConnectionPage::Add},
                                     {u"Edit"_s, &ConnectionPage::Edit},
                                     {u"Delete"_s, &ConnectionPage::Delete}}) {
    auto* button = MakeRowButton(text);
    connect(button, &QPushButton::clicked, this, [this, action = action] { (this->*action)(); });
    buttons->addWidget(button);
  }
  server->addLayout(buttons);
  QVBoxLayout* user = AddGroup(page, u"User"_s);
  nick_ = AddField(env, user, u"Nick Name"_s, TextLimit(u"nick"));
  alterNick_ = AddField(env, user, u"Alter Nick"_s, TextLimit(u"alternick"));
  invisible_ = AddCheck(user, kInvisibleCheck);
  fullName_ = AddField(env, user, u"Fullname"_s, TextLimit(u"fullname"));
  email_ = AddField(env, user, u"Email"_s, TextLimit(u"email"));
  FinishPage(this, page, env.factor);
  connect(networks_, &QComboBox::activated, this, [this](int index) { ShowNetwork(index, -1); });
}

void ConnectionPage::Load() {
  const ConnectionOptions o = LoadConnectionOptions(env_.ctx.settings);
  Refill(o.server);
  nick_->setText(o.nick);
  alterNick_->setText(o.alterNick);
  invisible_->setChecked(o.invisible);
  fullName_->setText(o.fullName);
  email_->setText(o.email);
}

void ConnectionPage::Save() {
  SaveConnectionOptions(env_.ctx.settings, {SelectedServer(), nick_->text(), alterNick_->text(),
                                            fullName_->text(), email_->text(), invisible_->isChecked()});
}

// The networks, each once; the network of `selected` shown with its servers.
void ConnectionPage::Refill(int selected) {
  networks_->clear();
  networks_->addItems(NetworksOf(list_));
  const ServerEntry* entry = list_.ServerAt(selected);
  ShowNetwork(entry ? networks_->findText(entry->network, Qt::MatchExactly) : -1, selected);
}

// Choosing a network offers its first server; `selected` overrides that.
void ConnectionPage::ShowNetwork(int networkIndex, int selected) {
  networks_->setCurrentIndex(networkIndex);
  servers_->clear();
  if (networkIndex < 0) return;
  for (int index : ServersOfNetwork(list_, networks_->itemText(networkIndex)))
    servers_->addItem(list_.Entries()[index].server, index);
  servers_->setCurrentIndex(selected < 0 ? 0 : servers_->findData(selected));
}

int ConnectionPage::SelectedServer() const {
  return servers_->currentIndex() < 0 ? -1 : servers_->currentData().toInt();
}

// The list is written at once: Cancel does not take back a server added or changed.
void ConnectionPage::Store() {
  if (!SaveServerList(list_, listPath_))
    env_.shell.ShowMessage(QString::fromUtf16(kSaveFailedTitle), QString::fromUtf16(kSaveFailedText) + listPath_);
}

// A SASL login belongs to a host, so entries that share a host share it; it goes when the
// last entry with its host is renamed or deleted.
void ConnectionPage::StoreSasl(const QString& host, const SaslAccount& account, const QString& oldHost) {
  if (!StoreSaslAccount(saslPath_, host, account, HostInUse(oldHost) ? QString() : oldHost))
    env_.shell.ShowMessage(QString::fromUtf16(kSaveFailedTitle), QString::fromUtf16(kSaslSaveFailedText) + saslPath_);
}

bool ConnectionPage::HostInUse(const QString& host) const {
  for (const ServerEntry& entry : list_.Entries())
    if (entry.server.compare(host, Qt::CaseInsensitive) == 0) return true;
  return false;
}

void ConnectionPage::Add() {
  ServerDialog dialog({}, true, env_.ctx, env_.shell, window());
  if (env_.shell.Run(dialog) != QDialog::Accepted) return;
  const int selected = SelectedServer();
  const QString host = list_.AppendServer(dialog.Entry()).server;
  Store();
  StoreSasl(host, dialog.Sasl());
  Refill(selected);
}

void ConnectionPage::Edit() {
  const int selected = SelectedServer();
  ServerEntry* entry = list_.ServerAt(selected);
  if (!entry) return;
  ServerDialog dialog(*entry, false, env_.ctx, env_.shell, window());
  dialog.SetSasl(FindSaslAccount(saslPath_, entry->server).value_or(SaslAccount()));
  if (env_.shell.Run(dialog) != QDialog::Accepted) return;
  const QString oldHost = entry->server;
  *entry = FittedServerEntry(dialog.Entry());
  Store();
  StoreSasl(entry->server, dialog.Sasl(), oldHost);
  Refill(selected);
}

void ConnectionPage::Delete() {
  const ServerEntry* entry = list_.ServerAt(SelectedServer());
  if (!entry || !env_.shell.AskYesNo(QString::fromUtf16(kDeleteTitle), QString::fromUtf16(kDeleteText))) return;
  const QString host = entry->server;
  list_.RemoveServer(entry);
  Store();
  if (!HostInUse(host)) StoreSasl(host, {});
  Refill(-1);
}

}  // namespace

OptionsPage* MakeConnectionPage(const OptionsPageEnv& env, QWidget* parent) {
  return new ConnectionPage(env, parent);
}
