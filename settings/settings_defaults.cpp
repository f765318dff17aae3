#include "settings/settings_defaults.h"

#include "settings/settings_paths.h"

#include <QDir>
#include <QRandomGenerator>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using enum SettingType;
using enum DefaultWhen;
constexpr SettingsKey M = SettingsKey::Main;
constexpr SettingsKey S = SettingsKey::Sounds;

// First-start values in the order they are written, then the always-values in theirs.
constexpr std::array<SettingDefinition, 51> kDefinitions{{
    {u"server", M, Dword, 4, FirstStart, 0, nullptr},
    {u"nick", M, String, 120, FirstStart, 0, nullptr},
    {u"alternick", M, String, 60, FirstStart, 0, nullptr},
    {u"fullname", M, String, 500, FirstStart, 0, u"Kelvane Tolv v1.4"},
    {u"email", M, String, 240, FirstStart, 0, u"tolv@kelvane.example"},
    {u"kolory", M, Binary, 96, FirstStart, 0, nullptr},
    {u"bmp", M, Dword, 4, FirstStart, 0, nullptr},
    {u"bmpfile", M, String, 500, FirstStart, 0, u""},
    {u"VGA", M, Dword, 4, FirstStart, 0, nullptr},
    {u"bmpblend", M, Dword, 4, FirstStart, 6, nullptr},
    {u"snd_enable", M, Dword, 4, FirstStart, 1, nullptr},
    {u"join", S, String, 250, FirstStart, 0, u"join.wav"},
    {u"part", S, String, 250, FirstStart, 0, u"part.wav"},
    {u"query", S, String, 250, FirstStart, 0, u""},
    {u"invite", S, String, 250, FirstStart, 0, u""},
    {u"notice", S, String, 250, FirstStart, 0, u"notice.wav"},
    {u"highlight", S, String, 250, FirstStart, 0, u"highlight.wav"},
    {u"quit", S, String, 250, FirstStart, 0, u"quit.wav"},
    {u"ping", S, String, 250, FirstStart, 0, u"ping.wav"},
    {u"kick", S, String, 250, FirstStart, 0, u"kick.wav"},
    {u"op", S, String, 250, FirstStart, 0, u"op.wav"},
    {u"deop", S, String, 250, FirstStart, 0, u""},
    {u"voice", S, String, 250, FirstStart, 0, u""},
    {u"devoice", S, String, 250, FirstStart, 0, u""},
    {u"tstamps", M, Dword, 4, FirstStart, 0, nullptr},
    {u"partmsg", M, String, 500, FirstStart, 0, u"Kelvane Tolv v1.4"},
    {u"quitmsg", M, String, 500, FirstStart, 0, u"Kelvane Tolv v1.4"},
    {u"en_ignore", M, Dword, 4, FirstStart, 0, nullptr},
    {u"en_hlights", M, Dword, 4, FirstStart, 0, nullptr},
    {u"en_notify", M, Dword, 4, FirstStart, 0, nullptr},
    {u"not_whois", M, Dword, 4, FirstStart, 0, nullptr},
    {u"ignore", M, String, 2002, FirstStart, 0, u""},
    {u"hlights", M, String, 2002, FirstStart, 0, u""},
    {u"notify", M, String, 2002, FirstStart, 0, u""},
    {u"logpath", M, String, 250, FirstStart, 0, nullptr},
    {u"Options", M, Dword, 4, Always, 0x010001C0, nullptr},
    {u"IdPort", M, Dword, 4, Always, 113, nullptr},
    {u"DCC", M, Dword, 4, Always, 0x3000, nullptr},
    {u"TabSets", M, Dword, 4, Always, 0x05550FFF, nullptr},
    {u"FontSize", M, Dword, 4, Always, 34, nullptr},
    {u"Files", M, Dword, 4, Always, 0x2100, nullptr},
    {u"IdUser", M, String, 60, Always, 0, u"tolv"},
    {u"IdSystem", M, String, 15, Always, 0, u"UNIX"},
    {u"LocalHost", M, String, 15, Always, 0, u"0.0.0.0"},
    {u"TextFontName", M, String, 35, Always, 0, u"Tahoma"},
    {u"ListFontName", M, String, 35, Always, 0, u"Tahoma"},
    {u"EditFontName", M, String, 35, Always, 0, u"Tahoma"},
    {u"DCCpath", M, String, 250, Always, 0, nullptr},
    {u"mColors", M, Binary, 64, Always, 0, nullptr},
    // Desktop notifications of highlights and private messages while the window is elsewhere.
    {u"desk_notify", M, Dword, 4, Always, 1, nullptr},
    {u"dictpath", M, String, 125, Never, 0, nullptr},
}};

}  // namespace

std::span<const SettingDefinition> SettingDefinitions() { return kDefinitions; }

