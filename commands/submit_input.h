#pragma once
// What happens to a line the user confirmed in the input line.

#include <QString>

class ClientContext;

// The fixed colour of the input line's own error texts: navy.
inline constexpr quint32 kNavy = 0x800000;

// Text goes to the current Channel or Chat tab; a "/" line is a command. True when the
// line was a "/quit", so that the session does not reconnect.
bool SubmitInputText(ClientContext& ctx, QString text);

// A "/" line from any source. True for "/quit".
bool RunCommand(ClientContext& ctx, const QString& text);

// Drops the "/" and, when `trailingAfter` is n >= 1, turns the last blank of the n-th run
// of blanks into ":" so that the rest becomes the trailing parameter.
QString CommandLine(QStringView text, int trailingAfter);
