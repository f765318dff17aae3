// The rules the settings pages write by: the port's number reading, the word lists and
// the Info list's Add. The pages themselves are tried in tests/gui/options_dialog_test.cpp.

#include "settings/option_pages.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct NumberCase {
  const char* name;
  QString text;
  qint32 value;
};

class DecimalPrefixTest : public ::testing::TestWithParam<NumberCase> {};

TEST_P(DecimalPrefixTest, ReadsAsTheDeviceDid) { EXPECT_EQ(DecimalPrefix(GetParam().text), GetParam().value); }

INSTANTIATE_TEST_SUITE_P(
    Port, DecimalPrefixTest,
    ::testing::Values(NumberCase{"plain", u"6113"_s, 6113}, NumberCase{"word", u"ident"_s, 0},
                      NumberCase{"empty", u""_s, 0}, NumberCase{"digitsThenText", u" 12ab"_s, 12},
                      NumberCase{"negative", u"-7"_s, -7}, NumberCase{"plus", u"+8"_s, 8},
                      NumberCase{"tooLarge", u"99999999999"_s, 2147483647},
                      NumberCase{"tooSmall", u"-99999999999"_s, -2147483647 - 1}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(WordListText, EveryEntryEndsInOneBlankAndOnlyWholeEntriesFit) {
  EXPECT_EQ(WordListText({u"alice"_s, u"Bob"_s}), u"alice Bob "_s);
  EXPECT_EQ(WordListEntries(u"alice  Bob "), QStringList({u"alice"_s, u"Bob"_s}));
  const QString nearlyFull(1995, u'x');  // 1996 with its blank: a 4-letter word still fits
  EXPECT_EQ(WordListText({nearlyFull, u"abc"_s}).size(), 2000);
  EXPECT_EQ(WordListText({nearlyFull, u"abcd"_s, u"ef"_s}), nearlyFull + u" "_s);  // the rest is cut whole
}

TEST(AddListEntry, ATextTheListHoldsInAnyCaseIsSelectedNotAdded) {
  QStringList entries{u"alice"_s, u"Bob"_s};
  EXPECT_EQ(AddListEntry(entries, u"BOB"_s), 1);
  EXPECT_EQ(AddListEntry(entries, u" carol "_s), 2);
  EXPECT_EQ(AddListEntry(entries, u"  "_s), -1);
  EXPECT_EQ(entries, QStringList({u"alice"_s, u"Bob"_s, u"carol"_s}));
}

}  // namespace
