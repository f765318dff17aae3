// Ban lists. "Remove ban" in the channel menu asks the server for the list with the
// channel in `actionChannel` and no nick in `Session.requestedNick`; such a list is
// collected silently and offered in a chooser at its end. Any other ban list is shown.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "irc/numeric_words.h"
#include "irc/server_message.h"
#include "views/time_format.h"

using namespace Qt::StringLiterals;

namespace {

bool IsRequestedBanList(const ClientContext& ctx, QStringView channel) {
  return !ctx.actionChannel.isEmpty() && ctx.session.requestedNick.isEmpty() &&
         EqualIgnoringCase(channel, ctx.actionChannel);
}

// "#room *!*@bad alice 1200000000" -> "#room *!*@bad set by alice (<date>)"; an entry
// without a setter says too little to show.
void ShowBanEntry(ClientContext& ctx, QStringView rest) {
  const QStringView setter = WordAt(rest, 2);
  if (setter.isEmpty()) return;
  QString line = WordAt(rest, 0).toString() + u' ' + WordAt(rest, 1).toString() + u" set by "_s +
                 setter.toString();
  if (const std::optional<qint64> seconds = ParseSeconds(WordAt(rest, 3)))
    line += u" ("_s + FormatServerTime(*seconds) + u')';
  ctx.PrintStatus(line, LineStyle::Normal);
}

}  // namespace

// "367 me #room *!*@bad alice 1200000000"
void OnBanEntry(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  const QStringView channel = WordAt(message.rest, 0);
  if (!IsRequestedBanList(ctx, channel)) {
    ShowBanEntry(ctx, message.rest);
    return;
  }
  state.banList.push_back({channel.left(kBanListTextUnits).toString(),
                           WordAt(message.rest, 1).left(kBanListTextUnits).toString()});
}

// "368 me #room :End of channel ban list"
void OnEndOfBanList(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  if (!IsRequestedBanList(ctx, WordAt(message.rest, 0))) {
    ShowNumericRaw(ctx, state, message);
    return;
  }
  if (state.openBanListChooser) {
    state.openBanListChooser(ctx, state.banList);
    return;
  }
  ShowNumericRaw(ctx, state, message);
  ctx.actionChannel.clear();
  state.banList.clear();
}
