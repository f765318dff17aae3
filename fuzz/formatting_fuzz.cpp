// Text with formatting codes, as any line from the network may carry: parsing, stripping,
// wrapping at several widths, the line store, and the file name a channel or nick turns
// into.
//
// Input layout: two header bytes, then the text.
//   byte 0  the cell width (1-8) and the bold cell width (1-8) of the fixed measure
//   byte 1  bit 0: the text is raw UTF-16 (lone surrogates included) instead of UTF-8;
//           bits 1-7: the left margin
//
// What must hold for every width: the rows cover the plain text exactly, in order, each
// row holding at least one unit (an empty text is one empty row); no row ends between the
// halves of a surrogate pair; a row is wider than the space only when it is one
// character (a blank it ends with does not count); CountRows agrees with WrapLine; and the line store counts the same rows and
// gives the text back unchanged.

#include "fuzz/fuzz_check.h"
#include "views/formatted_text.h"
#include "views/line_store.h"
#include "views/line_wrap.h"
#include "views/safe_file_name.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using namespace Qt::StringLiterals;

constexpr int kWidths[] = {-5, 0, 1, 7, 10, 33, 80, 240, 100000};

QString Decode(const uint8_t* data, size_t size, bool utf16) {
  if (!utf16) return QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
  return QString(reinterpret_cast<const QChar*>(data), qsizetype(size / 2));
}

bool SplitsPair(QStringView text, qsizetype at) {
  return at > 0 && at < text.size() && text[at - 1].isHighSurrogate() &&
         text[at].isLowSurrogate();
}

// Whether each position of the plain text is bold, from the runs.
std::vector<bool> BoldAt(const ParsedLine& line) {
  std::vector<bool> bold(size_t(line.text.size()), false);
  TextStyle style;
  qsizetype next = 0;
  for (const FormatRun& run : line.runs) {
    for (; next < run.position && next < line.text.size(); ++next) bold[size_t(next)] = style.bold;
    ApplyRun(style, run);
  }
  for (; next < line.text.size(); ++next) bold[size_t(next)] = style.bold;
  return bold;
}

int RowWidth(const ParsedLine& line, const std::vector<bool>& bold, TextRow row,
             const TextMeasure& measure) {
  int width = 0;
  for (qsizetype i = row.start; i < row.end; ++i)
    width += measure.Width(QStringView(line.text).sliced(i, 1), bold[size_t(i)]);
  return width;
}

void CheckRows(const ParsedLine& line, int width, const TextMeasure& measure) {
  const QList<TextRow> rows = WrapLine(line, width, measure);
  const qsizetype size = line.text.size();
  FUZZ_CHECK(!rows.isEmpty(), "at least one row");
  FUZZ_CHECK(CountRows(line, width, &measure) == rows.size(), "CountRows agrees with WrapLine");
  FUZZ_CHECK(rows.front().start == 0 && rows.back().end == size, "rows cover the text");
  if (size == 0) {
    FUZZ_CHECK(rows.size() == 1, "an empty text is one row");
    return;
  }
  const std::vector<bool> bold = BoldAt(line);
  const int space = width - measure.LeftMargin();
  for (qsizetype r = 0; r < rows.size(); ++r) {
    const TextRow row = rows[r];
    FUZZ_CHECK(row.start < row.end, "every row holds at least one unit");
    if (r > 0) FUZZ_CHECK(row.start == rows[r - 1].end, "rows follow each other");
    FUZZ_CHECK(!SplitsPair(line.text, row.end), "no row ends inside a surrogate pair");
    if (width <= 0) continue;
    // The blank a row breaks at ends that row and may hang past the edge, unseen.
    TextRow shown = row;
    if (shown.end - shown.start > 1 && line.text[shown.end - 1] == u' ') --shown.end;
    const qsizetype units = shown.end - shown.start;
    const bool oneCharacter = units == 1 || (units == 2 && SplitsPair(line.text, shown.start + 1));
    FUZZ_CHECK(oneCharacter || RowWidth(line, bold, shown, measure) <= space,
               "a row fits its space, but for a blank at its end, unless it is one character");
  }
}

void CheckParse(QStringView text) {
  const ParsedLine parsed = ParseFormatting(text);
  FUZZ_CHECK(StripFormatting(text) == parsed.text, "stripping gives the parsed text");
  FUZZ_CHECK(!parsed.runs.isEmpty() && parsed.runs.front() == FormatRun{},
             "the implicit colour run comes first");
  qsizetype previous = 0;
  for (const FormatRun& run : parsed.runs) {
    FUZZ_CHECK(run.position >= previous && run.position <= parsed.text.size(),
               "runs are in order and inside the text");
    FUZZ_CHECK(run.foreground >= -1 && run.foreground <= 15 && run.background >= -1 &&
                   run.background <= 15,
               "colour indices are palette indices or -1");
    previous = run.position;
  }
  FUZZ_CHECK(StyleAt(parsed, parsed.text.size()) == StyleAt(parsed, 1 << 30),
             "nothing takes effect past the end");
}

void CheckLineStore(const QString& text, int width, const TextMeasure& measure) {
  LineStore store;
  store.SetLayout(width, &measure);
  const qsizetype rows = store.Append(text, 0x123456);
  FUZZ_CHECK(rows == CountRows(ParseFormatting(text), width, &measure), "the store's row count");
  store.Append(u"second"_s, 0);
  FUZZ_CHECK(store.Line(0).text == text && store.Line(0).colour == 0x123456,
             "the store gives the line back unchanged");
  FUZZ_CHECK(store.RowToLine(rows - 1).line == 0 && store.RowToLine(rows).line == 1,
             "a row belongs to its line");
}

// A channel or nick becomes one component of a log file name.
void CheckSafeFileName(QStringView name) {
  const QString safe = SafeFileNameComponent(name);
  FUZZ_CHECK(!safe.isEmpty(), "a file name is never empty");
  FUZZ_CHECK(safe.toUtf8().size() <= kSafeFileNameMaxBytes, "a file name keeps its bound");
  FUZZ_CHECK(!safe.startsWith(u'.') && !safe.startsWith(u'-') && !safe.endsWith(u'.'),
             "no hidden file, option or trailing dot");
  FUZZ_CHECK(!safe.contains(u".."_s), "no parent folder");
  for (QChar c : safe) {
    const char16_t u = c.unicode();
    FUZZ_CHECK(u >= 0x20 && u != 0x7f && !(u >= 0x80 && u <= 0x9f), "no control character");
    FUZZ_CHECK(!QStringView(u"/\\\"*:<>?|").contains(c), "no separator or reserved character");
  }
  FUZZ_CHECK(safe.isValidUtf16(), "no half of a surrogate pair");
  FUZZ_CHECK(SafeFileNameComponent(name) == safe, "the same name gives the same file name");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const int cell = 1 + (data[0] & 7);
  const int boldCell = 1 + ((data[0] >> 3) & 7);
  const int margin = data[1] >> 1;
  const QString text = Decode(data + 2, size - 2, data[1] & 1);

  CheckParse(text);
  const ParsedLine parsed = ParseFormatting(text);
  const FixedTextMeasure measure(cell, boldCell, margin);
  for (int width : kWidths) CheckRows(parsed, width, measure);
  CheckLineStore(text, kWidths[size % std::size(kWidths)], measure);
  CheckSafeFileName(text);
  return 0;
}
