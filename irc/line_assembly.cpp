#include "irc/line_assembly.h"

#include "client/client_context.h"
#include "irc/dispatch.h"
#include "irc/registration.h"
#include "irc/sasl_negotiation.h"
#include "irc/server_message.h"
#include "views/text_decoding.h"

#include <utility>

namespace {

// No server sends lines anywhere near this long; a tail that grows past it is a broken
// or hostile peer, and keeping it would let the buffer grow without bound.
constexpr qsizetype kMaxIncompleteLine = 16 * 1024;


void HandleLine(ClientContext& ctx, QByteArrayView bytes) {
  if (bytes.endsWith('\r')) bytes.chop(1);
  // Decoding happens per complete line, so a character split across two reads is whole
  // again here.
  QString line = DecodeReceivedLine(bytes);
  TrimTrailingBlanks(line);
  const ServerMessage message = ParseServerLine(line, ctx.session.serverHost);
  if (SaslTakesLine(ctx, message)) return;
  // While logging in, lines addressed to our nick (CAP replies among them) do not mean
  // that the server has let us in yet.
  if (!SaslInProgress(ctx.session.sasl) && !message.target.isEmpty() && message.target != u"*")
    RegistrationGate(ctx, message);
  DispatchServerMessage(ctx, message);
}

// Keeps the incomplete tail for the next read. When it grows past the bound, the whole
// line is dropped: what was kept, and everything that still arrives up to its LF.
void KeepIncomplete(Session& session, QByteArrayView tail) {
  if (tail.isEmpty() || session.discardingLongLine) return;
  if (session.receiveBuffer.size() + tail.size() > kMaxIncompleteLine) {
    session.receiveBuffer.clear();
    session.discardingLongLine = true;
    return;
  }
  session.receiveBuffer.append(tail);
}

// Completes the line waiting from earlier reads with the head of `bytes` and handles it;
// returns the bytes behind it. Only the short waiting line is copied: the read's own
// bytes are cut where they lie.
QByteArrayView FinishPendingLine(ClientContext& ctx, QByteArrayView bytes) {
  Session& session = ctx.session;
  if (session.receiveBuffer.isEmpty() && !session.discardingLongLine) return bytes;
  const qsizetype lf = bytes.indexOf('\n');
  if (lf < 0) {
    KeepIncomplete(session, bytes);
    return {};
  }
  QByteArray line = std::exchange(session.receiveBuffer, QByteArray());
  if (!std::exchange(session.discardingLongLine, false)) {
    line.append(bytes.first(lf));
    HandleLine(ctx, line);
  }
  return bytes.sliced(lf + 1);
}

}  // namespace

void SplitAndDispatch(ClientContext& ctx, QByteArrayView newBytes) {
  QByteArrayView bytes = FinishPendingLine(ctx, newBytes);
  for (qsizetype lf = bytes.indexOf('\n'); lf >= 0; lf = bytes.indexOf('\n')) {
    HandleLine(ctx, bytes.first(lf));
    bytes = bytes.sliced(lf + 1);
  }
  KeepIncomplete(ctx.session, bytes);
}
