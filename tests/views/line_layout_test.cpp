// Formatting codes parsed into plain text and runs, wrapped into rows, kept in the store;
// the web addresses of a line.

#include "views/formatted_text.h"
#include "views/line_store.h"
#include "views/line_wrap.h"
#include "views/text_links.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Tables write the codes as ^C colour, ^B bold, ^O reset, ^R reverse, ^U underline, ^H hex
// colour, ^I italic, ^S strikethrough, ^M monospace, since "\x03" followed by a digit
// would be read as one longer escape.
QString Codes(QString text) {
  return text.replace(u"^C"_s, u"\x03"_s).replace(u"^B"_s, u"\x02"_s)
      .replace(u"^O"_s, u"\x0f"_s).replace(u"^R"_s, u"\x16"_s).replace(u"^U"_s, u"\x1f"_s)
      .replace(u"^H"_s, u"\x04"_s).replace(u"^I"_s, u"\x1d"_s).replace(u"^S"_s, u"\x1e"_s)
      .replace(u"^M"_s, u"\x11"_s);
}

constexpr char16_t C = 0x03;
constexpr char16_t H = 0x04;
constexpr int Rgb(int rgb) { return kRgbColour | rgb; }

// Out of range, a foreground becomes 1 and a background 0. The background comes from the
// previous colour run, and a reset is none. Every line starts with the run {C, 0, -1, -1}.
TEST(ParseFormatting, GivesPlainTextAndRuns) {
  const std::tuple<QString, QString, QList<FormatRun>> cases[] = {
      {u"no codes here"_s, u"no codes here"_s, {}},
      {u"^C0,1x^C15,15y"_s, u"xy"_s, {{C, 0, 0, 1}, {C, 1, 15, 15}}},
      {u"^C16,16x"_s, u"x"_s, {{C, 0, 1, 0}}},
      {u"^C4,123"_s, u"3"_s, {{C, 0, 4, 12}}},  // two digits at most
      {u"^C4,12a^Cb^C"_s, u"ab"_s, {{C, 0, 4, 12}, {C, 1, -1, -1}, {C, 2, -1, -1}}},
      {u"^C4,12a^C5b^C6,c"_s, u"abc"_s, {{C, 0, 4, 12}, {C, 1, 5, 12}, {C, 2, 6, -1}}},
      {u"^C4,12a^O^C5b"_s, u"ab"_s, {{C, 0, 4, 12}, {0x0f, 1, -1, -1}, {C, 1, 5, 12}}},
      {u"^C,5x"_s, u",5x"_s, {{C, 0, -1, -1}}},
      {u"^C\u0663x"_s, u"\u0663x"_s, {{C, 0, -1, -1}}},  // ASCII digits only
      {u"^Bb^Uu^Rr^On"_s, u"burn"_s, {{0x02, 0, -1, -1}, {0x1f, 1, -1, -1}, {0x16, 2, -1, -1}, {0x0f, 3, -1, -1}}},
      {u"\x01" "ACTION\x01\t\x07"_s, u"\x01" "ACTION\x01\t\x07"_s, {}},  // other controls are text
      {u"^Ii^Ss^Mm"_s, u"ism"_s, {{0x1d, 0, -1, -1}, {0x1e, 1, -1, -1}, {0x11, 2, -1, -1}}},
      {u"^Hff8000,0000FFx"_s, u"x"_s, {{H, 0, Rgb(0xff8000), Rgb(0x0000ff)}}},
      {u"^C4,2a^H00ff00b^Hc"_s, u"abc"_s, {{C, 0, 4, 2}, {H, 1, Rgb(0x00ff00), 2}, {H, 2, -1, -1}}},
      {u"^H12345g^H123456,12x"_s, u"12345g,12x"_s, {{H, 0, -1, -1}, {H, 6, Rgb(0x123456), -1}}},
  };
  for (const auto& [input, plain, runs] : cases) {
    SCOPED_TRACE(input.toStdString());
    const ParsedLine parsed = ParseFormatting(Codes(input));
    EXPECT_EQ(parsed.text, plain);
    EXPECT_EQ(parsed.runs, (QList<FormatRun>{{C, 0, -1, -1}} + runs));
    EXPECT_EQ(StripFormatting(Codes(input)), plain);
  }
}

