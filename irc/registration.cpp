#include "irc/registration.h"

#include "client/client_context.h"
#include "dcc/dcc_text.h"
#include "settings/settings_store.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"

using namespace Qt::StringLiterals;

namespace {

bool IsEarlyNumeric(QStringView command) {
  const int number = CommandNumber(command);
  return number >= 1 && number <= 99;
}

// The server greets with ident and host-name notices to "AUTH" before it knows our nick.
bool IsAuthNotice(const ServerMessage& message) {
  return message.command.compare(u"NOTICE", Qt::CaseInsensitive) == 0 &&
         message.target.compare(u"AUTH", Qt::CaseInsensitive) == 0;
}

// DCC offers carry our address ("LocalHost"). With "Auto" on it is learned: the server is
// asked what it sees of us, and its 302 answer arrives while no USERHOST of the user's is
// pending and is taken as the address; with the look-up set to "Normal" the address our
// server connection leaves from is taken instead, and no question goes to the server.
void LearnOwnAddress(ClientContext& ctx, const QString& nick) {
  if (!TestFlag(ctx.settings, u"DCC", kDccAutoAddress)) return;
  if (TestFlag(ctx.settings, u"DCC", kDccServerLookup)) return ctx.SendToServer(u"USERHOST "_s + nick);
  const quint32 address = ServerLinkAddress(ctx.session);
  if (address == 0) return;
  const QString dotted = DottedAddress(address);
  ctx.settings.SetString(u"LocalHost", dotted, int(dotted.size()) + 1);
}

}  // namespace

void RegistrationGate(ClientContext& ctx, const ServerMessage& message) {
  Session& session = ctx.session;
  if (IsEarlyNumeric(message.command)) {
    // The welcome numerics are addressed to our nick as the server has it, which may not
    // be the one we asked for: the server's idea of the nick wins.
    if (!session.currentNick.isEmpty())
      session.currentNick = message.target;
    else
      RegistrationComplete(ctx, message.target);
    return;
  }
  if (IsAuthNotice(message)) return;
  if (session.currentNick.isEmpty()) RegistrationComplete(ctx, message.target);
}

void RegistrationComplete(ClientContext& ctx, const QString& firstParameter) {
  ctx.session.currentNick = firstParameter;
  ctx.session.requestedNick.clear();
  const QString& nick = ctx.session.currentNick;

  LearnOwnAddress(ctx, nick);
  if (TestOption(ctx.settings, kOptInvisible)) ctx.SendToServer(u"MODE "_s + nick + u" +i"_s);
  if (TestOption(ctx.settings, kOptRejoinOnConnect))
    ctx.tabs.RejoinChannels([&ctx](const QString& line) { ctx.SendToServer(line); });
}
