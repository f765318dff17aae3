// The nick fallback: while registering, a refused nick is replaced by "alternick", and
// when that is refused too the user is asked for another one. Without a nick there is
// no registration, so Cancel ends the connection.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "commands/submit_input.h"
#include "irc/numeric_words.h"
#include "irc/server_message.h"
#include "settings/settings_store.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kAlternickUnits = 60;

// Sent as the "Change nick" menu command would: "/NICK" + " " + the nick, as if typed.
void SendNick(ClientContext& ctx, const QString& nick) {
  ctx.session.requestedNick = nick;
  RunCommand(ctx, nick.isEmpty() ? u"/NICK"_s : u"/NICK "_s + nick);
}

void AskForNick(ClientContext& ctx) {
  const std::optional<QString> nick =
      ctx.shell.AskText(u"Nickname already in use"_s, u"Enter a new nick:"_s, QString(),
                        EmptyAnswer::Refused);
  if (nick) {
    SendNick(ctx, *nick);
    return;
  }
  // The session's next tick ends the connection and, the user having chosen, does not
  // reconnect.
  ctx.session.connected = false;
  ctx.session.userQuit = true;
}

}  // namespace

// "433 * me :Nickname is already in use", "432 * m!e :Erroneous nickname"
void OnNickRefused(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  ShowNumericRaw(ctx, state, message);
  // Once registered, a failed /nick of the user leaves the old nick in place.
  if (!ctx.session.currentNick.isEmpty()) return;
  QString alternick;
  ctx.settings.GetString(u"alternick", alternick, kAlternickUnits);
  // An empty "alternick" is no alternative: "NICK " alone would only earn an error reply
  // and leave registration stuck, so the user is asked instead.
  if (!alternick.isEmpty() && !EqualIgnoringCase(alternick, ctx.session.requestedNick)) {
    SendNick(ctx, alternick);
    return;
  }
  AskForNick(ctx);
}
