#include "views/formatted_text.h"

namespace {

using namespace formatting;

bool IsToggleOrReset(char16_t c) {
  return c == kBold || c == kReset || c == kReverse || c == kUnderline;
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

bool HasCodes(QStringView text) {
  for (QChar c : text) {
    if (c.unicode() == kColour || IsToggleOrReset(c.unicode())) return true;
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
    if (c == kColour) {
      FormatRun run = ReadColour(line, i, background);
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
      style.foreground = run.foreground;
      style.background = run.background;
      break;
    case kBold: style.bold = !style.bold; break;
    case kUnderline: style.underline = !style.underline; break;
    case kReverse: style.reverse = !style.reverse; break;
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
