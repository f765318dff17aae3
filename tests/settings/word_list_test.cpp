#include "settings/settings_store.h"
#include "settings/word_list.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(WordList, MatchFindsWholeBlankEndedWordsIgnoringCase) {
  const std::tuple<const char16_t*, const char16_t*, int> cases[] = {
      {u"Alice", u"alice ", 0},   {u"ALICE", u"bob alice ", 4}, {u"ali", u"alice ", -1},
      {u"alice2", u"alice ", -1}, {u"alice", u"alice", -1},  // the last word needs its blank
      {u"", u"a  b ", 2},         {u"ÉTÉ", u"x été ", 2},
  };
  for (const auto& [word, list, at] : cases) EXPECT_EQ(MatchWord(word, list), at) << at;
}

// Adding appends once, turns ignoring on, and stops short of 2000 characters; removing
// takes the first equal word and its blank; a list whose switch is off matches nothing.
TEST(WordList, AddRemoveAndContainsKeepTheListText) {
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  QString list;
  store.SetDword(u"en_ignore", 0);
  for (auto word : {u"bob", u"BOB", u"carol"}) ListAdd(store, word, u"ignore");
  EXPECT_TRUE(store.GetString(u"ignore", list, kWordListUnits));
  EXPECT_EQ(list, u"bob carol "_s);
  EXPECT_EQ(ListContains(store, u"Carol", u"en_ignore", u"ignore"), 4);
  store.SetDword(u"en_ignore", 0);
  EXPECT_EQ(ListContains(store, u"carol", u"en_ignore", u"ignore"), -1);
  EXPECT_EQ(ListContains(store, u"carol", u"", u"ignore"), 4);
  ListRemove(store, u"BOB", u"ignore");
  ListRemove(store, u"bo", u"ignore");
  EXPECT_TRUE(store.GetString(u"ignore", list, kWordListUnits));
  EXPECT_EQ(list, u"carol "_s);

  const QString roomy = QString(1992, u'x') + u' ';
  store.SetString(u"hlights", roomy, kWordListUnits);
  ListAdd(store, u"abcdef", u"hlights");
  ListAdd(store, u"abcde", u"hlights");
  EXPECT_TRUE(store.GetString(u"hlights", list, kWordListUnits));
  EXPECT_EQ(list, roomy + u"abcde "_s);
}

}  // namespace
