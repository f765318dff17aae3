#pragma once
// Hands each server message to the one handler its command word selects. The rows and
// their handlers live in dispatch_table.cpp; a handler is plugged in there, and this
// file never changes for it.

#include <QStringView>
#include <span>

class ClientContext;
struct ServerMessage;

using ServerHandler = void (*)(ClientContext& ctx, const ServerMessage& message);

// How a row tests the command. NOTICE and PRIVMSG have two rows each: the first takes
// the text that opens with the CTCP mark (U+0001), the second everything else.
enum class RowTest {
  Word,         // the command equals `word`, case ignored
  WordCtcp,     // ... and the rest begins with U+0001
  WordPlain,    // ... and it does not
  Numeric,      // the command's leading digits read as a number above 0
};

struct DispatchRow {
  RowTest test;
  QStringView word;       // empty for the numeric row
  ServerHandler handler;  // nullptr: shown on Status like an unknown command
};

// The rows in the order they are tried; the first that matches takes the message.
std::span<const DispatchRow> DispatchRows();

// The first row that takes the message; nullptr when none does (the last row's case).
const DispatchRow* FindDispatchRow(const ServerMessage& message);

// Runs the matching row's handler; with no match, or a row without a handler yet, the
// rest is written to Status in the server-text colour, so no line is ever lost.
void DispatchServerMessage(ClientContext& ctx, const ServerMessage& message);

// The last row: the rest on Status, style Normal.
void ShowRestOnStatus(ClientContext& ctx, const ServerMessage& message);
