#include "irc/ping_handler.h"

#include "client/client_context.h"
#include "irc/dispatch.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"

using namespace Qt::StringLiterals;

void OnServerPing(ClientContext& ctx, const ServerMessage& message) {
  const QString pong = u"PONG :"_s + message.rest;
  if (!TestOption(ctx.settings, kOptHidePingPong))
    ctx.PrintStatus(u"PING? PONG!", LineStyle::Ping);
  ctx.SendToServer(pong);
}

void OnServerPong(ClientContext& ctx, const ServerMessage& message) {
  QString& token = ctx.session.keepAliveToken;
  if (!token.isEmpty() && message.rest == token) return token.clear();
  ShowRestOnStatus(ctx, message);
}
