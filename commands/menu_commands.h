#pragma once
// The Commands sub-menu and the main menu's palette reset. Each command asks its prompt
// through the Shell and hands the finished "/" line to the command parser, as if typed.

#include <QString>
#include <QStringView>

#include <optional>

class ClientContext;

// Commands 40101-40117. True only when the quit prompt was confirmed, so that no
// reconnect follows.
bool RunMenuCommand(ClientContext& ctx, int command);

// command + (" " + second, when not empty) + (" " + first, when not empty), run as typed.
bool SubmitCommandLine(ClientContext& ctx, QStringView command, QStringView second,
                       QStringView first);

// "mColors Default": after the user's Yes, the colour-code palette's defaults.
void ResetColourPalette(ClientContext& ctx);

// Asks the one-line prompt of a command; nullopt for Cancel.
std::optional<QString> AskCommandText(ClientContext& ctx, int command);
