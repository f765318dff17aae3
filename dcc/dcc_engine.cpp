#include "dcc/dcc_engine.h"

#include "dcc/dcc_chat.h"
#include "dcc/dcc_link.h"
#include "dcc/dcc_text.h"
#include "dcc/dcc_transfer.h"
#include "net/socket_transport.h"
#include "settings/settings_store.h"
#include "settings/word_list.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

using namespace Qt::StringLiterals;

DccEngine::DccEngine(SettingsStore& settings, TabBar& tabs, Shell& shell, DccLink& link)
    : settings_(settings), tabs_(tabs), shell_(shell), link_(link) {
  // However a tab goes (its Close, Exit, a test), its chat or transfer goes with it.
  connect(&tabs_, &TabBar::tabClosed, this, [this](TabId tab, int) { Forget(tab); });
}

DccEngine::~DccEngine() = default;

void DccEngine::HandleRequest(const QString& nick, const DccRequest& request) {
  switch (request.type) {
    case DccRequestType::Chat: return ReceiveChatOffer(nick, request);
    case DccRequestType::Send: return ReceiveOffer(nick, request);
    case DccRequestType::Resume: return HandleResumeRequest(nick, request);
    case DccRequestType::Accept: return HandleAcceptReply(nick, request);
  }
}

void DccEngine::Print(TabId tab, const QString& text, LineStyle style) {
  const int position = tabs_.FindTabByView(tab);
  if (position < tabs_.Count()) PrintToTab(tabs_, position, text, StyleColour(settings_, style));
}

void DccEngine::PrintStatus(const QString& text, LineStyle style) {
  PrintToTab(tabs_, 0, text, StyleColour(settings_, style));
}

DccChat* DccEngine::ChatOf(TabId tab) const {
  const auto found = chats_.find(tab);
  return found == chats_.end() ? nullptr : found->second.get();
}

DccTransfer* DccEngine::TransferOf(TabId tab) const {
  const auto found = transfers_.find(tab);
  return found == transfers_.end() ? nullptr : found->second.get();
}

void DccEngine::SayInChat(TabId tab, const QString& text) {
  if (DccChat* chat = ChatOf(tab)) chat->Say(text);
}

void DccEngine::StartChat(const QString& nick) { OfferChat(nick); }

void DccEngine::CancelTransfer(TabId tab) {
  if (DccTransfer* transfer = TransferOf(tab)) transfer->Cancel();
}

// A chat's tab closes at once; so does a transfer's unless its bytes are still moving,
// in which case its pump ends first and then closes it.
void DccEngine::CloseTab(TabId tab) {
  DccTransfer* transfer = TransferOf(tab);
  if (transfer && !transfer->Close()) return;
  tabs_.CloseTabByView(tab);
}

void DccEngine::Forget(TabId tab) {
  chats_.erase(tab);
  transfers_.erase(tab);
}

// A transfer always gets a tab of its own, also for a file name that another has.
DccTransfer& DccEngine::NewTransfer(const QString& name, bool sending) {
  const int position = tabs_.AddTab(name, sending ? TabKind::DccSend : TabKind::DccRecv);
  const ConversationTab* tab = tabs_.At(position);
  auto transfer = std::make_unique<DccTransfer>(tab->id, sending);
  DccTransfer& result = *transfer;
  const TabId id = tab->id;
  connect(&result, &DccTransfer::changed, this, [this, id] { emit transferChanged(id); });
  connect(&result, &DccTransfer::ended, this, [this, id](const QString& status) {
    const DccTransfer* ended = TransferOf(id);
    if (!ended) return;
    PrintStatus(u"* DCC "_s + (ended->sending ? u"SEND "_s : u"RECV "_s) + ended->fileName +
                    (ended->sending ? u" to "_s : u" from "_s) + ended->nick + u": "_s + status,
                LineStyle::Info2);
    emit transferEnded(id, status);
  });
  connect(&result, &DccTransfer::closeTab, this,
          [this, id] { QMetaObject::invokeMethod(this, [this, id] { tabs_.CloseTabByView(id); }, Qt::QueuedConnection); });
  transfers_[id] = std::move(transfer);
  tabs_.ActivateTab(position);
  return result;
}

DccTransfer* DccEngine::FindWaiting(bool sending, int port, const QString& token) const {
  for (const auto& [tab, transfer] : transfers_) {
    if (transfer->sending != sending || transfer->State() != TransferState::Waiting) continue;
    if (port != 0 ? transfer->port == port : (!token.isEmpty() && transfer->token == token))
      return transfer.get();
  }
  return nullptr;
}

// Every address, so that a peer on the local network reaches us as well as one that
// comes through the address we announce.
int DccEngine::Listen(int& port) {
  port = 0;
  return OpenListener(0, port);
}

// "LocalHost" is what we announce; when it holds no usable address (a host name, or the
// "0.0.0.0" of a fresh start), the address our server connection leaves from is better
// than an offer nobody can reach.
quint32 DccEngine::OwnAddress() const {
  QString text;
  settings_.GetString(u"LocalHost", text, 30);
  const std::optional<quint32> address = ParseDottedAddress(text);
  if (address && *address != 0) return *address;
  return link_.ServerSideAddress();
}

void DccEngine::Refuse(const QString& nick, const DccRequest& request, const QString& why) {
  static constexpr QStringView kTypes[] = {u"CHAT", u"SEND", u"RESUME", u"ACCEPT"};
  PrintStatus(u"* DCC "_s + kTypes[int(request.type)].toString() + u" from "_s + nick +
                  u" refused: "_s + why,
              LineStyle::Info2);
}

void DccEngine::IgnoreSender(const QString& nick) {
  ListAdd(settings_, nick, u"ignore");
  PrintStatus(u"* Added "_s + nick + u" to ignore list"_s, LineStyle::Info2);
}
