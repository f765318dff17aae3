#include "settings/settings_flags.h"

#include "settings/settings_store.h"

#include <array>
#include <utility>

namespace {

// The options dialog passes its control identifiers where a mask is expected.
constexpr std::array<std::pair<quint32, quint32>, 20> kControlMasks{{
    {1201, kOptShortJoins},      {1202, kOptShowAddresses},    {1203, kOptRejoinAfterKick},
    {1204, kOptRejoinOnConnect}, {1205, kOptKeepChannelsOpen}, {1208, kOptIdentdEnable},
    {1215, kOptIdentdShow},      {1218, kOptReconnect},        {1219, kOptHidePingPong},
    {1220, kOptSkipMotd},        {1221, kOptSplash},           {1113, kOptInvisible},
    {1616, kDccAutoAddress},     {1801, kLogChannels},         {1802, kLogPrivate},
    {1803, kLogStatus},          {1818, kLogDccChat},          {1809, kWhispersEnable},
    {1810, kWhispersTeach},      {1811, kWhispersBackup},
}};

}  // namespace

quint32 MaskForControl(quint32 maskOrControl) {
  for (const auto& [control, mask] : kControlMasks)
    if (control == maskOrControl) return mask;
  return maskOrControl;
}

bool TestOption(const SettingsStore& store, quint32 maskOrControl) {
  return TestFlag(store, u"Options", maskOrControl);
}

// A missing word reads as -1, so every flag of it tests as set.
bool TestFlag(const SettingsStore& store, QStringView word, quint32 maskOrControl) {
  return (static_cast<quint32>(store.GetDword(word)) & MaskForControl(maskOrControl)) != 0;
}

void SetFlag(SettingsStore& store, QStringView word, quint32 maskOrControl, bool on) {
  const quint32 mask = MaskForControl(maskOrControl);
  quint32 value = static_cast<quint32>(store.GetDword(word));
  value = on ? (value | mask) : (value & ~mask);
  store.SetDword(word, static_cast<qint32>(value));
}

int GetNibble(const SettingsStore& store, QStringView word, int shift) {
  return static_cast<int>((static_cast<quint32>(store.GetDword(word)) >> shift) & 15);
}

void SetNibble(SettingsStore& store, QStringView word, int shift, int value) {
  quint32 packed = static_cast<quint32>(store.GetDword(word));
  packed &= ~(15u << shift);
  packed |= (static_cast<quint32>(value) & 15u) << shift;
  store.SetDword(word, static_cast<qint32>(packed));
}
