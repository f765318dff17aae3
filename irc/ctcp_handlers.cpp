#include "irc/ctcp_handlers.h"

#include "client/client_context.h"
#include "irc/dcc_ctcp.h"
#include "irc/event_sound.h"
#include "irc/message_handlers.h"
#include "irc/message_prefix.h"
#include "irc/server_message.h"
#include "irc/word_lists.h"
#include "views/output_path.h"

#include <QDateTime>
#include <QtNumeric>

using namespace Qt::StringLiterals;

namespace {

bool SameWord(QStringView a, QStringView b) {
  return a.size() == b.size() && a.compare(b, Qt::CaseInsensitive) == 0;
}

bool IsOwnNick(const ClientContext& ctx, QStringView name) {
  return !ctx.session.currentNick.isEmpty() && SameWord(name, ctx.session.currentNick);
}

// The echo goes back verbatim; a line break or NUL inside it would let the sender end
// our NOTICE early and have us send a command of their choosing.
bool SafeToEcho(QStringView text) {
  for (QChar c : text)
    if (c == u'\r' || c == u'\n' || c == QChar(0)) return false;
  return true;
}

}  // namespace

std::optional<CtcpParts> ParseCtcp(QStringView rest) {
  if (!rest.startsWith(kCtcpMark)) return std::nullopt;
  const qsizetype close = rest.indexOf(kCtcpMark, 1);
  if (close < 0) return std::nullopt;
  const qsizetype blank = rest.indexOf(u' ', 1);
  if (blank < 0 || blank > close) return std::nullopt;
  return CtcpParts{rest.sliced(1, blank - 1), rest.sliced(blank + 1, close - blank - 1)};
}

void OnCtcp(ClientContext& ctx, const ServerMessage& message) {
  const std::optional<CtcpParts> ctcp = ParseCtcp(message.rest);
  if (!ctcp) return;  // malformed: dropped, never shown as text
  const QStringView nick = NickOf(message.prefix);
  if (IsIgnored(ctx, nick)) return;
  const bool reply = SameWord(message.command, u"NOTICE");
  if (SameWord(ctcp->keyword, u"ACTION")) {
    if (!reply) OnCtcpAction(ctx, message, ctcp->argument);
  } else if (SameWord(ctcp->keyword, u"PING")) {
    if (reply)
      OnCtcpPingReply(ctx, message, ctcp->argument);
    else
      OnCtcpPingRequest(ctx, message);
  } else if (SameWord(ctcp->keyword, u"DCC")) {
    OnDccCtcp(ctx, nick, ctcp->argument);
  }
  // Every other keyword: no VERSION, TIME or other answer reveals anything about us.
}

void OnCtcpAction(ClientContext& ctx, const ServerMessage& message, QStringView argument) {
  const QStringView nick = NickOf(message.prefix);
  const QString line = u"* "_s + nick.toString() + u' ' + argument.toString();
  const LineStyle style = HighlightStyle(ctx, argument, LineStyle::Action);
  const int position = ConversationTabFor(ctx, message.target, nick);
  PrintMessageLine(ctx, position, line, style);
}

void OnCtcpPingRequest(ClientContext& ctx, const ServerMessage& message) {
  const QStringView nick = NickOf(message.prefix);
  if (!SafeToEcho(message.rest)) return;
  PlayEventSound(ctx, u"ping");
  ctx.SendToServer(QString(u"NOTICE "_s + nick.toString() + u" :"_s + message.rest));
  if (IsOwnNick(ctx, message.target)) {
    ctx.PrintStatus(QString(u'[' + nick.toString() + u" PING]"_s), LineStyle::Ping);
    return;
  }
  // A ping sent to a channel is shown there, naming the channel.
  const QString line = u'[' + nick.toString() + u':' + message.target + u" PING]"_s;
  PrintToNamedTab(ctx.tabs, message.target, TabKind::Channel, line, ctx.Colour(LineStyle::Ping));
}

void OnCtcpPingReply(ClientContext& ctx, const ServerMessage& message, QStringView argument) {
  const std::optional<qint64> sent = ParsePingSeconds(argument);
  if (!sent) return;  // not a count we sent: nothing sensible to show
  qint64 elapsed = 0;
  if (qSubOverflow(ctx.tabs.Now().toSecsSinceEpoch(), *sent, &elapsed)) return;
  const QString line = u'[' + NickOf(message.prefix).toString() + u" PING reply]: "_s +
                       QString::number(elapsed) + u"secs"_s;  // no blank before "secs"
  ctx.PrintStatus(line, LineStyle::Ping);
}

std::optional<qint64> ParsePingSeconds(QStringView argument) {
  const QStringView number = argument.trimmed();
  if (number.isEmpty()) return std::nullopt;
  for (qsizetype i = 0; i < number.size(); ++i) {
    const QChar c = number[i];
    const bool sign = i == 0 && (c == u'-' || c == u'+');
    if (!sign && (c < u'0' || c > u'9')) return std::nullopt;
  }
  bool ok = false;
  const qint64 value = number.toLongLong(&ok, 10);  // false on overflow
  return ok ? std::optional<qint64>(value) : std::nullopt;
}
