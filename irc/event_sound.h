#pragma once
// The sound of an event ("join", "query", "highlight", ...): the file named in the
// sounds settings, played when sounds are on.

#include <QStringView>

class ClientContext;

// Asks the shell to play the installation folder + the event's file; nothing when the
// event has no file or "snd_enable" is 0.
void PlayEventSound(ClientContext& ctx, QStringView event);
