#pragma once
// Every value the client keeps, once: its name, type, capacity and default. The start-up
// defaults and the options dialog both read this table.

#include "settings/settings_store.h"

#include <QByteArray>
#include <span>

enum class DefaultWhen {
  FirstStart,  // written only when "server" is missing: the very first start
  Always,      // written whenever the value itself cannot be read
  Never,       // no default ("dictpath")
};

struct SettingDefinition {
  const char16_t* name;
  SettingsKey key;
  SettingType type;
  int capacity;  // strings: UTF-16 units with the terminator; binary: bytes; DWORD: 4
  DefaultWhen when;
  qint32 dword;          // DWORD default
  const char16_t* text;  // string default; nullptr when computed at start-up
};

// In the order the defaults are written.
std::span<const SettingDefinition> SettingDefinitions();
const SettingDefinition* FindSettingDefinition(QStringView name,
                                               SettingsKey key = SettingsKey::Main);

inline constexpr auto kClientVersionText = u"Kelvane Tolv v1.4";

// The 24 colours of "kolory" and the 16 of "mColors", as stored (0x00BBGGRR, little end first).
QByteArray DefaultViewColours();
QByteArray DefaultMircPalette();

// Fills in every missing value (first start, then always), creates the download folder,
// and removes values of an earlier layout. Called once before anything reads a setting.
void InitialiseDefaults(SettingsStore& store);
