// Chat offers both ways: ours (a listening socket announced to the nick) and the
// peer's (asked about, accepted by connecting, or by listening when it is passive).

#include "client/shell.h"
#include "dcc/dcc_chat.h"
#include "dcc/dcc_engine.h"
#include "dcc/dcc_link.h"
#include "dcc/dcc_text.h"
#include "settings/settings_flags.h"
#include "views/tab_bar.h"
#include "views/time_format.h"

using namespace Qt::StringLiterals;

namespace {

enum Policy { kAsk = 0, kAuto = 1, kIgnore = 2 };

}  // namespace

DccChat& DccEngine::NewChat(const QString& nick) {
  const int position = tabs_.OpenTab(nick, TabKind::DccChat);  // always a new one
  const TabId tab = tabs_.At(position)->id;
  chats_[tab] = std::make_unique<DccChat>(*this, tab, nick);
  tabs_.ActivateTab(position);
  return *chats_[tab];
}

void DccEngine::OfferChat(const QString& nick) {
  DccChat& chat = NewChat(nick);
  Print(chat.Tab(), u"Chat with "_s + nick, LineStyle::Info2);
  Print(chat.Tab(), u"Waiting for acknowledgement..."_s, LineStyle::Ping);
  DccRequest offer;
  offer.type = DccRequestType::Chat;
  offer.address = OwnAddress();
  const int listener = Listen(offer.port);
  if (listener < 0) return Print(chat.Tab(), u"DCC session closed"_s, LineStyle::Ping);
  link_.SendDccRequest(nick, offer);
  chat.Listen(listener, peerTimeout);
}

void DccEngine::ReceiveChatOffer(const QString& nick, const DccRequest& request) {
  if (!request.IsPassive() && (request.address == 0 || request.port == 0))
    return Refuse(nick, request, u"no address or port"_s);
  switch (GetNibble(settings_, u"DCC", kDccChatPolicyShift)) {
    case kAuto: return AcceptChat(nick, request);
    case kIgnore: return IgnoreSender(nick);
  }
  switch (shell_.AskDccChat(nick)) {
    case DccChoice::Accept: return AcceptChat(nick, request);
    case DccChoice::Ignore: return IgnoreSender(nick);
    default: return;
  }
}

// A passive offer asks us to listen: we answer with our address, port and its token.
void DccEngine::AcceptChat(const QString& nick, const DccRequest& request) {
  DccChat& chat = NewChat(nick);
  const QDateTime now = tabs_.Now();
  Print(chat.Tab(), u"DCC Chat Session"_s, LineStyle::Info2);
  Print(chat.Tab(), u"Client: "_s + nick + u" ("_s + DottedAddress(request.address) + u')', LineStyle::Normal);
  Print(chat.Tab(), u"Time: "_s + FormatServerTime(now.toSecsSinceEpoch() + now.offsetFromUtc()),
        LineStyle::Normal);
  Print(chat.Tab(), u"Acknowledging chat request..."_s, LineStyle::Ping);
  if (!request.IsPassive()) return chat.Connect(request.address, request.port, peerTimeout);
  DccRequest answer = request;
  answer.address = OwnAddress();
  const int listener = Listen(answer.port);
  if (listener < 0) return Print(chat.Tab(), u"DCC session closed"_s, LineStyle::Ping);
  link_.SendDccRequest(nick, answer);
  chat.Listen(listener, peerTimeout);
}
