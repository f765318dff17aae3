// The pop-up's decisions without a widget: which word, where it starts, whether the
// pop-up shows, keeps or closes, what a pick leaves in the field; and Tab's nicks.

#include "settings/settings_store.h"
#include "views/nick_list.h"
#include "whispers/nick_completion.h"
#include "whispers/whisper_dictionary.h"
#include "whispers/whisper_refresh.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct RefreshCase {
  const char* name;
  QString text;
  qsizetype caret;
  QStringList nicks;
  WhisperStep step;
  qsizetype start;
  QStringList rows;  // nicks marked with a leading "@"
};

class RefreshTest : public ::testing::TestWithParam<RefreshCase> {
 protected:
  RefreshTest() { dictionary.EnsureDictionary(false); }
  QTemporaryDir home;
  SettingsStore settings{home.path()};
  WhisperDictionary dictionary{settings, nullptr};
};

TEST_P(RefreshTest, Decides) {
  const RefreshCase& c = GetParam();
  const WhisperPlan plan = PlanWhisperRefresh(dictionary, c.text, c.caret, 2, c.nicks);
  EXPECT_EQ(plan.step, c.step);
  if (c.step != WhisperStep::Show) return;
  EXPECT_EQ(plan.wordStart, c.start);
  QStringList rows;
  for (const WhisperRow& row : plan.rows) rows << (row.nick ? u"@"_s : QString()) + row.text;
  EXPECT_EQ(rows, c.rows);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RefreshTest,
    ::testing::Values(
        RefreshCase{"CaretAtTheWordsStart", u"hi /"_s, 3, {}, WhisperStep::Show, 3, {u"/part"_s, u"/join"_s}},
        RefreshCase{"WholeWordWithoutRows", u"/join"_s, 5, {}, WhisperStep::Close, 0, {}},
        RefreshCase{"NoEntriesKeepsWhatWasShown", u"/join #x"_s, 8, {}, WhisperStep::Keep, 0, {}},
        // Formatting codes in front of the word are counted back out of the start.
        RefreshCase{"CodesBeforeTheWord", u"\x02hi \x03" "4/"_s, 7, {}, WhisperStep::Show, 6,
                    {u"/part"_s, u"/join"_s}},
        RefreshCase{"NicksAfterWords", u"/"_s, 1, {u"/dev"_s}, WhisperStep::Show, 0,
                    {u"/part"_s, u"/join"_s, u"@/dev"_s}},
        RefreshCase{"NicksWithoutEntries", u"al"_s, 2, {u"alice"_s}, WhisperStep::Show, 0, {u"@alice"_s}},
        RefreshCase{"NicksOfAWordNotInTheTree", u"/zap"_s, 4, {u"/zapper"_s}, WhisperStep::Show, 0,
                    {u"@/zapper"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(WhisperPickTest, ReplacesFromTheWordsStartWithACompletionAndABlank) {
  EXPECT_EQ(TextAfterPick(u"say /jo and more", 4, {u"/join"_s, false}), u"say /join "_s);
  EXPECT_EQ(TextAfterPick(u"al", 0, {u"alice"_s, true}), u"alice: "_s);
  EXPECT_EQ(TextAfterPick(u"hi al", 3, {u"alice"_s, true}), u"hi alice "_s);
  EXPECT_EQ(TextAfterPick(u"x", 0, {QString(300, u'w'), false}), QString(250, u'w') + u' ');
}

TEST(NickListPrefixTest, AlphabeticalWhateverTheRank) {
  NickList list;
  for (QStringView nick : {u"@Alice", u"+alan", u"bob", u"@al", u"+bo", u"1bo", u"carol"}) list.Add(nick);
  EXPECT_EQ(list.StartingWith(u"AL", 2), (QStringList{u"al"_s, u"alan"_s}));
  // The voiced "bo" sorts under the key "1bo" too; only the nick "1bo" begins with "1b".
  EXPECT_EQ(list.StartingWith(u"1b", 10), (QStringList{u"1bo"_s}));
  EXPECT_EQ(list.StartingWith(u"b", 10), (QStringList{u"bo"_s, u"bob"_s}));
}

TEST(NickCompleterTest, TabCompletesRepeatedTabCyclesAndTheLineStartIsAddressed) {
  const QStringList nicks{u"alan"_s, u"alice"_s, u"bob"_s};
  const NickCompleter::NickSource source = [&](QStringView prefix) {
    QStringList found;
    for (const QString& nick : nicks)
      if (nick.startsWith(prefix, Qt::CaseInsensitive)) found << nick;
    return found;
  };
  NickCompleter completer;
  const auto tab = [&](QStringView text, qsizetype caret) {
    const std::optional<CompletedLine> line = completer.Complete(text, caret, source);
    return line ? line->text + u'|' + QString::number(line->caret) : u"none"_s;
  };
  EXPECT_EQ(tab(u"al", 2), u"alan: |6"_s);
  EXPECT_EQ(tab(u"alan: ", 6), u"alice: |7"_s);
  EXPECT_EQ(tab(u"alice: ", 7), u"alan: |6"_s);  // round again after the last
  EXPECT_EQ(tab(u"hi b there", 4), u"hi bob  there|7"_s);  // what follows the caret stays
  EXPECT_EQ(tab(u"hi ", 3), u"none"_s);
  EXPECT_EQ(tab(u"zed", 3), u"none"_s);
  EXPECT_EQ(tab(u"alan: ", 6), u"none"_s);  // a new line after a failed Tab: no cycling on
}

}  // namespace
