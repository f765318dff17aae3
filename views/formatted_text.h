#pragma once
// The IRC formatting codes of a stored line: colour, bold, reset, reverse and underline,
// and the ones today's clients send as well: italic, strikethrough, monospace and colours
// given as hex (0x04 RRGGBB[,RRGGBB]).
// A line is parsed into its plain text and a chain of runs, each taking effect at a
// position of the plain text; the view measures, wraps and paints from that.

#include <QList>
#include <QString>
#include <QStringView>

namespace formatting {
inline constexpr char16_t kBold = 0x02;
inline constexpr char16_t kColour = 0x03;
inline constexpr char16_t kReset = 0x0F;
inline constexpr char16_t kReverse = 0x16;
inline constexpr char16_t kUnderline = 0x1F;
inline constexpr char16_t kHexColour = 0x04;
inline constexpr char16_t kMonospace = 0x11;
inline constexpr char16_t kItalic = 0x1D;
inline constexpr char16_t kStrike = 0x1E;
}  // namespace formatting

// A colour given as hex travels in the same fields as a palette index, marked by this bit
// above its 0xRRGGBB.
inline constexpr int kRgbColour = 0x1000000;
inline constexpr bool IsRgbColour(int colour) { return colour >= kRgbColour; }

// The faces text is measured and drawn in: bits of bold, italic and monospace.
inline constexpr int kFaceBold = 1;
inline constexpr int kFaceItalic = 2;
inline constexpr int kFaceMonospace = 4;
inline constexpr int kFaceCount = 8;

// One run of the chain. `foreground` and `background` are palette indices 0-15, hex
// colours (kRgbColour | 0xRRGGBB), or -1 for the line's own colour and the window's
// background. They carry meaning for colour runs only; the other codes leave them at -1.
struct FormatRun {
  char16_t code = formatting::kColour;
  qsizetype position = 0;
  int foreground = -1;
  int background = -1;

  friend bool operator==(const FormatRun&, const FormatRun&) = default;
};

// `runs` always starts with the implicit colour run at 0 with -1/-1, so every position of
// the text has a run in effect.
struct ParsedLine {
  QString text;
  QList<FormatRun> runs;
};

ParsedLine ParseFormatting(QStringView line);
// The same walk as ParseFormatting, keeping only the plain text (what the clipboard gets).
QString StripFormatting(QStringView line);

// What the painter needs at a position. Bold, underline, reverse, italic, strikethrough
// and monospace toggle; reset returns to the line's own colour and plain style; a colour
// run sets both colours.
struct TextStyle {
  int foreground = -1;
  int background = -1;
  bool bold = false;
  bool underline = false;
  bool reverse = false;
  bool italic = false;
  bool strike = false;
  bool monospace = false;

  int Face() const {
    return (bold ? kFaceBold : 0) | (italic ? kFaceItalic : 0) | (monospace ? kFaceMonospace : 0);
  }

  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

void ApplyRun(TextStyle& style, const FormatRun& run);
// The style in effect at `position`: every run at or before it applied in order.
TextStyle StyleAt(const ParsedLine& line, qsizetype position);
