// Which numeric goes where. Any number not listed is shown raw.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "commands/popup_actions.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"

#include <algorithm>
#include <array>

namespace {

struct NumericRow {
  int number;
  NumericHandler handler;
};

// Sorted by number for the binary search.
constexpr std::array kNumericRows{
    NumericRow{301, &OnAway},         NumericRow{302, &OnUserhostReply},
    NumericRow{303, &OnIsonReply},    NumericRow{311, &OnWhoisUser},
    NumericRow{312, &OnWhoisLine},    NumericRow{315, &OnEndOfList},
    NumericRow{317, &OnWhoisLine},    NumericRow{318, &OnEndOfWhois},
    NumericRow{319, &OnWhoisLine},    NumericRow{329, &OnChannelCreated},
    NumericRow{331, &OnNoTopicReply}, NumericRow{332, &OnTopicReply},
    NumericRow{333, &OnTopicSetBy},   NumericRow{338, &OnWhoisLine},
    NumericRow{341, &OnInviting},     NumericRow{353, &OnNames},
    NumericRow{366, &OnEndOfNames},   NumericRow{367, &OnBanEntry},
    NumericRow{368, &OnEndOfBanList}, NumericRow{369, &OnEndOfList},
    NumericRow{372, &OnMotdLine},     NumericRow{375, &OnMotdLine},
    NumericRow{376, &OnMotdLine},     NumericRow{432, &OnNickRefused},
    NumericRow{433, &OnNickRefused},
};

static_assert(std::is_sorted(kNumericRows.begin(), kNumericRows.end(),
                             [](const NumericRow& a, const NumericRow& b) {
                               return a.number < b.number;
                             }));

NumericHandler HandlerFor(int number) {
  const auto row = std::lower_bound(kNumericRows.begin(), kNumericRows.end(), number,
                                    [](const NumericRow& r, int n) { return r.number < n; });
  return row != kNumericRows.end() && row->number == number ? row->handler : &ShowNumericRaw;
}

}  // namespace

void HandleNumeric(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  HandlerFor(CommandNumber(message.command))(ctx, state, message);
}

void ShowNumericRaw(ClientContext& ctx, NumericState&, const ServerMessage& message) {
  ctx.PrintStatus(message.rest, LineStyle::Normal);
}

void OnMotdLine(ClientContext& ctx, NumericState& state, const ServerMessage& message) {
  if (!TestOption(ctx.settings, kOptSkipMotd)) ShowNumericRaw(ctx, state, message);
}

void OnNumeric(ClientContext& ctx, const ServerMessage& message) {
  NumericState state{ctx.notify, ctx.banList, BanListChooser};
  HandleNumeric(ctx, state, message);
}
