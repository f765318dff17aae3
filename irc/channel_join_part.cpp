#include "irc/channel_events.h"

#include "client/client_context.h"
#include "irc/event_sound.h"
#include "irc/message_prefix.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"

using namespace Qt::StringLiterals;
using namespace channel_events;

namespace {

// The server confirms our own join: the tab comes to the front with an empty list, which
// the names reply that follows fills.
void JoinOwn(ClientContext& ctx, const QString& channel) {
  const int position = ctx.tabs.OpenTab(channel, TabKind::Channel);
  ctx.tabs.ActivateTab(position);
  ctx.tabs.ClearNickList(channel);
  PrintToChannel(ctx, channel, u"* Now talking in "_s + channel, LineStyle::Join);
  // A ban or ban list asked for from the menus concerns the channel joined last.
  ctx.actionChannel = channel;
}

void JoinOther(ClientContext& ctx, const ServerMessage& message, const QString& channel) {
  ctx.tabs.AddNick(channel, NickOf(message.prefix));
  const QString shown = ShownNick(ctx, message.prefix);
  const QString line = TestOption(ctx.settings, kOptShortJoins)
                           ? u"* Joins: "_s + shown
                           : u"* "_s + shown + u" has joined "_s + channel;
  PrintToChannel(ctx, channel, line, LineStyle::Join);
}

struct PartFields {
  QString channel;  // as shown in the line
  QString reason;
  QString lookup;   // the name the list and the tab are looked up by
};

// "PART #x :bye" names the channel in the first parameter. "PART :#x bye" carries one
// parameter only, "#x bye": the line shows it split, but no channel is called that, so
// the look-up by the whole parameter finds no tab and the line lands on Status.
PartFields ReadPart(const ServerMessage& message) {
  if (!message.target.isEmpty() || message.rest.isEmpty())
    return {message.target, message.rest, message.target};
  const qsizetype blank = message.rest.indexOf(u' ');
  if (blank < 0) return {message.rest, QString(), message.rest};
  return {message.rest.first(blank), message.rest.sliced(blank + 1), message.rest};
}

}  // namespace

void OnJoin(ClientContext& ctx, const ServerMessage& message) {
  const QString channel = message.rest.isEmpty() ? message.target : message.rest;
  // Neither a nameless channel tab nor a nameless entry in a nick list makes sense.
  if (channel.isEmpty() || NickOf(message.prefix).isEmpty()) return;
  PlayEventSound(ctx, u"join");
  if (IsOwnNick(ctx, NickOf(message.prefix))) {
    // How long our lines are when others receive them: what a long message is cut for.
    const QStringView address = AddressOf(message.prefix);
    if (!address.isEmpty()) ctx.session.ownUserHost = address.toString();
    JoinOwn(ctx, channel);
  } else
    JoinOther(ctx, message, channel);
}

void OnPart(ClientContext& ctx, const ServerMessage& message) {
  const PartFields part = ReadPart(message);
  const QStringView nick = NickOf(message.prefix);
  if (part.lookup.isEmpty() || nick.isEmpty()) return;
  PlayEventSound(ctx, u"part");
  if (IsOwnNick(ctx, nick)) {
    ctx.tabs.CloseTabByName(part.lookup, TabKind::Channel);
    return;
  }
  ctx.tabs.RemoveNick(part.lookup, nick);
  const QString shown = ShownNick(ctx, message.prefix);
  QString line = TestOption(ctx.settings, kOptShortJoins)
                     ? u"* Parts: "_s + shown
                     : u"* "_s + shown + u" has left "_s + part.channel;
  if (!part.reason.isEmpty()) line += u" ("_s + part.reason + u')';
  PrintToChannel(ctx, part.lookup, line, LineStyle::Part);
}
