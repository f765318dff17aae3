#include "views/formatted_text.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

// Tables write the codes as ^C colour, ^B bold, ^O reset, ^R reverse, ^U underline,
// since "\x03" followed by a digit would be read as one longer escape.
QString Codes(QString text) {
  return text.replace(u"^C"_s, u"\x03"_s).replace(u"^B"_s, u"\x02"_s)
      .replace(u"^O"_s, u"\x0f"_s).replace(u"^R"_s, u"\x16"_s).replace(u"^U"_s, u"\x1f"_s);
}

constexpr char16_t C = 0x03;
const FormatRun kImplicit{C, 0, -1, -1};

struct ParseCase {
  const char* name;
  QString input;
  QString plain;
  QList<FormatRun> runs;  // after the implicit one
};

void PrintTo(const ParseCase& c, std::ostream* os) { *os << c.name; }

class ParseFormattingTest : public testing::TestWithParam<ParseCase> {};

TEST_P(ParseFormattingTest, GivesPlainTextAndRuns) {
  const ParseCase& c = GetParam();
  const ParsedLine parsed = ParseFormatting(Codes(c.input));
  EXPECT_EQ(parsed.text, c.plain);
  EXPECT_EQ(parsed.runs, QList<FormatRun>{kImplicit} + c.runs);
  EXPECT_EQ(StripFormatting(Codes(c.input)), c.plain);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, ParseFormattingTest,
    testing::Values(
        ParseCase{"Plain", u"no codes here"_s, u"no codes here"_s, {}},
        ParseCase{"ForeAndBack", u"^C4,12hello"_s, u"hello"_s, {{C, 0, 4, 12}}},
        ParseCase{"ForegroundAbove15IsOne", u"^C99x"_s, u"x"_s, {{C, 0, 1, -1}}},
        ParseCase{"Foreground16IsOne", u"^C16x"_s, u"x"_s, {{C, 0, 1, -1}}},
        ParseCase{"Foreground15Kept", u"^C15x"_s, u"x"_s, {{C, 0, 15, -1}}},
        ParseCase{"BackgroundAbove15IsZero", u"^C5,99x"_s, u"x"_s, {{C, 0, 5, 0}}},
        ParseCase{"Background16IsZero", u"^C5,16x"_s, u"x"_s, {{C, 0, 5, 0}}},
        ParseCase{"LeadingZeros", u"^C00,09x"_s, u"x"_s, {{C, 0, 0, 9}}},
        ParseCase{"LoneColourAtEnd", u"ab^C"_s, u"ab"_s, {{C, 2, -1, -1}}},
        ParseCase{"LoneColourEndsColour", u"^C4,12a^Cb"_s, u"ab"_s,
                  {{C, 0, 4, 12}, {C, 1, -1, -1}}},
        ParseCase{"AtMostTwoForegroundDigits", u"^C123"_s, u"3"_s, {{C, 0, 12, -1}}},
        ParseCase{"AtMostTwoBackgroundDigits", u"^C4,123"_s, u"3"_s, {{C, 0, 4, 12}}},
        ParseCase{"BackgroundKeptWithoutComma", u"^C4,12a^C5b"_s, u"ab"_s,
                  {{C, 0, 4, 12}, {C, 1, 5, 12}}},
        ParseCase{"CommaWithoutDigitClearsBackground", u"^C4,12a^C5,b"_s, u"ab"_s,
                  {{C, 0, 4, 12}, {C, 1, 5, -1}}},
        ParseCase{"CommaWithoutForegroundIsText", u"^C,5x"_s, u",5x"_s, {{C, 0, -1, -1}}},
        ParseCase{"CommaAfterLoneColourIsText", u"^C4,12a^C,3b"_s, u"a,3b"_s,
                  {{C, 0, 4, 12}, {C, 1, -1, -1}}},
        // The background comes from the previous colour run; a reset in between is not
        // a colour run.
        ParseCase{"ResetIsNotAColourRun", u"^C4,12a^O^C5b"_s, u"ab"_s,
                  {{C, 0, 4, 12}, {0x0f, 1, -1, -1}, {C, 1, 5, 12}}},
        ParseCase{"OnlyAsciiDigits", u"^C\u0663x"_s, u"\u0663x"_s, {{C, 0, -1, -1}}},
        ParseCase{"StyleCodes", u"^Bb^Uu^Rr^On"_s, u"burn"_s,
                  {{0x02, 0, -1, -1}, {0x1f, 1, -1, -1}, {0x16, 2, -1, -1},
                   {0x0f, 3, -1, -1}}},
        ParseCase{"CodesAtOnePosition", u"a^B^B^C3b"_s, u"ab"_s,
                  {{0x02, 1, -1, -1}, {0x02, 1, -1, -1}, {C, 1, 3, -1}}},
        ParseCase{"OtherControlsKept", u"\x01" "ACTION\x01\t\x07"_s,
                  u"\x01" "ACTION\x01\t\x07"_s, {}}),
    [](const auto& info) { return std::string(info.param.name); });

