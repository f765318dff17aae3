#include "irc/message_handlers.h"

#include "client/client_context.h"
#include "irc/event_sound.h"
#include "irc/message_prefix.h"
#include "irc/server_message.h"
#include "irc/word_lists.h"
#include "views/output_path.h"

using namespace Qt::StringLiterals;

namespace {

bool IsOwnNick(const ClientContext& ctx, QStringView name) {
  const QString& own = ctx.session.currentNick;
  return !own.isEmpty() && name.compare(own, Qt::CaseInsensitive) == 0;
}

}  // namespace

int ConversationTabFor(ClientContext& ctx, QStringView target, QStringView senderNick) {
  const QStringView addressee = NickOf(target);  // the part before any "!"
  // A nameless sender (a broken prefix) gets no nameless Chat tab: Status shows it.
  if (IsOwnNick(ctx, addressee))
    return senderNick.isEmpty() ? 0 : ctx.tabs.OpenTab(senderNick, TabKind::Chat);
  const int channel = ctx.tabs.FindTab(addressee, TabKind::Channel);
  return channel >= 0 ? channel : 0;
}

void OnPrivmsg(ClientContext& ctx, const ServerMessage& message) {
  const QStringView nick = NickOf(message.prefix);
  if (IsIgnored(ctx, nick)) return;
  const QString line = u"<"_s + nick.toString() + u"> "_s + message.rest;
  // The tab first: a new Chat tab's "query" sound comes before a highlight's sound.
  const int position = ConversationTabFor(ctx, message.target, nick);
  PrintMessageLine(ctx, position, line, HighlightStyle(ctx, message.rest, LineStyle::Normal));
}

void OnNotice(ClientContext& ctx, const ServerMessage& message) {
  const QStringView nick = NickOf(message.prefix);
  if (IsIgnored(ctx, nick)) return;
  // Before registration the server's own chatter arrives as notices: no sound for it.
  const bool registered = !ctx.session.currentNick.isEmpty();
  if (registered) PlayEventSound(ctx, u"notice");
  const quint32 colour = ctx.Colour(LineStyle::Notice);
  if (registered && !IsOwnNick(ctx, message.target)) {
    const QString line = u"-"_s + nick.toString() + u':' + message.target + u"- "_s + message.rest;
    PrintToNamedTab(ctx.tabs, message.target, TabKind::Channel, line, colour);
    return;
  }
  // Whatever the user is looking at: a notice to us has no conversation of its own.
  const QString line = u"-"_s + nick.toString() + u"- "_s + message.rest;
  PrintToTab(ctx.tabs, ctx.tabs.Current(), line, colour);
}
