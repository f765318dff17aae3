#include "irc/word_matchers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// The prepared lists must follow every change of the list text, and match exactly what
// the plain word-by-word reading of the list matches.
TEST(WordMatchers, FollowTheListAsItChanges) {
  IgnoreMatcher ignore;
  HighlightMatcher highlight;
  QString list = u"alice bob "_s;
  EXPECT_TRUE(ignore.Contains(list, u"ALICE"));
  EXPECT_FALSE(ignore.Contains(list, u"carol"));
  EXPECT_TRUE(highlight.Occurs(list, u"hi Bobby"));
  list = u"carol "_s;  // a new text: rebuilt
  EXPECT_FALSE(ignore.Contains(list, u"alice"));
  EXPECT_TRUE(ignore.Contains(list, u"Carol"));
  EXPECT_FALSE(highlight.Occurs(list, u"hi Bobby"));
  EXPECT_TRUE(highlight.Occurs(list, u"CAROLINE"));
}

TEST(WordMatchers, HighlightCases) {
  const struct {
    QString list;
    QString text;
    bool occurs;
  } cases[] = {
      {u"bob "_s, u"hi Bobby"_s, true},   {u"bob"_s, u"bob"_s, false},  // no blank: no word
      {u"a  b "_s, u"xyz"_s, true},       // an empty word occurs everywhere
      {u"x "_s, u"box"_s, true},          {u"x "_s, u"bo"_s, false},
      {u"été "_s, u"en ÉTÉ"_s, true},     {u"lo "_s, u"hello"_s, true},
      {u"hello "_s, u"hell"_s, false},    {u""_s, u"anything"_s, false},
      {u"🙂 "_s, u"smile 🙂!"_s, true},
  };
  for (const auto& c : cases) {
    HighlightMatcher matcher;
    EXPECT_EQ(matcher.Occurs(c.list, c.text), c.occurs) << c.list.toStdString() << " in " << c.text.toStdString();
  }
}

}  // namespace