TEST(StyleAt, AppliesTheRunsUpToAPosition) {
  const std::tuple<QString, qsizetype, TextStyle> cases[] = {
      {u"a^C4,2b"_s, 0, {}}, {u"a^C4,2b"_s, 1, {4, 2, false, false, false}},
      {u"^Ba^Bb"_s, 1, {}}, {u"^B^U^R^C3x"_s, 0, {3, -1, true, true, true}},
      {u"^B^U^C3,4x^Oy"_s, 1, {}}, {u"^Bx^C5y"_s, 1, {5, -1, true, false, false}},
      {u"^I^S^Mx^Iy"_s, 0, {-1, -1, false, false, false, true, true, true}},
      {u"^I^S^Mx^Oy"_s, 1, {}}, {u"^I^S^Mx^Iy"_s, 1, {-1, -1, false, false, false, false, true, true}}};
  for (const auto& [input, position, style] : cases)
    EXPECT_EQ(StyleAt(ParseFormatting(Codes(input)), position), style) << input.toStdString() << position;
}

// Ten pixels a character, twelve in bold. A word moves to the next row only when the row
// is more than half full; long hostile lines give no empty row.
TEST(WrapLine, SplitsIntoRows) {
  const std::tuple<QString, int, QStringList, int> cases[] = {  // {line, width, rows, margin}
      {u"abcdefghij"_s, 100, {u"abcdefghij"_s}, 0},
      {u"abcdefghijklm"_s, 50, {u"abcde"_s, u"fghij"_s, u"klm"_s}, 0},
      {u"hello world"_s, 80, {u"hello "_s, u"world"_s}, 0},
      {u"abcde fghijkl"_s, 100, {u"abcde fghi"_s, u"jkl"_s}, 0},
      {u"abcdef ghijkl"_s, 100, {u"abcdef "_s, u"ghijkl"_s}, 0},
      {u"abcde fghijkl"_s, 99, {u"abcde "_s, u"fghijkl"_s}, 0},
      {u"abcdefghij klm"_s, 100, {u"abcdefghij "_s, u"klm"_s}, 0},
      {u"aaaa bbbb cccc dddd"_s, 120, {u"aaaa bbbb "_s, u"cccc dddd"_s}, 0},
      {u"hello world"_s, 100, {u"hello "_s, u"world"_s}, 20},
      {u"ab"_s, 10, {u"a"_s, u"b"_s}, 50},
      {u"^Babcdefgh"_s, 60, {u"abcde"_s, u"fgh"_s}, 0},
      {u"abc^Bdefgh"_s, 60, {u"abcde"_s, u"fgh"_s}, 0},
      {u"abcdef ^Bghijkl"_s, 100, {u"abcdef "_s, u"ghijkl"_s}, 0},
      {u"^I^Mabc^Bdefgh"_s, 60, {u"abcde"_s, u"fgh"_s}, 0},  // any face with bold measures bold
      {u"\U0001F600\U0001F600\U0001F600"_s, 20, {u"\U0001F600\U0001F600"_s, u"\U0001F600"_s}, 0},
      {u"\U0001F600\U0001F600"_s, 5, {u"\U0001F600"_s, u"\U0001F600"_s}, 0},
      {u"hello world"_s, 0, {u"hello world"_s}, 0},
      {u"^B^B"_s, 100, {u""_s}, 0},
      {QString(100000, u'x'), 3, QStringList(100000, u"x"_s), 0},
      {QString(100000, u' '), 100, QStringList(9090, QString(11, u' ')) << QString(10, u' '), 0},
      {u"^Bx"_s.repeated(50000), 55, QStringList(12500, u"xxxx"_s), 0},
  };
  for (const auto& [input, width, expected, margin] : cases) {
    SCOPED_TRACE(input.left(20).toStdString() + " at " + std::to_string(width));
    const FixedTextMeasure measure(10, 12, margin);
    const ParsedLine line = ParseFormatting(Codes(input));
    const QList<TextRow> rows = WrapLine(line, width, measure);
    QStringList texts;
    for (const TextRow& row : rows) texts.append(line.text.sliced(row.start, row.end - row.start));
    EXPECT_EQ(texts, expected);
    EXPECT_EQ(CountRows(line, width, &measure), rows.size());
  }
  EXPECT_EQ(CountRows(ParseFormatting(u"no measure: one row"_s), 30, nullptr), 1);
}

