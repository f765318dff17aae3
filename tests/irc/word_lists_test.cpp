#include "irc/word_lists.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct IgnoreCase {
  const char* name;
  qint32 enabled;  // -2: "en_ignore" deleted
  QString list;
  QString nick;
  bool ignored;
};

void PrintTo(const IgnoreCase& c, std::ostream* out) { *out << c.name; }

class IsIgnoredTest : public ::testing::TestWithParam<IgnoreCase> {};

TEST_P(IsIgnoredTest, MatchesWholeNicksCaseIgnored) {
  const IgnoreCase& c = GetParam();
  IrcClientFixture f;
  if (c.enabled == -2)
    f.settings.DeleteValue(u"en_ignore");
  else
    f.settings.SetDword(u"en_ignore", c.enabled);
  f.settings.SetString(u"ignore", c.list, 2002);
  EXPECT_EQ(IsIgnored(f.ctx, c.nick), c.ignored);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, IsIgnoredTest,
    ::testing::Values(
        IgnoreCase{"SameCase", 1, u"alice "_s, u"alice"_s, true},
        IgnoreCase{"Capitalised", 1, u"alice "_s, u"Alice"_s, true},
        IgnoreCase{"UpperCase", 1, u"alice "_s, u"ALICE"_s, true},
        IgnoreCase{"LongerNick", 1, u"alice "_s, u"alice2"_s, false},
        IgnoreCase{"ShorterNick", 1, u"alice "_s, u"ali"_s, false},
        IgnoreCase{"SecondWord", 1, u"bob alice "_s, u"alice"_s, true},
        IgnoreCase{"WithoutTrailingBlank", 1, u"alice"_s, u"alice"_s, false},
        IgnoreCase{"LastWordWithoutBlank", 1, u"bob alice"_s, u"alice"_s, false},
        IgnoreCase{"SwitchedOff", 0, u"alice "_s, u"alice"_s, false},
        // Only 0 switches the list off; a missing switch reads as set.
        IgnoreCase{"SwitchMissing", -2, u"alice "_s, u"alice"_s, true},
        IgnoreCase{"EmptyList", 1, u""_s, u"alice"_s, false}),
    [](const auto& info) { return std::string(info.param.name); });

struct HighlightCase {
  const char* name;
  qint32 enabled;  // -2: "en_hlights" deleted
  QString list;
  QString text;
  LineStyle style;  // with Normal as the default
};

void PrintTo(const HighlightCase& c, std::ostream* out) { *out << c.name; }

class HighlightStyleTest : public ::testing::TestWithParam<HighlightCase> {};

TEST_P(HighlightStyleTest, FindsWordsInsideTheText) {
  const HighlightCase& c = GetParam();
  IrcClientFixture f;
  if (c.enabled == -2)
    f.settings.DeleteValue(u"en_hlights");
  else
    f.settings.SetDword(u"en_hlights", c.enabled);
  f.settings.SetString(u"hlights", c.list, 2002);
  EXPECT_EQ(HighlightStyle(f.ctx, c.text, LineStyle::Normal), c.style);
  const QStringList sound{f.settings.HomeDir() + u"/highlight.wav"_s};
  EXPECT_EQ(f.shell.sounds, c.style == LineStyle::Hlight ? sound : QStringList());
}

const QString kLongWord = QString(260, u'a') + u' ';

INSTANTIATE_TEST_SUITE_P(
    Lists, HighlightStyleTest,
    ::testing::Values(
        HighlightCase{"Substring", 1, u"bob "_s, u"hi Bobby"_s, LineStyle::Hlight},
        HighlightCase{"UpperCaseWord", 1, u"BOB "_s, u"hi bob"_s, LineStyle::Hlight},
        HighlightCase{"LaterWord", 1, u"carol bob "_s, u"hi bob"_s, LineStyle::Hlight},
        HighlightCase{"NonAscii", 1, u"\u0141ukasz "_s, u"hej \u0142UKASZ"_s, LineStyle::Hlight},
        HighlightCase{"NoWordInText", 1, u"bob "_s, u"hi there"_s, LineStyle::Normal},
        HighlightCase{"WithoutTrailingBlank", 1, u"bob"_s, u"bob"_s, LineStyle::Normal},
        HighlightCase{"SwitchedOff", 0, u"bob "_s, u"bob"_s, LineStyle::Normal},
        HighlightCase{"SwitchMissing", -2, u"bob "_s, u"bob"_s, LineStyle::Normal},
        HighlightCase{"EmptyWordHighlightsAll", 1, u"x  "_s, u"anything"_s, LineStyle::Hlight},
        HighlightCase{"EmptyWordEmptyText", 1, u" "_s, u""_s, LineStyle::Hlight},
        HighlightCase{"EmptyList", 1, u""_s, u"bob"_s, LineStyle::Normal},
        // Only the first 250 characters of a word count.
        HighlightCase{"LongWordCut", 1, kLongWord, QString(250, u'a'), LineStyle::Hlight},
        HighlightCase{"LongWordCutStillNeeds250", 1, kLongWord, QString(249, u'a'),
                      LineStyle::Normal}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(HighlightStyle, KeepsTheDefaultStyleWithoutAHit) {
  IrcClientFixture f;
  f.settings.SetDword(u"en_hlights", 1);
  f.settings.SetString(u"hlights", u"bob "_s, 2002);
  EXPECT_EQ(HighlightStyle(f.ctx, u"waves", LineStyle::Action), LineStyle::Action);
  EXPECT_EQ(HighlightStyle(f.ctx, u"waves at bob", LineStyle::Action), LineStyle::Hlight);
}

}  // namespace
