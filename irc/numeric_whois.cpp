// WHOIS, WHO and WHOWAS replies, and the ban step of the nick menu's Ban actions: Ban
// asks for a WHOIS of the nick (keeping the channel in `actionChannel` and the nick in
// `Session.requestedNick`), and the host of the answer becomes the ban mask. Such a
// WHOIS is the client's own business and shows nothing.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "irc/numeric_words.h"
#include "irc/server_message.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool IsPendingBanWhois(const ClientContext& ctx, QStringView nick) {
  return !ctx.actionChannel.isEmpty() && EqualIgnoringCase(nick, ctx.session.requestedNick);
}

// "alice ~a somehost * :Alice" reads better as "alice ~a@somehost * :Alice".
QString WithUserAtHost(QString rest) {
  const qsizetype afterNick = rest.indexOf(u' ');
  const qsizetype afterUser = afterNick < 0 ? -1 : rest.indexOf(u' ', afterNick + 1);
  if (afterUser >= 0) rest[afterUser] = u'@';
  return rest;
}

// Rest "nick user host * :real name": ban every address of that host, then send the
// kick a "Ban, Kick" prepared.
void SendBan(ClientContext& ctx, QStringView rest) {
  const QStringView host = WordAt(rest, 2);
  if (!host.isEmpty())
    ctx.SendToServer(u"MODE "_s + ctx.actionChannel + u" +b *!*@"_s + host.toString());
  if (!ctx.pendingKickLine.isEmpty()) {
    const QString kick = std::exchange(ctx.pendingKickLine, QString());
    ctx.SendToServer(kick);
  }
}

// The end-of-list text: behind the first ":", or behind the first blank without one.
QStringView EndOfListText(QStringView rest) {
  const qsizetype colon = rest.indexOf(u':');
  if (colon >= 0) return rest.sliced(colon + 1);
  const qsizetype blank = rest.indexOf(u' ');
  return blank >= 0 ? rest.sliced(blank + 1) : rest;
}

}  // namespace

// "301 me alice :gone fishing" -> "alice is away: gone fishing"
void OnAway(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  const qsizetype separator = message.rest.indexOf(u" :");
  if (separator < 0) return;
  ctx.PrintStatus(
      message.rest.first(separator) + u" is away: "_s + message.rest.sliced(separator + 2),
      LineStyle::Normal);
}

// "311 me alice ~a somehost * :Alice A"
void OnWhoisUser(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  if (IsPendingBanWhois(ctx, WordAt(message.rest, 0))) {
    SendBan(ctx, message.rest);
    return;
  }
  ctx.PrintStatus(WithUserAtHost(message.rest), LineStyle::Whois);
}

// "312 me alice irc.test :Test server", 317 idle, 319 channels, 338 actual host.
void OnWhoisLine(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  if (IsPendingBanWhois(ctx, WordAt(message.rest, 0))) return;
  ctx.PrintStatus(message.rest, LineStyle::Whois);
}

// "315 me #room :End of WHO list", "369 me alice :End of WHOWAS"
void OnEndOfList(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  ctx.PrintStatus(EndOfListText(message.rest), LineStyle::Whois);
}

// "318 me alice :End of WHOIS list": also the end of a pending ban's WHOIS.
void OnEndOfWhois(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  if (IsPendingBanWhois(ctx, WordAt(message.rest, 0))) {
    ctx.actionChannel.clear();
    ctx.session.requestedNick.clear();
    return;
  }
  OnEndOfList(ctx, state, message);
}
