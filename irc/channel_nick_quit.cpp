#include "irc/channel_events.h"

#include "client/client_context.h"
#include "irc/event_sound.h"
#include "irc/message_prefix.h"
#include "irc/server_message.h"
#include "views/output_path.h"

using namespace Qt::StringLiterals;
using namespace channel_events;

namespace {

// Runs `change` on every channel tab (Status at position 0 is never one) and writes
// `line` on each tab where it found the nick. Chats are left alone: a chat is named after
// the person, and neither a quit nor a rename is news there.
template <typename Change>
void ForEachChannelListing(ClientContext& ctx, QStringView line, LineStyle style, Change change) {
  for (int position = 1; position < ctx.tabs.Count(); ++position) {
    const ConversationTab* tab = ctx.tabs.At(position);
    if (tab->kind == TabKind::Channel && change(tab->name))
      PrintToTab(ctx.tabs, position, line, ctx.Colour(style));
  }
}

}  // namespace

void OnQuit(ClientContext& ctx, const ServerMessage& message) {
  const QString line = u"* "_s + ShownNick(ctx, message.prefix) + u" Quit ("_s + message.rest + u')';
  PlayEventSound(ctx, u"quit");
  const QStringView nick = NickOf(message.prefix);
  ForEachChannelListing(ctx, line, LineStyle::Quit,
                        [&](const QString& channel) { return ctx.tabs.RemoveNick(channel, nick); });
}

void OnNick(ClientContext& ctx, const ServerMessage& message) {
  const QString newNick = message.rest.isEmpty() ? message.target : message.rest;
  if (newNick.isEmpty()) return;  // an own nick must never become empty
  const QString oldNick = NickOf(message.prefix).toString();
  if (IsOwnNick(ctx, oldNick)) {
    // Still unregistered: the nick we asked for has been settled.
    if (ctx.session.currentNick.isEmpty()) ctx.session.requestedNick.clear();
    ctx.session.currentNick = newNick;
    ctx.PrintStatus(u"Your nick is now "_s + newNick, LineStyle::Nick);
  }
  const QString line = oldNick + u" is now known as "_s + newNick;
  ForEachChannelListing(ctx, line, LineStyle::Nick, [&](const QString& channel) {
    return ctx.tabs.RenameNick(channel, oldNick, newNick);
  });
}
