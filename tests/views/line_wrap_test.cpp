#include "views/line_wrap.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// ^B in the tables is the bold code.
QString Codes(QString text) { return text.replace(u"^B"_s, u"\x02"_s); }

// Ten pixels a character, twelve in bold; no margin unless a case sets one.
struct WrapCase {
  const char* name;
  QString input;
  int width;
  QStringList rows;
  int margin = 0;
};

void PrintTo(const WrapCase& c, std::ostream* os) { *os << c.name; }

QStringList RowTexts(const ParsedLine& line, const QList<TextRow>& rows) {
  QStringList texts;
  for (const TextRow& row : rows) texts.append(line.text.sliced(row.start, row.end - row.start));
  return texts;
}

class WrapLineTest : public testing::TestWithParam<WrapCase> {};

TEST_P(WrapLineTest, SplitsIntoRows) {
  const WrapCase& c = GetParam();
  const FixedTextMeasure measure(10, 12, c.margin);
  const ParsedLine line = ParseFormatting(Codes(c.input));
  const QList<TextRow> rows = WrapLine(line, c.width, measure);
  EXPECT_EQ(RowTexts(line, rows), c.rows);
  EXPECT_EQ(CountRows(line, c.width, &measure), rows.size());
}

INSTANTIATE_TEST_SUITE_P(
    Rule, WrapLineTest,
    testing::Values(
        WrapCase{"AllFits", u"hello world"_s, 200, {u"hello world"_s}},
        WrapCase{"ExactFit", u"abcdefghij"_s, 100, {u"abcdefghij"_s}},
        WrapCase{"LongWordSplitAtEdge", u"abcdefghijklmnop"_s, 50,
                 {u"abcde"_s, u"fghij"_s, u"klmno"_s, u"p"_s}},
        WrapCase{"ShortWordCarried", u"hello world"_s, 80, {u"hello "_s, u"world"_s}},
        // Width 100: a blank after 5 characters leaves the row exactly half full, so the
        // word is split; after 6 the row is more than half full and the word moves.
        WrapCase{"HalfFullSplits", u"abcde fghijkl"_s, 100, {u"abcde fghi"_s, u"jkl"_s}},
        WrapCase{"MoreThanHalfCarries", u"abcdef ghijkl"_s, 100,
                 {u"abcdef "_s, u"ghijkl"_s}},
        WrapCase{"JustOverHalfCarries", u"abcde fghijkl"_s, 99, {u"abcde "_s, u"fghijkl"_s}},
        WrapCase{"BlankAtFitPointStays", u"abcdefghij klm"_s, 100,
                 {u"abcdefghij "_s, u"klm"_s}},
        WrapCase{"LastBlankWins", u"aaaa bbbb cccc dddd"_s, 120,
                 {u"aaaa bbbb "_s, u"cccc dddd"_s}},
        WrapCase{"MarginNarrowsRows", u"hello world"_s, 100, {u"hello "_s, u"world"_s}, 20},
        WrapCase{"BoldMeasuresWider", u"^Babcdefgh"_s, 60, {u"abcde"_s, u"fgh"_s}},
        WrapCase{"PiecesAdvanceX", u"abc^Bdefgh"_s, 60, {u"abcde"_s, u"fgh"_s}},
        WrapCase{"BlankInEarlierPiece", u"abcdef ^Bghijkl"_s, 100,
                 {u"abcdef "_s, u"ghijkl"_s}},
        WrapCase{"SurrogatePairsWhole", u"\U0001F600\U0001F600\U0001F600"_s, 20,
                 {u"\U0001F600\U0001F600"_s, u"\U0001F600"_s}},
        WrapCase{"PairOnTinyWidth", u"\U0001F600\U0001F600"_s, 5,
                 {u"\U0001F600"_s, u"\U0001F600"_s}},
        WrapCase{"TinyWidthOneCharacterPerRow", u"abc"_s, 1, {u"a"_s, u"b"_s, u"c"_s}},
        WrapCase{"MarginWiderThanView", u"ab"_s, 10, {u"a"_s, u"b"_s}, 50},
        WrapCase{"ZeroWidthOneRow", u"hello world"_s, 0, {u"hello world"_s}},
        WrapCase{"NegativeWidthOneRow", u"hello"_s, -5, {u"hello"_s}},
        WrapCase{"EmptyLine", u""_s, 100, {u""_s}},
        WrapCase{"OnlyCodes", u"^B^B"_s, 100, {u""_s}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(WrapLine, NoMeasurerGivesOneRow) {
  const ParsedLine line = ParseFormatting(u"a long line that would wrap"_s);
  EXPECT_EQ(WrapLine(line, 30, nullptr), (QList<TextRow>{{0, line.text.size()}}));
}

// The rows cover the text without gaps, each at least one character long.
void ExpectTiled(const ParsedLine& line, const QList<TextRow>& rows) {
  ASSERT_FALSE(rows.isEmpty());
  EXPECT_EQ(rows.front().start, 0);
  EXPECT_EQ(rows.back().end, line.text.size());
  for (qsizetype i = 0; i < rows.size(); ++i) {
    ASSERT_LT(rows[i].start, rows[i].end);
    if (i) {
      ASSERT_EQ(rows[i].start, rows[i - 1].end);
    }
  }
}

struct HostileCase {
  const char* name;
  QString input;
  int width;
  qsizetype rows;
};

void PrintTo(const HostileCase& c, std::ostream* os) { *os << c.name; }

class WrapHostileTest : public testing::TestWithParam<HostileCase> {};

TEST_P(WrapHostileTest, Terminates) {
  const HostileCase& c = GetParam();
  const FixedTextMeasure measure(10, 12);
  const ParsedLine line = ParseFormatting(c.input);
  const QList<TextRow> rows = WrapLine(line, c.width, measure);
  ExpectTiled(line, rows);
  EXPECT_EQ(rows.size(), c.rows);
}

QString ControlCharacters(int times) {
  QString text;
  for (int i = 0; i < times; ++i) {
    for (char16_t c = 0; c < 0x20; ++c) text.append(QChar(c));
  }
  return text;
}

// 100000 blanks at width 100: ten fit and the eleventh, at the fit point, stays too.
INSTANTIATE_TEST_SUITE_P(
    Inputs, WrapHostileTest,
    testing::Values(
        HostileCase{"LongWord", QString(100000, u'x'), 300, 3334},
        HostileCase{"LongBlanks", QString(100000, u' '), 100, 9091},
        HostileCase{"LongWordTinyWidth", QString(100000, u'x'), 3, 100000},
        HostileCase{"ControlCharacters", ControlCharacters(1000), 7, 27000},
        HostileCase{"BoldEveryOther", QString(u"\x02x"_s).repeated(50000), 55, 12500}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
