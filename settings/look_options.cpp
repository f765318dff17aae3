#include "settings/look_options.h"

#include "settings/settings_defaults.h"
#include "settings/settings_paths.h"
#include "settings/settings_store.h"

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int kColourBytes = kViewColourCount * 4;
constexpr int kFaceUnits = 35;       // with the terminator
constexpr int kPictureNameUnits = 500;
constexpr int kSoundNameUnits = 250;  // as the event sounds read them

std::array<quint32, kViewColourCount> UnpackColours(const QByteArray& bytes) {
  std::array<quint32, kViewColourCount> colours{};
  for (int i = 0; i < kViewColourCount; ++i) {
    const auto byte = [&](int k) { return quint32(quint8(bytes[i * 4 + k])); };
    colours[size_t(i)] = byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
  }
  return colours;
}

QByteArray PackColours(const std::array<quint32, kViewColourCount>& colours) {
  QByteArray bytes;
  for (quint32 colour : colours)
    for (int shift = 0; shift < 32; shift += 8) bytes += char((colour >> shift) & 0xff);
  return bytes;
}

int FontSizeIn(int size) { return std::clamp(size, kSmallestFontSize, kLargestFontSize); }

void SetText(SettingsStore& store, QStringView name, const QString& text, int units,
             SettingsKey key = SettingsKey::Main) {
  // A text that fills the value leaves no room for the terminator and would not read back.
  store.SetString(name, QStringView(text).first(std::min<qsizetype>(text.size(), units - 1)),
                  units, key);
}

}  // namespace

QStringView FaceValueName(FontElement element) {
  switch (element) {
    case FontElement::Text: return u"TextFontName";
    case FontElement::List: return u"ListFontName";
    case FontElement::Input: return u"EditFontName";
  }
  return {};
}

ViewOptions LoadViewOptions(const SettingsStore& store) {
  ViewOptions options;
  QByteArray bytes;
  if (!store.GetBinary(u"kolory", bytes, kColourBytes) || bytes.size() < kColourBytes)
    bytes = DefaultViewColours();
  options.colours = UnpackColours(bytes);
  for (int e = 0; e < kFontElements; ++e)
    store.GetString(FaceValueName(FontElement(e)), options.faces[size_t(e)], kFaceUnits);
  const auto sizes = quint32(store.GetDword(u"FontSize"));
  options.textSize = int(sizes & 15) + kSmallestFontSize;
  options.listSize = int((sizes >> 4) & 15) + kSmallestFontSize;
  return options;
}

void SaveViewOptions(SettingsStore& store, const ViewOptions& options) {
  store.BeginBatch();
  store.SetBinary(u"kolory", PackColours(options.colours));
  for (int e = 0; e < kFontElements; ++e)
    SetText(store, FaceValueName(FontElement(e)), options.faces[size_t(e)], kFaceUnits);
  const int text = FontSizeIn(options.textSize) - kSmallestFontSize;
  const int list = FontSizeIn(options.listSize) - kSmallestFontSize;
  store.SetDword(u"FontSize", text | list << 4);
  store.EndBatch();
}

ViewOptions DefaultViewOptions() {
  ViewOptions options;
  options.colours = UnpackColours(DefaultViewColours());
  options.faces.fill(QString::fromUtf16(kFallbackFace));
  return options;
}

std::array<quint32, kCodeColourCount> LoadCodeColours(const SettingsStore& store) {
  QByteArray bytes;
  if (!store.GetBinary(u"mColors", bytes, kCodeColourCount * 4) || bytes.size() < kCodeColourCount * 4)
    bytes = DefaultMircPalette();
  std::array<quint32, kCodeColourCount> colours{};
  for (int i = 0; i < kCodeColourCount; ++i)
    for (int k = 0; k < 3; ++k) colours[size_t(i)] |= quint32(quint8(bytes[i * 4 + k])) << (8 * k);
  return colours;
}

ScreenOptions LoadScreenOptions(const SettingsStore& store) {
  ScreenOptions options;
  options.bitmap = store.GetDword(u"bmp") != 0;
  store.GetString(u"bmpfile", options.file, kPictureNameUnits);
  options.blend = std::clamp(store.GetDword(u"bmpblend"), 0, 10);
  options.realVga = store.GetDword(u"VGA") != 0;
  return options;
}

void SaveScreenOptions(SettingsStore& store, const ScreenOptions& options) {
  store.BeginBatch();
  store.SetDword(u"bmp", options.bitmap ? 1 : 0);
  SetText(store, u"bmpfile", options.file, kPictureNameUnits);
  store.SetDword(u"bmpblend", std::clamp(options.blend, 0, 10));
  store.SetDword(u"VGA", options.realVga ? 1 : 0);
  store.EndBatch();
}

const std::array<SoundEvent, kSoundEventCount> kSoundEvents{{
    {u"join", u"Join"},     {u"part", u"Part"},         {u"query", u"Query"},
    {u"invite", u"Invite"}, {u"notice", u"Notice"},     {u"highlight", u"Highlight"},
    {u"quit", u"Quit"},     {u"ping", u"Ping"},         {u"kick", u"Kick"},
    {u"op", u"Op"},         {u"deop", u"Deop"},         {u"voice", u"Voice"},
    {u"devoice", u"Devoice"},
}};

SoundOptions LoadSoundOptions(const SettingsStore& store) {
  SoundOptions options;
  options.enabled = store.GetDword(u"snd_enable") != 0;
  options.desktopNotify = store.GetDword(u"desk_notify") != 0;
  for (size_t i = 0; i < kSoundEvents.size(); ++i)
    store.GetString(kSoundEvents[i].value, options.files[i], kSoundNameUnits, SettingsKey::Sounds);
  return options;
}

void SaveSoundOptions(SettingsStore& store, const SoundOptions& options) {
  store.BeginBatch();
  store.SetDword(u"snd_enable", options.enabled ? 1 : 0);
  store.SetDword(u"desk_notify", options.desktopNotify ? 1 : 0);
  for (size_t i = 0; i < kSoundEvents.size(); ++i)
    SetText(store, kSoundEvents[i].value, options.files[i], kSoundNameUnits, SettingsKey::Sounds);
  store.EndBatch();
}

QStringList ListInstallFiles(const SettingsStore& store, const QStringList& patterns) {
  // Name filters of QDir ignore case unless asked otherwise: "JOIN.WAV" is a sound too.
  return QDir(GetInstallDir(store)).entryList(patterns, QDir::Files, QDir::Name | QDir::IgnoreCase);
}
