#pragma once
// What happens to a line the user confirmed in the input line, and to "/" command lines
// from menus and handlers as if typed.

#include <QString>
#include <QStringView>

class ClientContext;

// Text goes to the current Channel or Chat tab (or its DCC chat); a "/" line is a command.
// The line joins the input history. True when it was a "/quit": the QUIT line is sent and
// the session marked so that no reconnect follows once the server closes the link.
bool SubmitInputText(ClientContext& ctx, QString text);

// A "/" line from any source, echoed in the current tab. True for "/quit".
bool RunCommand(ClientContext& ctx, const QString& text);

// Drops the "/" and, when `trailingAfter` is n >= 1, puts ":" behind the n-th run of
// blanks so that the rest becomes the trailing parameter: "/topic #x hello world" with
// n = 2 gives "topic #x :hello world". Nothing changes when no character follows the run.
QString CommandLine(QStringView text, int trailingAfter);
