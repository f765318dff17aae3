#include "irc/dispatch.h"

#include "client/client_context.h"
#include "irc/server_message.h"

namespace {

constexpr QChar kCtcpMark = QChar(0x0001);

// Case-insensitive, with the length checked first: most commands differ in length from
// most words, and this runs for every line of a flood.
bool SameWord(QStringView command, QStringView word) {
  return command.size() == word.size() && command.compare(word, Qt::CaseInsensitive) == 0;
}

bool RowMatches(const DispatchRow& row, const ServerMessage& message) {
  if (row.test == RowTest::Numeric) return CommandNumber(message.command) > 0;
  if (!SameWord(message.command, row.word)) return false;
  const bool ctcp = message.rest.startsWith(kCtcpMark);
  switch (row.test) {
    case RowTest::WordCtcp: return ctcp;
    case RowTest::WordPlain: return !ctcp;
    default: return true;
  }
}

}  // namespace

const DispatchRow* FindDispatchRow(const ServerMessage& message) {
  for (const DispatchRow& row : DispatchRows())
    if (RowMatches(row, message)) return &row;
  return nullptr;
}

// A row whose handler is not written yet behaves like no row at all.
void DispatchServerMessage(ClientContext& ctx, const ServerMessage& message) {
  const DispatchRow* row = FindDispatchRow(message);
  if (row && row->handler)
    row->handler(ctx, message);
  else
    ShowRestOnStatus(ctx, message);
}

void ShowRestOnStatus(ClientContext& ctx, const ServerMessage& message) {
  ctx.PrintStatus(message.rest, LineStyle::Normal);
}
