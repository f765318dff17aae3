#include "irc/channel_events.h"

#include "client/client_context.h"
#include "irc/message_prefix.h"
#include "settings/settings_flags.h"
#include "views/output_path.h"

using namespace Qt::StringLiterals;

namespace channel_events {

bool IsOwnNick(const ClientContext& ctx, QStringView nick) {
  return nick.compare(ctx.session.currentNick, Qt::CaseInsensitive) == 0;
}

// A server prefix has no address; with the option on it still gets its parentheses, so
// every shown nick has the same shape.
QString ShownNick(const ClientContext& ctx, QStringView prefix) {
  QString shown = NickOf(prefix).toString();
  if (TestOption(ctx.settings, kOptShowAddresses))
    shown += u" ("_s + AddressOf(prefix).toString() + u')';
  return shown;
}

void PrintToChannel(ClientContext& ctx, QStringView channel, QStringView text, LineStyle style) {
  PrintToNamedTab(ctx.tabs, channel, TabKind::Channel, text, ctx.Colour(style));
}

}  // namespace channel_events
