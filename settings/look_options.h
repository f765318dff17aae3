#pragma once
// The values of the "View", "Screen" and "Sounds" pages of the settings dialog, read from
// and written to the settings store in one piece, and the small rules those pages share
// with the window: the blend of the background picture and the files offered for it.

#include <QString>
#include <QStringList>

#include <array>

class SettingsStore;

// The elements whose face (and, for two of them, size) the View page edits.
enum class FontElement { Text, List, Input };
inline constexpr int kFontElements = 3;
inline constexpr int kSmallestFontSize = 11;
inline constexpr int kLargestFontSize = 26;  // a 4-bit field of "FontSize" plus 11
inline constexpr int kInputFontSize = 13;    // the input line's height is fixed
inline constexpr auto kFallbackFace = u"Tahoma";
inline constexpr int kViewColourCount = 24;  // entries of "kolory"

// The setting that holds the element's face.
QStringView FaceValueName(FontElement element);

struct ViewOptions {
  std::array<quint32, kViewColourCount> colours{};  // 0x00BBGGRR
  std::array<QString, kFontElements> faces;          // indexed by FontElement
  int textSize = 13;
  int listSize = 13;
};

// Damaged colours read as the shipped scheme; a face too long for its value as empty.
ViewOptions LoadViewOptions(const SettingsStore& store);
// Writes "kolory", the three faces and "FontSize" (sizes outside 11..26 are brought in).
void SaveViewOptions(SettingsStore& store, const ViewOptions& options);
// What "Default" restores: the shipped colours, "Tahoma" everywhere, 13 pixels.
ViewOptions DefaultViewOptions();

struct ScreenOptions {
  bool bitmap = false;  // "bmp"
  QString file;         // "bmpfile", relative to the installation folder
  int blend = 6;        // "bmpblend", 0..10
  bool realVga = false;  // "VGA"
};
ScreenOptions LoadScreenOptions(const SettingsStore& store);
void SaveScreenOptions(SettingsStore& store, const ScreenOptions& options);

// The events that play a sound, in the order of the Sounds page.
struct SoundEvent {
  const char16_t* value;  // in the sounds subkey
  const char16_t* label;  // shown to the user
};
inline constexpr int kSoundEventCount = 13;
extern const std::array<SoundEvent, kSoundEventCount> kSoundEvents;

struct SoundOptions {
  bool enabled = true;  // "snd_enable"
  bool desktopNotify = true;  // "desk_notify": highlights and private messages on the desktop
  std::array<QString, kSoundEventCount> files;
};
SoundOptions LoadSoundOptions(const SettingsStore& store);
void SaveSoundOptions(SettingsStore& store, const SoundOptions& options);

// The sixteen colours of the colour codes ("mColors"); the shipped ones when damaged.
inline constexpr int kCodeColourCount = 16;
std::array<quint32, kCodeColourCount> LoadCodeColours(const SettingsStore& store);

// One colour byte of the background picture moved `level` tenths (0..10) of the way to
// white, truncating.
constexpr quint8 BlendByte(quint8 byte, int level) {
  return quint8(byte + ((255 - byte) * level) / 10);
}

// The names of the installation folder's files matching any of `patterns` ("*.wav"),
// case-insensitively, sorted by name ignoring case.
QStringList ListInstallFiles(const SettingsStore& store, const QStringList& patterns);