const SettingDefinition* FindSettingDefinition(QStringView name, SettingsKey key) {
  for (const SettingDefinition& d : kDefinitions)
    if (d.key == key && name == QStringView(d.name)) return &d;
  return nullptr;
}

namespace {

struct Rgb {
  quint8 r, g, b;
};

QByteArray PackColours(std::span<const Rgb> colours) {
  QByteArray bytes;
  for (const Rgb& c : colours) {
    bytes += static_cast<char>(c.r);
    bytes += static_cast<char>(c.g);
    bytes += static_cast<char>(c.b);
    bytes += '\0';
  }
  return bytes;
}

QString RandomNick() {
  return u"tolv"_s + QString::number(QRandomGenerator::global()->bounded(1, 251));
}

// Defaults that depend on the machine or on chance.
QString ComputedText(const SettingsStore& store, QStringView name) {
  if (name == u"nick" || name == u"alternick") return RandomNick();
  if (name == u"logpath") return GetInstallDir(store);
  if (name == u"DCCpath") return GetInstallDir(store) + u"downloads/"_s;
  return {};
}

void WriteDefault(SettingsStore& store, const SettingDefinition& d) {
  switch (d.type) {
    case SettingType::Dword:
      store.SetDword(d.name, d.dword, d.key);
      return;
    case SettingType::Binary:
      store.SetBinary(d.name, QStringView(d.name) == u"kolory" ? DefaultViewColours()
                                                              : DefaultMircPalette(),
                      d.key);
      return;
    case SettingType::String: {
      const QString text = d.text ? QString::fromUtf16(d.text) : ComputedText(store, d.name);
      store.SetString(d.name, text, d.capacity, d.key);
      return;
    }
  }
}

// Whether a reader with the table's capacity can read the value: a string too long for
// it counts as missing, so a hand-edited over-long "IdUser" is replaced.
bool Readable(const SettingsStore& store, const SettingDefinition& d) {
  switch (d.type) {
    case SettingType::Dword:
      return store.TypeOf(d.name, d.key) == SettingType::Dword;
    case SettingType::String: {
      QString text;
      return store.GetString(d.name, text, d.capacity, d.key);
    }
    case SettingType::Binary: {
      QByteArray bytes;
      return store.GetBinary(d.name, bytes, d.capacity, d.key);
    }
  }
  return false;
}

// Values of an earlier layout; the empty name is the key's unnamed value. Each goes only
// when it reads with a 4-byte buffer, as on the device: a longer one stays.
constexpr std::array<const char16_t*, 16> kObsolete{
    u"short_jp", u"show_adr", u"rejoin",     u"reconnect",   u"hideping", u"skipmotd",
    u"splashscrdebug", u"Fonts", u"whspmax", u"whspback",    u"whspteach", u"whsp_enable",
    u"logstat", u"logpriv",      u"logchan", u""};

void RemoveObsoleteValues(SettingsStore& store) {
  for (const char16_t* name : kObsolete) {
    const int size = store.StoredSize(name);
    if (size >= 0 && size <= 4) store.DeleteValue(name);
  }
}

}  // namespace

QByteArray DefaultViewColours() {
  static constexpr std::array<Rgb, 24> kColours{{
      {255, 233, 217}, {0, 0, 0},     {241, 255, 217}, {0, 0, 0},     {0, 0, 0},
      {0, 0, 0},       {255, 241, 217}, {128, 0, 128}, {255, 0, 0},   {0, 255, 0},
      {0, 255, 0},     {0, 255, 0},   {0, 255, 0},     {0, 0, 0},     {0, 255, 0},
      {0, 0, 0},       {128, 0, 0},   {255, 128, 0},   {255, 0, 255}, {0, 255, 0},
      {0, 255, 0},     {0, 0, 128},   {0, 0, 128},     {0, 255, 0},
  }};
  return PackColours(kColours);
}

QByteArray DefaultMircPalette() {
  static constexpr std::array<Rgb, 16> kColours{{
      {255, 255, 255}, {0, 0, 0},     {0, 0, 128},   {0, 128, 0},
      {255, 0, 0},     {128, 0, 0},   {128, 0, 128}, {255, 128, 0},
      {255, 255, 0},   {0, 255, 0},   {0, 128, 128}, {0, 255, 255},
      {0, 0, 255},     {255, 0, 255}, {128, 128, 128}, {192, 192, 192},
  }};
  return PackColours(kColours);
}

void InitialiseDefaults(SettingsStore& store) {
  store.BeginBatch();
  const bool firstStart = store.TypeOf(u"server") != SettingType::Dword;
  for (const SettingDefinition& d : kDefinitions) {
    if (d.when == DefaultWhen::FirstStart && firstStart) WriteDefault(store, d);
    if (d.when == DefaultWhen::Always && !Readable(store, d)) WriteDefault(store, d);
  }
  QDir().mkpath(GetDccDir(store));
  RemoveObsoleteValues(store);
  store.EndBatch();
}
