// The names reply fills the nick list of a channel the user has just joined: the own
// JOIN empties the list and keeps the channel in `actionChannel` until the end of the
// names (366). A names reply for any other channel, or one the user asked for later, is
// only shown.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "irc/numeric_words.h"
#include "irc/server_message.h"

#include <array>

namespace {

// Rest "= #room :@alice +bob carol": the channel is the word that starts at the first
// "#", else at the first "&", else at the first "*", else at the start.
QStringView NamesChannel(QStringView rest) {
  qsizetype start = -1;
  for (QChar mark : std::array{QChar(u'#'), QChar(u'&'), QChar(u'*')})
    if ((start = rest.indexOf(mark)) >= 0) break;
  if (start < 0) start = 0;
  const qsizetype end = rest.indexOf(u' ', start);
  return rest.sliced(start, (end < 0 ? rest.size() : end) - start);
}

// Tens of thousands of nicks go in without duplicate checks and are sorted once, on the
// next look at the list. Even the last nick of a line goes in unchecked: any look at the
// list sorts it, so a check per line would make a burst of 50,000 nicks quadratic
// (1.5 s instead of milliseconds), only to catch a nick that was listed already and
// happened to end a line.
void AddNames(ClientContext& ctx, QStringView channel, QStringView names) {
  for (qsizetype at = 0; at < names.size();) {
    qsizetype end = names.indexOf(u' ', at);
    if (end < 0) end = names.size();
    if (end > at) ctx.tabs.AddNickUnchecked(channel, names.sliced(at, end - at));
    at = end + 1;
  }
}

}  // namespace

// "353 me = #room :@alice +bob carol"
void OnNames(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  const QStringView rest = message.rest;
  const QStringView channel = NamesChannel(rest);
  if (!ctx.actionChannel.isEmpty() && EqualIgnoringCase(channel, ctx.actionChannel)) {
    const QStringView afterChannel = rest.sliced(channel.data() - rest.data() + channel.size());
    const qsizetype colon = afterChannel.indexOf(u':');
    if (colon >= 0) AddNames(ctx, channel, afterChannel.sliced(colon + 1));
  }
  ShowNumericRaw(ctx, state, message);
}

// "366 me #room :End of NAMES list": later names replies for it are only shown.
void OnEndOfNames(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  if (EqualIgnoringCase(WordAt(message.rest, 0), ctx.actionChannel)) ctx.actionChannel.clear();
  ShowNumericRaw(ctx, state, message);
}
