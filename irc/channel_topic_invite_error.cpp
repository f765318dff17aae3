#include "irc/channel_events.h"

#include "client/client_context.h"
#include "irc/event_sound.h"
#include "irc/message_prefix.h"
#include "irc/server_message.h"

using namespace Qt::StringLiterals;
using namespace channel_events;

// The topic is shown, not kept: the channel's tab has nowhere to hold it.
void OnTopic(ClientContext& ctx, const ServerMessage& message) {
  const QString line = NickOf(message.prefix).toString() + u" changes topic to '"_s + message.rest + u'\'';
  PrintToChannel(ctx, message.target, line, LineStyle::Topic);
}

// The address is always shown: an invitation from a stranger is worth a closer look.
void OnInvite(ClientContext& ctx, const ServerMessage& message) {
  const QString line = NickOf(message.prefix).toString() + u" ("_s +
                       AddressOf(message.prefix).toString() +
                       u") invites you to join "_s + message.rest;
  PlayEventSound(ctx, u"invite");
  ctx.PrintStatus(line, LineStyle::Invite);
}

// The connection is not closed here: the next poll tick notices the cleared flag and
// runs the one disconnect path.
void OnServerError(ClientContext& ctx, const ServerMessage& message) {
  ctx.PrintStatus(message.rest, LineStyle::Info2);
  ctx.session.connected = false;
}