// Ten characters a row at width 100, eight in bold; a new width counts all rows again.
TEST(LineStore, RowsFollowAppendsAndTheLayout) {
  const std::pair<QString, qsizetype> lines[] = {{u"short"_s, 1}, {u"hello, wonderful world"_s, 3},
                                                 {u"\x02" "abcdefghi"_s, 2}, {u""_s, 1}, {QString(25, u'x'), 3}};
  const FixedTextMeasure measure(10, 12);
  LineStore store;
  EXPECT_EQ(store.Append(u"no width yet: one row"_s, 0), 1);
  store.SetLayout(100, &measure);
  store.Clear();
  qsizetype total = 0;
  for (const auto& [text, rows] : lines) EXPECT_EQ(store.Append(text, 0), total += rows);
  for (qsizetype i = 0; i < 5; ++i) EXPECT_EQ(store.RowsOf(i), lines[i].second);
  EXPECT_EQ(store.RowsOf(-1) + store.RowsOf(5), 0);
  EXPECT_EQ(store.FirstRowOf(5), 10);
  // {row, line, row in the line}
  const qsizetype positions[][3] = {{0, 0, 0}, {3, 1, 2}, {4, 2, 0}, {5, 2, 1}, {6, 3, 0},
                                    {9, 4, 2}, {10, -1, 0}, {-1, -1, 0}};
  for (const auto& [row, line, rowInLine] : positions)
    EXPECT_EQ(std::pair(store.RowToLine(row).line, store.RowToLine(row).row), std::pair(line, rowInLine)) << row;
  store.SetLayout(200, &measure);
  EXPECT_EQ(store.RowCount(), 7);
  store.SetLayout(0, &measure);
  EXPECT_EQ(store.RowCount(), 5);
}

// Unit for unit, lone surrogates too; enough lines for several blocks, one beyond a chunk.
TEST(LineStore, TextAndColourComeBackExactly) {
  const std::pair<QString, quint32> odd[] = {
      {u"\x03" "4,12colour \x02" "bold\x0f"_s, 0x000000ffu}, {u"\U0001F600 \U0010FFFF"_s, 0x00123456u},
      {u"lone \xd800 high and \xdc00 low"_s, 0u}, {u"\xdbff"_s, 1u}, {u"\xfeff" "text"_s, 7u}};
  LineStore store;
  for (const auto& [text, colour] : odd) store.Append(text, colour);
  const QString huge = u"\U0001F600 huge "_s.repeated(200000);
  store.Append(huge, 1);
  for (int i = 0; i < 20000; ++i) store.Append(u"line %1 \u00e9"_s.arg(i).repeated(1 + i % 20), quint32(i));
  for (qsizetype i = 0; i < 5; ++i) {
    EXPECT_EQ(store.Line(i).text.toStdU16String(), odd[i].first.toStdU16String());
    EXPECT_EQ(store.Line(i).colour, odd[i].second);
  }
  EXPECT_EQ(store.Line(5).text, huge);
  for (int i = 0; i < 20000; i += 7) {
    EXPECT_EQ(store.Line(6 + i).text, u"line %1 \u00e9"_s.arg(i).repeated(1 + i % 20));
    EXPECT_EQ(store.Line(6 + i).colour, quint32(i));
  }
  EXPECT_TRUE(store.Line(-1).text.isNull() && store.Line(store.LineCount()).text.isNull());
}

}  // namespace

// Web addresses: where they start and end in a line's plain text.
TEST(FindLinks, TakesTheAddressWithoutTheSentencesPunctuation) {
  const std::pair<QString, QStringList> cases[] = {
      {u"see https://example.org/a?b=1#c now"_s, {u"https://example.org/a?b=1#c"_s}},
      {u"HTTP://Example.org. and (http://x.example/y_(z))."_s, {u"HTTP://Example.org"_s, u"http://x.example/y_(z)"_s}},
      {u"<https://a.example/>, \"http://b.example\""_s, {u"https://a.example/"_s, u"http://b.example"_s}},
      {u"xhttp://no.example ftp://no.example http:// https://"_s, {}},
      {u"two:https://a.example/https://b.example"_s, {u"https://a.example/https://b.example"_s}},
  };
  for (const auto& [text, expected] : cases) {
    QStringList found;
    for (const TextLink& link : FindLinks(text)) found << text.sliced(link.start, link.end - link.start);
    EXPECT_EQ(found, expected) << text.toStdString();
  }
}
