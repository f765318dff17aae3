// Text with formatting codes, as any line from the network may carry: parsing, stripping,
// wrapping at several widths.
//
// Input: byte 0 the cell width (bits 0-2) and bold cell width (bits 3-5) of a fixed
// measure, less one; byte 1 bit 0 the text is raw UTF-16 instead of UTF-8, bits 1-7 the
// left margin; then the text.

#include "fuzz/fuzz_check.h"
#include "views/formatted_text.h"
#include "views/line_wrap.h"

namespace {

using namespace Qt::StringLiterals;

constexpr int kWidths[] = {-5, 0, 1, 7, 10, 33, 80, 240, 100000};

bool SplitsPair(QStringView text, qsizetype at) {
  return at > 0 && at < text.size() && text[at - 1].isHighSurrogate() && text[at].isLowSurrogate();
}

// The rows cover the text in order, each holding at least one unit and none ending inside
// a surrogate pair; a row is wider than its space only when it is one character (a blank
// it breaks at does not count); CountRows agrees.
void CheckRows(const ParsedLine& line, int width, const TextMeasure& measure) {
  const QList<TextRow> rows = WrapLine(line, width, measure);
  FUZZ_CHECK(!rows.isEmpty() && CountRows(line, width, &measure) == rows.size(), "CountRows agrees");
  FUZZ_CHECK(!line.text.isEmpty() || rows.size() == 1, "an empty text is one row");
  FUZZ_CHECK(rows.front().start == 0 && rows.back().end == line.text.size(), "rows cover the text");
  std::vector<int> face;  // of each position of the plain text, from the runs
  TextStyle style;
  for (qsizetype i = 0, run = 0; i < line.text.size(); face.push_back(style.Face()), ++i)
    for (; run < line.runs.size() && line.runs[run].position <= i; ++run) ApplyRun(style, line.runs[run]);
  for (qsizetype r = 0; r < rows.size() && !line.text.isEmpty(); ++r) {
    const TextRow row = rows[r];
    FUZZ_CHECK(row.start < row.end && (r == 0 || row.start == rows[r - 1].end), "rows follow each other");
    FUZZ_CHECK(!SplitsPair(line.text, row.end), "no row ends inside a surrogate pair");
    qsizetype end = row.end;
    if (end - row.start > 1 && line.text[end - 1] == u' ') --end;
    int shown = 0;
    for (qsizetype i = row.start; i < end; ++i) shown += measure.Width(QStringView(line.text).sliced(i, 1), face[i]);
    const bool oneCharacter = end - row.start == 1 || (end - row.start == 2 && SplitsPair(line.text, row.start + 1));
    FUZZ_CHECK(width <= 0 || oneCharacter || shown <= width - measure.LeftMargin(), "a row fits its space");
  }
}

void CheckParse(QStringView text) {
  const ParsedLine parsed = ParseFormatting(text);
  FUZZ_CHECK(StripFormatting(text) == parsed.text, "stripping gives the parsed text");
  FUZZ_CHECK(!parsed.runs.isEmpty() && parsed.runs.front() == FormatRun{}, "the implicit run comes first");
  qsizetype previous = 0;
  for (const FormatRun& run : parsed.runs) {
    FUZZ_CHECK(run.position >= previous && run.position <= parsed.text.size(), "runs are in order, in the text");
    const auto colour = [](int c) { return (c >= -1 && c <= 15) || (c & ~0xffffff) == kRgbColour; };
    FUZZ_CHECK(colour(run.foreground) && colour(run.background), "colours are palette indices, hex colours or -1");
    previous = run.position;
  }
  FUZZ_CHECK(StyleAt(parsed, parsed.text.size()) == StyleAt(parsed, 1 << 30), "nothing past the end");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const QString text = (data[1] & 1) ? QString(reinterpret_cast<const QChar*>(data + 2), qsizetype((size - 2) / 2))
                                     : QString::fromUtf8(reinterpret_cast<const char*>(data + 2), qsizetype(size - 2));
  CheckParse(text);
  const ParsedLine parsed = ParseFormatting(text);
  const FixedTextMeasure measure(1 + (data[0] & 7), 1 + ((data[0] >> 3) & 7), data[1] >> 1);
  for (int width : kWidths) CheckRows(parsed, width, measure);
  return 0;
}
