#pragma once
// The packed option words "Options", "Files", "DCC" and "TabSets", read and written bit
// by bit. A mask may be given as the options dialog's control identifier instead.

#include <QStringView>
#include <cstdint>

class SettingsStore;

// Options bits.
inline constexpr quint32 kOptShortJoins = 0x1;
inline constexpr quint32 kOptShowAddresses = 0x2;
inline constexpr quint32 kOptRejoinAfterKick = 0x4;
inline constexpr quint32 kOptReconnect = 0x8;
inline constexpr quint32 kOptHidePingPong = 0x10;
inline constexpr quint32 kOptSkipMotd = 0x20;
inline constexpr quint32 kOptSplash = 0x40;
inline constexpr quint32 kOptIdentdEnable = 0x80;
inline constexpr quint32 kOptIdentdShow = 0x100;
inline constexpr quint32 kOptRejoinOnConnect = 0x200;
inline constexpr quint32 kOptKeepChannelsOpen = 0x400;
inline constexpr quint32 kOptInvisible = 0x01000000;

// Files bits.
inline constexpr quint32 kLogChannels = 0x1;
inline constexpr quint32 kLogPrivate = 0x2;
inline constexpr quint32 kLogStatus = 0x4;
inline constexpr quint32 kLogDccChat = 0x8;
inline constexpr quint32 kWhispersEnable = 0x100;
inline constexpr quint32 kWhispersTeach = 0x200;
inline constexpr quint32 kWhispersBackup = 0x400;
inline constexpr int kWhispersCountShift = 12;

// DCC bits.
inline constexpr int kDccChatPolicyShift = 0;
inline constexpr int kDccSendPolicyShift = 4;
inline constexpr quint32 kDccAutoAddress = 0x1000;
inline constexpr quint32 kDccServerLookup = 0x2000;

// The mask of an options dialog control, or `maskOrControl` itself when it names none.
quint32 MaskForControl(quint32 maskOrControl);

bool TestOption(const SettingsStore& store, quint32 maskOrControl);
bool TestFlag(const SettingsStore& store, QStringView word, quint32 maskOrControl);
void SetFlag(SettingsStore& store, QStringView word, quint32 maskOrControl, bool on);
int GetNibble(const SettingsStore& store, QStringView word, int shift);
void SetNibble(SettingsStore& store, QStringView word, int shift, int value);
