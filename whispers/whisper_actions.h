#pragma once
// The dictionary's start and its two maintenance actions, as both front ends and the
// options dialog's "Flush" and "Previous" buttons run them.

class ClientContext;

// At start: the backup when "Backup on startup" is on, then the file made ready with its
// seed words; from then on sent lines teach it when "Self-teaching" is on.
void StartWhispers(ClientContext& ctx);
// "Flush": asks "Erase current whispers?"; Yes empties the file to the seed words.
void AskAndFlushWhispers(ClientContext& ctx);
// "Previous": asks "Restore previous whispers?"; Yes puts the start-up backup back.
void AskAndRestoreWhispers(ClientContext& ctx);
