#include "views/nick_list.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QStringList Shown(const NickList& list) {
  QStringList out;
  for (int i = 0; i < list.Count(); ++i) out << list.At(i).shown;
  return out;
}

TEST(NickList, OperatorsThenVoicedThenTheRestAlphabetically) {
  NickList list;
  for (const QString& nick : {u"zed"_s, u"+Mia"_s, u"@bob"_s, u"alice"_s, u"@Carol"_s, u"+al"_s,
                              u"Bea"_s})
    EXPECT_TRUE(list.Add(nick));
  EXPECT_EQ(Shown(list), (QStringList{u"@bob"_s, u"@Carol"_s, u"+al"_s, u"+Mia"_s, u"alice"_s,
                                      u"Bea"_s, u"zed"_s}));
  EXPECT_EQ(list.At(0).rank, NickRank::Operator);
  EXPECT_EQ(list.At(0).sortKey, u"0bob"_s);
  EXPECT_EQ(list.At(2).sortKey, u"1al"_s);
  EXPECT_EQ(list.At(4).rank, NickRank::Plain);
}

TEST(NickList, FindIgnoresPrefixAndCaseOnEitherSide) {
  NickList list;
  list.Add(u"@Bob");
  list.Add(u"+alice");
  list.Add(u"carol");
  const std::pair<QString, int> cases[] = {
      {u"bob"_s, 0},  {u"@BOB"_s, 0},   {u"+bob"_s, 0}, {u"Alice"_s, 1},
      {u"@alice"_s, 1}, {u"CAROL"_s, 2}, {u"car"_s, -1}, {u"dave"_s, -1}, {u""_s, -1},
  };
  for (const auto& [nick, position] : cases) EXPECT_EQ(list.Find(nick), position) << nick.toStdString();
  EXPECT_FALSE(list.Add(u"BOB"));  // present with another rank and case
  EXPECT_EQ(list.Count(), 3);
}

TEST(NickList, RenameKeepsTheRankAndResorts) {
  NickList list;
  for (const QString& nick : {u"@op"_s, u"+voice"_s, u"plain"_s, u"mid"_s}) list.Add(nick);
  EXPECT_TRUE(list.Rename(u"op", u"zz"));
  EXPECT_TRUE(list.Rename(u"+VOICE", u"aa"));
  EXPECT_TRUE(list.Rename(u"plain", u"@notop"));  // a prefix on the new nick is not a rank
  EXPECT_FALSE(list.Rename(u"ghost", u"x"));
  EXPECT_EQ(Shown(list), (QStringList{u"@zz"_s, u"+aa"_s, u"mid"_s, u"notop"_s}));
}

TEST(NickList, RemoveAndBurstsKeepTheOrder) {
  NickList list;
  list.Add(u"m");
  for (const QString& nick : {u"z"_s, u"@y"_s, u"b"_s, u"+x"_s, u"b"_s}) list.AddUnchecked(nick);
  EXPECT_EQ(Shown(list), (QStringList{u"@y"_s, u"+x"_s, u"b"_s, u"b"_s, u"m"_s, u"z"_s}));
  EXPECT_TRUE(list.Remove(u"@b"));
  EXPECT_TRUE(list.Remove(u"Y"));
  EXPECT_FALSE(list.Remove(u"q"));
  EXPECT_EQ(Shown(list), (QStringList{u"+x"_s, u"b"_s, u"m"_s, u"z"_s}));
}

TEST(NickList, SetRankMovesTheEntryAndShowsOperatorsWithVoiceAsOperators) {
  NickList list;
  for (const QString& nick : {u"amy"_s, u"+bob"_s, u"@cat"_s}) list.Add(nick);
  EXPECT_TRUE(list.SetRank(u"amy", NickRank::OperatorVoiced));
  EXPECT_EQ(Shown(list), (QStringList{u"@amy"_s, u"@cat"_s, u"+bob"_s}));
  EXPECT_EQ(list.Find(u"@AMY"), 0);
  EXPECT_TRUE(list.SetRank(u"amy", NickRank::Voiced));  // op taken, voice stays
  EXPECT_TRUE(list.SetRank(u"cat", NickRank::Plain));
  EXPECT_FALSE(list.SetRank(u"dan", NickRank::Voiced));
  EXPECT_EQ(Shown(list), (QStringList{u"+amy"_s, u"+bob"_s, u"cat"_s}));
  EXPECT_EQ(list.At(0).rank, NickRank::Voiced);
}

}  // namespace

namespace {

// Found by fuzzing: the voiced "bo" and the plain "1bo" share the sort key "1bo".
TEST(NickList, CollidingSortKeysStillFindTheRightEntry) {
  NickList list;
  list.AddUnchecked(u"1bo");
  list.AddUnchecked(u"+bo");
  EXPECT_EQ(list.At(list.Find(u"bo")).shown, u"+bo"_s);
  EXPECT_EQ(list.At(list.Find(u"1bo")).shown, u"1bo"_s);
  EXPECT_TRUE(list.Remove(u"+bo"));
  EXPECT_EQ(Shown(list), QStringList{u"1bo"_s});
  EXPECT_FALSE(list.Remove(u"bo"));
}

// Found by fuzzing: a rename to "@+" left an entry shown "+" that no look-up could find.
TEST(NickList, RenameToPrefixCharactersOnlyRenamesNothing) {
  NickList list;
  list.Add(u"bob");
  list.Add(u"+amy");
  EXPECT_FALSE(list.Rename(u"bob", u"@+"));
  EXPECT_TRUE(list.Rename(u"amy", u"@+ann"));
  EXPECT_EQ(Shown(list), (QStringList{u"+ann"_s, u"bob"_s}));
  EXPECT_EQ(list.Find(u"ann"), 0);
}

// Found by fuzzing: names "@+dave" (every prefix, as multi-prefix servers send) and then
// "-o" left an entry shown "+dave" with no voice that no look-up could find.
TEST(NickList, EveryPrefixOfANamesEntryCountsAndTheEntryStaysFindable) {
  NickList list;
  list.AddUnchecked(u"@+dave");
  list.AddUnchecked(u"+@erin");
  list.AddUnchecked(u"carl");
  EXPECT_EQ(Shown(list), (QStringList{u"@dave"_s, u"@erin"_s, u"carl"_s}));
  EXPECT_EQ(list.At(list.Find(u"@+dave")).rank, NickRank::OperatorVoiced);
  EXPECT_TRUE(list.SetRank(u"dave", NickRank::Voiced));
  EXPECT_EQ(Shown(list), (QStringList{u"@erin"_s, u"+dave"_s, u"carl"_s}));
  EXPECT_TRUE(list.SetRank(u"+dave", NickRank::Plain));
  for (int i = 0; i < list.Count(); ++i) EXPECT_EQ(list.Find(list.At(i).shown), i) << i;
}

}  // namespace
