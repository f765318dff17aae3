// USERHOST and ISON answers. Both questions are asked by the user (/userhost, /ison, the
// menus) and by the client itself (its own address after registration, the notify
// poll); the request flags tell whose answer this is.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "irc/notify_list.h"
#include "irc/server_message.h"

using namespace Qt::StringLiterals;

// "302 me :alice=+~a@somehost"
void OnUserhostReply(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  if (!ctx.userhostRequested) {
    LearnLocalAddress(ctx, message.rest);
    return;
  }
  ctx.userhostRequested = false;
  ctx.PrintStatus(u"userhost: "_s + message.rest, LineStyle::Normal);
}

// "303 me :alice bob"
void OnIsonReply(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  if (!ctx.isonRequested) {
    CompareNotifyAnswer(ctx, state.notify, message.rest);
    return;
  }
  ctx.isonRequested = false;
  ctx.PrintStatus(u"ison: "_s + message.rest, LineStyle::Normal);
}
