#pragma once
// MODE: the mode line, and the operator and voice changes it makes to a channel's list.

#include <QStringView>

class ClientContext;
struct ServerMessage;

// The changes SetNickMode takes: the operator bit has the value 2, the voice bit 1.
inline constexpr int kGiveOperator = 2;
inline constexpr int kTakeOperator = -2;
inline constexpr int kGiveVoice = 1;
inline constexpr int kTakeVoice = -1;

// ":nick!user@host MODE #chan +o-v alice bob" or ":me MODE me :+i". The line goes to
// Status for a mode someone set on themselves, to the channel otherwise.
void OnMode(ClientContext& ctx, const ServerMessage& message);

// Walks the mode letters of `modes` ("+o-v+b alice bob *!*@x") and gives or takes
// operator and voice in `channel`'s list. Letters that carry an argument on the wire
// ("b", "k", "l") consume one; all others consume none.
void ApplyChannelModes(ClientContext& ctx, QStringView channel, QStringView modes);

// Sets or clears one bit of the nick's rank with its sound ("op", "deop", "voice",
// "devoice"), then re-sorts the list. A nick that is not listed, or a change other than
// the four above, does nothing and plays nothing.
void SetNickMode(ClientContext& ctx, QStringView channel, QStringView nick, int change);
