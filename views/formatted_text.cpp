#include "views/formatted_text.h"

namespace {

using namespace formatting;

bool IsToggleOrReset(char16_t c) {
  return c == kBold || c == kReset || c == kReverse || c == kUnderline || c == kItalic ||
         c == kStrike || c == kMonospace;
}

bool IsDigit(QStringView text, qsizetype i) {
  return i < text.size() && text[i] >= u'0' && text[i] <= u'9';
}

// Reads at most two decimal digits at `i`; -1 when there is none.
int ReadIndex(QStringView text, qsizetype& i) {
  if (!IsDigit(text, i)) return -1;
  int value = text[i++].unicode() - u'0';
  if (IsDigit(text, i)) value = value * 10 + (text[i++].unicode() - u'0');
  return value;
}

// Reads what follows a colour code at `i` (just past the 0x03). Without a digit both
// indices fall back to -1; without a comma the previous colour run's background stays.
// Out-of-range values map differently on purpose: foreground to 1, background to 0.
FormatRun ReadColour(QStringView text, qsizetype& i, int previousBackground) {
  FormatRun run;
  run.foreground = ReadIndex(text, i);
  if (run.foreground < 0) return run;
  if (run.foreground > 15) run.foreground = 1;
  run.background = previousBackground;
  if (i < text.size() && text[i] == u',') {
    ++i;
    run.background = ReadIndex(text, i);
    if (run.background > 15) run.background = 0;
  }
  return run;
}

int HexDigit(QChar c) {
  const char16_t u = c.unicode();
  if (u >= u'0' && u <= u'9') return u - u'0';
  if (u >= u'a' && u <= u'f') return u - u'a' + 10;
  if (u >= u'A' && u <= u'F') return u - u'A' + 10;
  return -1;
}

// Six hex digits at `i` as kRgbColour | 0xRRGGBB; -1, reading nothing, when there are not.
int ReadRgb(QStringView text, qsizetype& i) {
  if (i + 6 > text.size()) return -1;
  int rgb = 0;
  for (qsizetype k = i; k < i + 6; ++k) {
    const int digit = HexDigit(text[k]);
    if (digit < 0) return -1;
    rgb = rgb << 4 | digit;
  }
  i += 6;
  return kRgbColour | rgb;
}

// What follows a hex colour code: as for the palette code, without a colour both fall
// back to -1 and without a comma the background stays; a comma is only taken with a colour.
FormatRun ReadHexColour(QStringView text, qsizetype& i, int previousBackground) {
  FormatRun run{kHexColour};
  run.foreground = ReadRgb(text, i);
  if (run.foreground < 0) return run;
  run.background = previousBackground;
  qsizetype comma = i + 1;
  if (i < text.size() && text[i] == u',') {
    if (const int background = ReadRgb(text, comma); background >= 0) {
      run.background = background;
      i = comma;
    }
  }
  return run;
}

bool HasCodes(QStringView text) {
  for (QChar c : text) {
    const char16_t unit = c.unicode();
    if (unit == kColour || unit == kHexColour || IsToggleOrReset(unit)) return true;
  }
  return false;
}

// The one walk behind parsing and stripping; `runs` may be null when only the plain
// text is wanted.
QString Walk(QStringView line, QList<FormatRun>* runs) {
  if (!HasCodes(line)) return line.toString();
  QString plain;
  plain.reserve(line.size());
  int background = -1;  // of the previous colour run, the implicit one at first
  qsizetype i = 0;
  while (i < line.size()) {
    const char16_t c = line[i++].unicode();
    if (c == kColour || c == kHexColour) {
      FormatRun run = c == kColour ? ReadColour(line, i, background) : ReadHexColour(line, i, background);
      background = run.background;
      run.position = plain.size();
      if (runs) runs->append(run);
    } else if (IsToggleOrReset(c)) {
      if (runs) runs->append(FormatRun{c, plain.size(), -1, -1});
    } else {
      plain.append(QChar(c));
    }
  }
  return plain;
}

}  // namespace

ParsedLine ParseFormatting(QStringView line) {
  ParsedLine parsed;
  parsed.runs.append(FormatRun{});
  parsed.text = Walk(line, &parsed.runs);
  return parsed;
}

QString StripFormatting(QStringView line) { return Walk(line, nullptr); }

void ApplyRun(TextStyle& style, const FormatRun& run) {
  switch (run.code) {
    case kColour:
    case kHexColour:
      style.foreground = run.foreground;
      style.background = run.background;
      break;
    case kBold: style.bold = !style.bold; break;
    case kUnderline: style.underline = !style.underline; break;
    case kReverse: style.reverse = !style.reverse; break;
    case kItalic: style.italic = !style.italic; break;
    case kStrike: style.strike = !style.strike; break;
    case kMonospace: style.monospace = !style.monospace; break;
    case kReset: style = TextStyle{}; break;
    default: break;
  }
}

TextStyle StyleAt(const ParsedLine& line, qsizetype position) {
  TextStyle style;
  for (const FormatRun& run : line.runs) {
    if (run.position > position) break;
    ApplyRun(style, run);
  }
  return style;
}