struct StyleCase {
  const char* name;
  QString input;
  qsizetype position;
  TextStyle style;
};

void PrintTo(const StyleCase& c, std::ostream* os) { *os << c.name; }

class StyleAtTest : public testing::TestWithParam<StyleCase> {};

TEST_P(StyleAtTest, AppliesRunsUpToPosition) {
  const StyleCase& c = GetParam();
  EXPECT_EQ(StyleAt(ParseFormatting(Codes(c.input)), c.position), c.style);
}

INSTANTIATE_TEST_SUITE_P(
    Styles, StyleAtTest,
    testing::Values(
        StyleCase{"LineColour", u"abc"_s, 1, {}},
        StyleCase{"BeforeColour", u"a^C4,2b"_s, 0, {}},
        StyleCase{"AtColour", u"a^C4,2b"_s, 1, {4, 2, false, false, false}},
        StyleCase{"BoldToggles", u"^Ba^Bb"_s, 1, {}},
        StyleCase{"BoldOn", u"^Ba^Bb"_s, 0, {-1, -1, true, false, false}},
        StyleCase{"AllStyles", u"^B^U^R^C3x"_s, 0, {3, -1, true, true, true}},
        StyleCase{"ResetClearsAll", u"^B^U^C3,4x^Oy"_s, 1, {}},
        StyleCase{"ColourKeepsBold", u"^Bx^C5y"_s, 1, {5, -1, true, false, false}}),
    [](const auto& info) { return std::string(info.param.name); });

// Random mixes of codes, digits and commas: the walk ends, the runs are in order and
// inside the text, and stripping agrees with parsing.
TEST(FormattedTextHostile, RandomCodesStayConsistent) {
  const char16_t alphabet[] = {0x02, 0x03, 0x0f, 0x16, 0x1f, u'1', u'9', u',', u'a',
                               0x00, 0x01, 0xd800, 0xdc00};
  QRandomGenerator random(42);
  QString text;
  for (int i = 0; i < 100000; ++i)
    text.append(QChar(alphabet[random.bounded(int(std::size(alphabet)))]));
  const ParsedLine parsed = ParseFormatting(text);
  EXPECT_EQ(parsed.text, StripFormatting(text));
  ASSERT_FALSE(parsed.runs.isEmpty());
  EXPECT_EQ(parsed.runs.front(), kImplicit);
  for (qsizetype i = 1; i < parsed.runs.size(); ++i) {
    const FormatRun& run = parsed.runs[i];
    ASSERT_GE(run.position, parsed.runs[i - 1].position);
    ASSERT_LE(run.position, parsed.text.size());
    ASSERT_TRUE(run.foreground >= -1 && run.foreground <= 15);
    ASSERT_TRUE(run.background >= -1 && run.background <= 15);
  }
}

TEST(FormattedTextHostile, AllControlCharacters) {
  QString text;
  for (char16_t c = 0; c < 0x20; ++c) text.append(QChar(c));
  QString expected;
  for (char16_t c = 0; c < 0x20; ++c) {
    if (c != 0x02 && c != 0x03 && c != 0x0f && c != 0x16 && c != 0x1f)
      expected.append(QChar(c));
  }
  EXPECT_EQ(StripFormatting(text), expected);
  EXPECT_EQ(ParseFormatting(text).runs.size(), 6);
}

}  // namespace
