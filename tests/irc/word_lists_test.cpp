// The ignore and highlight lists as the options store them: blank-ended words, matched
// without regard to case, each switched by its own setting.

#include "irc/word_lists.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(WordLists, IgnoreWholeNicksHighlightWordsAnywhere) {
  constexpr qint32 kMissing = -2;  // the switch deleted
  const QString longWord = QString(260, u'a') + u' ';
  const struct {
    qint32 enabled;
    QString list, text;  // the text is the nick for the ignore list, a line for the highlight list
    bool ignored, highlighted;
  } cases[] = {
      {1, u"bob alice "_s, u"ALICE"_s, true, true},
      {1, u"bob alice"_s, u"alice"_s, false, false},  // the last word lacks its blank
      {1, u"\u0141ukasz "_s, u"hej \u0142UKASZ"_s, false, true},
      {1, u"x lo "_s, u"hello"_s, false, true},
      {1, u"x  "_s, u""_s, true, true},  // an empty word
      {0, u"bob "_s, u"bob"_s, false, false},
      {kMissing, u"bob "_s, u"bob"_s, true, false},  // only the ignore list reads a missing switch as on
      {1, longWord, QString(250, u'a'), false, true},  // a highlight word counts up to 250 units
      {1, longWord, QString(249, u'a'), false, false},
  };
  for (const auto& c : cases) {
    IrcClientFixture f;
    for (const auto& [on, list] : {std::pair{u"en_ignore"_s, u"ignore"_s}, std::pair{u"en_hlights"_s, u"hlights"_s}}) {
      if (c.enabled == kMissing)
        f.settings.DeleteValue(on);
      else
        f.settings.SetDword(on, c.enabled);
      f.settings.SetString(list, c.list, 2002);
    }
    EXPECT_EQ(IsIgnored(f.ctx, c.text), c.ignored) << c.list.toStdString() << " / " << c.text.toStdString();
    EXPECT_EQ(HighlightStyle(f.ctx, c.text, LineStyle::Action), c.highlighted ? LineStyle::Hlight : LineStyle::Action)
        << c.list.toStdString() << " / " << c.text.toStdString();
    EXPECT_EQ(f.SoundEvents(), c.highlighted ? QStringList{u"highlight"_s} : QStringList());
  }
}

// The options dialog may store a new list of the same length: the next test sees it.
TEST(WordLists, FollowEveryChangeOfTheLists) {
  IrcClientFixture f;
  f.SetWordLists(u"alice "_s, u"alice "_s);
  EXPECT_TRUE(IsIgnored(f.ctx, u"alice"));
  EXPECT_EQ(HighlightStyle(f.ctx, u"hi alice", LineStyle::Normal), LineStyle::Hlight);
  f.SetWordLists(u"carol "_s, u"carol "_s);
  EXPECT_FALSE(IsIgnored(f.ctx, u"alice"));
  EXPECT_TRUE(IsIgnored(f.ctx, u"Carol"));
  EXPECT_EQ(HighlightStyle(f.ctx, u"hi alice", LineStyle::Normal), LineStyle::Normal);
  EXPECT_EQ(HighlightStyle(f.ctx, u"CAROLINE", LineStyle::Normal), LineStyle::Hlight);
}

}  // namespace
