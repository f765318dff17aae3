#include "settings/settings_store.h"
#include "settings/word_list.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct MatchCase {
  const char16_t* word;
  const char16_t* list;
  int expected;
};

TEST(MatchWord, FindsWholeBlankEndedWordsIgnoringCase) {
  const MatchCase cases[] = {
      {u"alice", u"alice ", 0},
      {u"Alice", u"alice ", 0},
      {u"ALICE", u"bob alice ", 4},
      {u"alice2", u"alice ", -1},
      {u"ali", u"alice ", -1},
      {u"alice", u"alice", -1},  // the last word without its blank is never seen
      {u"bob", u"alice bob", -1},
      {u"bob", u"alice bob ", 6},
      {u"", u"a  b ", 2},  // two blanks hold an empty word
      {u"x", u"", -1},
      {u"ÉTÉ", u"été ", 0},  // ordinary case folding, beyond ASCII
  };
  for (const MatchCase& c : cases)
    EXPECT_EQ(MatchWord(c.word, c.list), c.expected)
        << QString::fromUtf16(c.word).toStdString() << " in '"
        << QString::fromUtf16(c.list).toStdString() << "'";
}

class WordListStore : public ::testing::Test {
 protected:
  QString List(QStringView name) {
    QString text = u"<unset>"_s;
    store.GetString(name, text, kWordListUnits);
    return text;
  }
  QTemporaryDir dir;
  SettingsStore store{dir.path()};
};

TEST_F(WordListStore, AddAppendsOnceAndTurnsIgnoringOn) {
  store.SetString(u"ignore", u"alice ", 7);
  store.SetDword(u"en_ignore", 0);
  ListAdd(store, u"bob", u"ignore");
  ListAdd(store, u"BOB", u"ignore");
  EXPECT_EQ(List(u"ignore"), u"alice bob "_s);
  EXPECT_EQ(store.GetDword(u"en_ignore"), 1);
}

TEST_F(WordListStore, AddRefusesAWordThatWouldFillTheList) {
  const QString full = QString(1994, u'x') + u' ';  // 1995 characters
  store.SetString(u"hlights", full, kWordListUnits);
  ListAdd(store, u"abcde", u"hlights");
  EXPECT_EQ(List(u"hlights"), full);
  const QString roomy = QString(1992, u'x') + u' ';  // 1993 + 5 + 1 stays below 2000
  store.SetString(u"hlights", roomy, kWordListUnits);
  ListAdd(store, u"abcde", u"hlights");
  EXPECT_EQ(List(u"hlights"), roomy + u"abcde "_s);
}

TEST_F(WordListStore, RemoveTakesTheWordAndItsBlankOnly) {
  struct Case {
    const char16_t* before;
    const char16_t* word;
    const char16_t* after;
  } cases[] = {
      {u"alice bob carol ", u"bob", u"alice carol "},
      {u"alice bob carol ", u"ALICE", u"bob carol "},
      {u"alice bob carol ", u"carol", u"alice bob "},
      {u"alice bob ", u"bo", u"alice bob "},
      {u"bob bob ", u"bob", u"bob "},
  };
  for (const Case& c : cases) {
    store.SetString(u"notify", c.before, kWordListUnits);
    ListRemove(store, c.word, u"notify");
    EXPECT_EQ(List(u"notify"), QString::fromUtf16(c.after));
  }
}

TEST_F(WordListStore, ContainsHonoursTheEnableValue) {
  store.SetString(u"ignore", u"alice ", kWordListUnits);
  store.SetDword(u"en_ignore", 0);
  EXPECT_EQ(ListContains(store, u"alice", u"en_ignore", u"ignore"), -1);
  store.SetDword(u"en_ignore", 1);
  EXPECT_EQ(ListContains(store, u"Alice", u"en_ignore", u"ignore"), 0);
  store.SetDword(u"en_ignore", 0);
  EXPECT_EQ(ListContains(store, u"alice", u"", u"ignore"), 0);
}

}  // namespace
