#include "irc/channel_events.h"

#include "client/client_context.h"
#include "irc/event_sound.h"
#include "irc/message_prefix.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"

using namespace Qt::StringLiterals;
using namespace channel_events;

// The rest is "victim :reason". Without a reason the victim stands in for it, so the line
// still ends in parentheses: "bob was kicked by alice (bob)".
void OnKick(ClientContext& ctx, const ServerMessage& message) {
  const QString& rest = message.rest;
  const qsizetype mark = rest.indexOf(u" :");
  const QString victim = mark < 0 ? rest : rest.first(mark);
  const QString reason = mark < 0 ? rest : rest.sliced(mark + 2);
  if (victim.isEmpty()) return;  // nobody to remove, nothing to tell
  PlayEventSound(ctx, u"kick");
  // The kicker by nick only, whatever "Show addresses" says.
  const QString byWhom = NickOf(message.prefix).toString() + u" ("_s + reason + u')';
  const QString& channel = message.target;

  if (!IsOwnNick(ctx, victim)) {
    ctx.tabs.RemoveNick(channel, victim);
    PrintToChannel(ctx, channel, victim + u" was kicked by "_s + byWhom, LineStyle::Kick);
    return;
  }
  // The tab goes at once; with the rejoin on, the server's JOIN reply opens it afresh.
  ctx.tabs.CloseTabByName(channel, TabKind::Channel);
  if (TestOption(ctx.settings, kOptRejoinAfterKick) && !channel.isEmpty())
    ctx.SendToServer(u"JOIN "_s + channel);
  ctx.PrintStatus(u"You were kicked by "_s + byWhom, LineStyle::Kick);
}
