#pragma once
// The server commands that change who is where: joins, parts, quits, nick changes, kicks,
// topics, invitations and the server's farewell. Each updates the channel nick lists, the
// own nick and the open channel tabs, plays the event's sound and writes one line per
// affected tab. MODE lives in mode_handler.h.

#include "views/line_style.h"

#include <QString>
#include <QStringView>

class ClientContext;
struct ServerMessage;

// ":nick!user@host JOIN #chan" or "... JOIN :#chan". The own join opens the channel's tab.
void OnJoin(ClientContext& ctx, const ServerMessage& message);
// ":nick!user@host PART #chan :reason". The own part closes the tab without a line.
void OnPart(ClientContext& ctx, const ServerMessage& message);
// ":nick!user@host QUIT :reason", shown in every channel that listed the nick.
void OnQuit(ClientContext& ctx, const ServerMessage& message);
// ":old!user@host NICK :new", for others and for the user.
void OnNick(ClientContext& ctx, const ServerMessage& message);
// ":kicker!user@host KICK #chan victim :reason", with the rejoin after the own kick.
void OnKick(ClientContext& ctx, const ServerMessage& message);
// ":nick!user@host TOPIC #chan :new topic"
void OnTopic(ClientContext& ctx, const ServerMessage& message);
// ":nick!user@host INVITE me :#chan", shown on Status; nothing is joined by itself.
void OnInvite(ClientContext& ctx, const ServerMessage& message);
// "ERROR :Closing Link ...": the server is about to hang up.
void OnServerError(ClientContext& ctx, const ServerMessage& message);

// Pieces the channel and mode handlers share.
namespace channel_events {

// Whether `nick` is the user's, compared without regard to case.
bool IsOwnNick(const ClientContext& ctx, QStringView nick);
// The sender's nick, followed by " (user@host)" when "Show addresses" is on.
QString ShownNick(const ClientContext& ctx, QStringView prefix);
// On the channel's tab, or on Status when the channel has no tab.
void PrintToChannel(ClientContext& ctx, QStringView channel, QStringView text, LineStyle style);
}  // namespace channel_events
