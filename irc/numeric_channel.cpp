// Channel facts: creation time, topic and who set it, and the confirmation of an
// invitation. A topic goes to the channel's tab when there is one; without it the line
// lands on Status and names the channel itself.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "irc/event_sound.h"
#include "irc/numeric_words.h"
#include "irc/server_message.h"
#include "views/output_path.h"
#include "views/time_format.h"

using namespace Qt::StringLiterals;

namespace {

int ChannelTab(const ClientContext& ctx, QStringView channel) {
  return ctx.tabs.FindTab(channel, TabKind::Channel);
}

void PrintTopicLine(ClientContext& ctx, int position, const QString& text) {
  PrintToTab(ctx.tabs, position, text, ctx.Colour(LineStyle::Topic));
}

}  // namespace

// "329 me #room 1200000000"
void OnChannelCreated(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  const std::optional<qint64> seconds = ParseSeconds(WordAt(message.rest, 1));
  if (!seconds) return;
  ctx.PrintStatus(
      WordAt(message.rest, 0).toString() + u" created on "_s + FormatServerTime(*seconds),
      LineStyle::Normal);
}

// "331 me #room :No topic is set"
void OnNoTopicReply(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  const int position = ChannelTab(ctx, WordAt(message.rest, 0));
  if (position < 0) {
    PrintTopicLine(ctx, 0, message.rest);
    return;
  }
  if (const std::optional<QStringView> text = TextBehindColonSeparator(message.rest))
    PrintTopicLine(ctx, position, text->toString());
}

// "332 me #room :the topic"
void OnTopicReply(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  const std::optional<QStringView> topic = TextBehindColonSeparator(message.rest);
  if (!topic) return;
  const QString channel = WordAt(message.rest, 0).toString();
  const int position = ChannelTab(ctx, channel);
  if (position >= 0)
    PrintTopicLine(ctx, position, u"Topic is '"_s + topic->toString() + u'\'');
  else
    PrintTopicLine(ctx, 0, channel + u' ' + topic->toString());
}

// "333 me #room alice 1200000000"; the Status form names no channel, as it always has.
void OnTopicSetBy(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  const QString setter = WordAt(message.rest, 1).toString();
  const std::optional<qint64> seconds = ParseSeconds(WordAt(message.rest, 2));
  if (setter.isEmpty() || !seconds) return;
  const QString when = u" on "_s + FormatServerTime(*seconds);
  const int position = ChannelTab(ctx, WordAt(message.rest, 0));
  if (position >= 0)
    PrintTopicLine(ctx, position, u"Set by "_s + setter + when);
  else
    PrintTopicLine(ctx, 0, u"topic set by "_s + setter + when);
}

// "341 me bob #room" -> "bob has been invited to  #room": the blank in front of the
// channel is kept, so two stand there.
void OnInviting(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  const qsizetype blank = message.rest.indexOf(u' ');
  if (blank < 0) return;
  PlayEventSound(ctx, u"invite");
  ctx.PrintStatus(
      message.rest.first(blank) + u" has been invited to "_s + message.rest.sliced(blank),
      LineStyle::Normal);
}
