#include "irc/dcc_ctcp.h"

#include "client/client_context.h"
#include "irc/ctcp_handlers.h"
#include "settings/settings_store.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kAddressSpan = qint64(1) << 32;

// Reads the next blank-separated word and moves `text` behind it.
QStringView NextWord(QStringView& text) {
  text = text.trimmed();
  const qsizetype blank = text.indexOf(u' ');
  const QStringView word = blank < 0 ? text : text.first(blank);
  text = blank < 0 ? QStringView() : text.sliced(blank + 1);
  return word;
}

// A quoted name runs to the closing quote, any other to the first blank.
std::optional<QString> NextFileName(QStringView& text) {
  text = text.trimmed();
  if (!text.startsWith(u'"')) {
    const QStringView word = NextWord(text);
    if (word.isEmpty()) return std::nullopt;
    return word.toString();
  }
  const qsizetype close = text.indexOf(u'"', 1);
  if (close < 2) return std::nullopt;  // no closing quote, or an empty name
  const QString name = text.sliced(1, close - 1).toString();
  text = text.sliced(close + 1);
  return name;
}

std::optional<qint64> Number(QStringView word, qint64 lowest, qint64 highest) {
  bool ok = false;
  const qint64 value = word.toLongLong(&ok, 10);
  if (!ok || value < lowest || value > highest) return std::nullopt;
  return value;
}

// Others send the address unsigned; we (as the client we rebuild always did) signed.
std::optional<quint32> Address(QStringView word) {
  const auto value = Number(word, -(kAddressSpan / 2), kAddressSpan - 1);
  if (!value) return std::nullopt;
  return static_cast<quint32>(*value < 0 ? *value + kAddressSpan : *value);
}

std::optional<int> Port(QStringView word) {
  const auto value = Number(word, 0, 65535);
  return value ? std::optional<int>(int(*value)) : std::nullopt;
}

std::optional<qint64> Count(QStringView word) {
  return Number(word, 0, std::numeric_limits<qint64>::max());
}

bool ParseTail(QStringView rest, DccRequest& request) {
  const auto port = Port(NextWord(rest));
  if (!port) return false;
  request.port = *port;
  if (request.type == DccRequestType::Send) {
    const auto size = Count(NextWord(rest));
    if (!size) return false;
    request.size = *size;
  } else if (request.type != DccRequestType::Chat) {
    const auto position = Count(NextWord(rest));
    if (!position) return false;
    request.position = *position;
  }
  request.token = NextWord(rest).toString();
  return true;
}

std::optional<DccRequestType> TypeOf(QStringView word) {
  const auto is = [&](QStringView name) { return word.compare(name, Qt::CaseInsensitive) == 0; };
  if (is(u"CHAT")) return DccRequestType::Chat;
  if (is(u"SEND")) return DccRequestType::Send;
  if (is(u"RESUME")) return DccRequestType::Resume;
  if (is(u"ACCEPT")) return DccRequestType::Accept;
  return std::nullopt;
}

QString SignedAddress(quint32 address) { return QString::number(static_cast<qint32>(address)); }

}  // namespace

std::optional<DccRequest> ParseDccRequest(QStringView argument) {
  const qsizetype blank = argument.indexOf(u' ');
  if (blank <= 0) return std::nullopt;
  const auto type = TypeOf(argument.first(blank));
  if (!type) return std::nullopt;
  QStringView rest = argument.sliced(blank + 1);
  DccRequest request;
  request.type = *type;
  if (*type == DccRequestType::Chat) {
    if (NextWord(rest).isEmpty()) return std::nullopt;  // the protocol word, "chat"
  } else {
    const auto name = NextFileName(rest);
    if (!name) return std::nullopt;
    request.fileName = *name;
  }
  if (*type == DccRequestType::Chat || *type == DccRequestType::Send) {
    const auto address = Address(NextWord(rest));
    if (!address) return std::nullopt;
    request.address = *address;
  }
  if (!ParseTail(rest, request)) return std::nullopt;
  return request;
}

QString DccRequestText(const DccRequest& request) {
  QString text;
  const QString quoted = u'"' + request.fileName + u"\" "_s;
  switch (request.type) {
    case DccRequestType::Chat:
      text = u"DCC CHAT chat "_s + SignedAddress(request.address) + u' ' + QString::number(request.port);
      break;
    case DccRequestType::Send:
      text = u"DCC SEND \""_s + QString(request.fileName).replace(u' ', u'_') + u"\" "_s +
             SignedAddress(request.address) + u' ' + QString::number(request.port) + u' ' +
             QString::number(request.size);
      break;
    case DccRequestType::Resume:
    case DccRequestType::Accept:
      text = (request.type == DccRequestType::Resume ? u"DCC RESUME "_s : u"DCC ACCEPT "_s) + quoted +
             QString::number(request.port) + u' ' + QString::number(request.position);
      break;
  }
  if (!request.token.isEmpty()) text += u' ' + request.token;
  return text;
}

void SendDccRequest(ClientContext& ctx, const QString& nick, const DccRequest& request) {
  const bool ownOffer = request.token.isEmpty() &&
                        (request.type == DccRequestType::Chat || request.type == DccRequestType::Send);
  if (ownOffer) {
    QString localHost;
    ctx.settings.GetString(u"LocalHost", localHost, 30);
    const QString what = request.type == DccRequestType::Chat
                             ? u"DCC Chat ("_s
                             : u"DCC Send "_s + QString(request.fileName).replace(u' ', u'_') + u" ("_s;
    ctx.SendToServer(u"NOTICE "_s + nick + u" :"_s + what + localHost + u')');
  }
  ctx.SendToServer(u"PRIVMSG "_s + nick + u" :"_s + kCtcpMark + DccRequestText(request) + kCtcpMark);
}

// The flag also stops a second offer that arrives while the first one's question is up
// (a dialog runs its own event loop, which goes on reading the server).
void OnDccCtcp(ClientContext& ctx, QStringView nick, QStringView argument) {
  if (ctx.dccOfferBusy) return;
  const std::optional<DccRequest> request = ParseDccRequest(argument);
  if (!request) return;
  ctx.dccOfferBusy = true;
  ctx.dccEngine.HandleRequest(nick.toString(), *request);
  ctx.dccOfferBusy = false;
}
