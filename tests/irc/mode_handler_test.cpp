#include "irc/mode_handler.h"
#include "irc/registration.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

void SetUpChannel(IrcClientFixture& f, quint32 options, const QStringList& names) {
  f.SetOptions(options);
  for (const QString& event : {u"deop"_s, u"voice"_s, u"devoice"_s})
    f.settings.SetString(event, event + u".wav"_s, 250, SettingsKey::Sounds);
  f.ctx.session.currentNick = u"me"_s;
  f.ctx.tabs.OpenTab(u"#x", TabKind::Channel);
  for (const QString& nick : names) f.ctx.tabs.AddNickUnchecked(u"#x", nick);
}

void Feed(IrcClientFixture& f, const QString& line) { f.Receive(line); }

// "shown:rank" of each entry of #x, in list order.
QStringList Entries(IrcClientFixture& f) {
  QStringList out;
  const NickList* list = f.ctx.tabs.ChannelNickList(u"#x");
  for (int i = 0; list && i < list->Count(); ++i)
    out << list->At(i).shown + u':' + QString::number(static_cast<int>(list->At(i).rank));
  return out;
}

// "tab | text" of every line; each must be in the Mode colour.
QStringList Shown(const IrcClientFixture& f) {
  QStringList out;
  for (int position = 0; position < f.ctx.tabs.Count(); ++position) {
    const ConversationTab& tab = *f.ctx.tabs.At(position);
    for (qsizetype i = 0; i < tab.lines->LineCount(); ++i) {
      EXPECT_EQ(tab.lines->Line(i).colour, f.ctx.Colour(LineStyle::Mode));
      out << tab.name + u" | "_s + tab.lines->Line(i).text;
    }
  }
  return out;
}

const QStringList kNames{u"a"_s, u"+bob"_s, u"alice"_s, u"@op"_s, u"me"_s};
const QStringList kStartEntries{u"@op:2"_s, u"+bob:1"_s, u"a:0"_s, u"alice:0"_s, u"me:0"_s};

struct ModeCase {
  const char* name;
  quint32 options = 0;
  QStringList input = {};
  QStringList shown = {};
  QStringList entries = kStartEntries;
  QStringList sounds = {};
};

void PrintTo(const ModeCase& c, std::ostream* out) { *out << c.name; }

class ModeLineTest : public ::testing::TestWithParam<ModeCase> {};

TEST_P(ModeLineTest, ShowsTheLineAndAppliesRanks) {
  const ModeCase& c = GetParam();
  IrcClientFixture f;
  SetUpChannel(f, c.options, kNames);
  for (const QString& line : c.input) Feed(f, line);
  EXPECT_EQ(Shown(f), c.shown);
  EXPECT_EQ(Entries(f), c.entries);
  EXPECT_EQ(f.SoundEvents(), c.sounds);
}

const ModeCase kModeCases[] = {
    {.name = "OpAndVoiceShowsOperatorOnly",
     .input = {u":op!o@h MODE #x +ov a a"_s},
     .shown = {u"#x | * op sets mode: +ov a a"_s},
     .entries = {u"@a:3"_s, u"@op:2"_s, u"+bob:1"_s, u"alice:0"_s, u"me:0"_s},
     .sounds = {u"op"_s, u"voice"_s}},
    {.name = "DeopOfOperatorWithVoiceLeavesVoice",
     .input = {u":op!o@h MODE #x +ov a a"_s, u":op!o@h MODE #X -o a"_s},
     .shown = {u"#x | * op sets mode: +ov a a"_s, u"#x | * op sets mode: -o a"_s},
     .entries = {u"@op:2"_s, u"+a:1"_s, u"+bob:1"_s, u"alice:0"_s, u"me:0"_s},
     .sounds = {u"op"_s, u"voice"_s, u"deop"_s}},
    {.name = "SignsSwitchAndBanMasksAreSkipped",
     .input = {u":op!o@h MODE #x +o-v+b alice bob *!*@x"_s},
     .shown = {u"#x | * op sets mode: +o-v+b alice bob *!*@x"_s},
     .entries = {u"@alice:2"_s, u"@op:2"_s, u"a:0"_s, u"bob:0"_s, u"me:0"_s},
     .sounds = {u"op"_s, u"devoice"_s}},
    {.name = "KeyAndLimitTakeArguments",
     .input = {u":op!o@h MODE #x +lk-o 10 secret op"_s},
     .shown = {u"#x | * op sets mode: +lk-o 10 secret op"_s},
     .entries = {u"+bob:1"_s, u"a:0"_s, u"alice:0"_s, u"me:0"_s, u"op:0"_s},
     .sounds = {u"deop"_s}},
    // The walk gives "l" an argument whatever its sign, so the nick goes to the limit.
    {.name = "RemovedLimitStillTakesAnArgument",
     .input = {u":op!o@h MODE #x -l+o a"_s},
     .shown = {u"#x | * op sets mode: -l+o a"_s}},
    {.name = "OtherLettersTakeNoArgument",
     .input = {u":op!o@h MODE #x +ntsv a"_s},
     .shown = {u"#x | * op sets mode: +ntsv a"_s},
     .entries = {u"@op:2"_s, u"+a:1"_s, u"+bob:1"_s, u"alice:0"_s, u"me:0"_s},
     .sounds = {u"voice"_s}},
    {.name = "NickMatchedWithoutCaseKeepsItsSpelling",
     .input = {u":op!o@h MODE #x +o A"_s},
     .shown = {u"#x | * op sets mode: +o A"_s},
     .entries = {u"@a:2"_s, u"@op:2"_s, u"+bob:1"_s, u"alice:0"_s, u"me:0"_s},
     .sounds = {u"op"_s}},
    {.name = "TrailingParameterArgument",
     .input = {u":op!o@h MODE #x +v :alice"_s},
     .shown = {u"#x | * op sets mode: +v :alice"_s},
     .entries = {u"@op:2"_s, u"+alice:1"_s, u"+bob:1"_s, u"a:0"_s, u"me:0"_s},
     .sounds = {u"voice"_s}},
    {.name = "LineNamesTheSetterWithoutAddress",
     .options = kOptShowAddresses,
     .input = {u":op!o@h MODE #x -v bob"_s},
     .shown = {u"#x | * op sets mode: -v bob"_s},
     .entries = {u"@op:2"_s, u"a:0"_s, u"alice:0"_s, u"bob:0"_s, u"me:0"_s},
     .sounds = {u"devoice"_s}},
    {.name = "UserModeGoesToStatus",
     .input = {u":me MODE me :+i"_s, u":ME!u@h MODE me +iw"_s, u":irc.test MODE me :+x"_s},
     .shown = {u"Status | * me sets mode: +i"_s, u"Status | * ME sets mode: +iw"_s,
               u"Status | * irc.test sets mode: +x"_s}},
    {.name = "UnlistedNickOrChannelChangesNothing",
     .input = {u":op MODE #x +o zed"_s, u":op MODE #z +o a"_s},
     .shown = {u"Status | * op sets mode: +o a"_s, u"#x | * op sets mode: +o zed"_s}},
    {.name = "MissingFieldsAndArguments",
     .input = {u"MODE"_s, u":op MODE"_s, u":op MODE #x"_s, u":op MODE #x +o"_s,
               u":op MODE #x +oo a"_s, u":op MODE #x +v  bob"_s, u":op MODE #x - a"_s},
     .shown = {u"Status | * irc.test sets mode: "_s, u"Status | * op sets mode: "_s,
               u"#x | * op sets mode: "_s, u"#x | * op sets mode: +o"_s,
               u"#x | * op sets mode: +oo a"_s, u"#x | * op sets mode: +v  bob"_s,
               u"#x | * op sets mode: - a"_s},
     .entries = {u"@a:2"_s, u"@op:2"_s, u"+bob:1"_s, u"alice:0"_s, u"me:0"_s},
     .sounds = {u"op"_s}},
};

INSTANTIATE_TEST_SUITE_P(Lines, ModeLineTest, ::testing::ValuesIn(kModeCases),
                         [](const auto& info) { return std::string(info.param.name); });

struct RankCase {
  const char* name;
  QStringList names;
  std::vector<std::pair<QString, int>> changes;
  QStringList entries;
  QStringList sounds;
};

void PrintTo(const RankCase& c, std::ostream* out) { *out << c.name; }

class SetNickModeTest : public ::testing::TestWithParam<RankCase> {};

TEST_P(SetNickModeTest, ChangesOneBitAndResorts) {
  const RankCase& c = GetParam();
  IrcClientFixture f;
  SetUpChannel(f, 0, c.names);
  int listChanges = 0;
  QObject::connect(&f.ctx.tabs, &TabBar::nickListChanged, [&] { ++listChanges; });
  for (const auto& [nick, change] : c.changes) SetNickMode(f.ctx, u"#x", nick, change);
  EXPECT_EQ(Entries(f), c.entries);
  EXPECT_EQ(f.SoundEvents(), c.sounds);
  EXPECT_EQ(listChanges, c.sounds.size());  // the view hears of every change made
}

const RankCase kRankCases[] = {
    {"GiveVoiceToOperator", {u"@c"_s}, {{u"c"_s, kGiveVoice}}, {u"@c:3"_s}, {u"voice"_s}},
    {"TakeVoiceFromOperatorWithVoice", {u"@c"_s, u"+b"_s},
     {{u"c"_s, kGiveVoice}, {u"c"_s, kTakeVoice}}, {u"@c:2"_s, u"+b:1"_s},
     {u"voice"_s, u"devoice"_s}},
    {"TakeVoice", {u"+c"_s, u"b"_s}, {{u"c"_s, kTakeVoice}}, {u"b:0"_s, u"c:0"_s}, {u"devoice"_s}},
    // Taking what is not there still plays the sound: the server said it happened.
    {"TakeOperatorFromPlain", {u"c"_s}, {{u"c"_s, kTakeOperator}}, {u"c:0"_s}, {u"deop"_s}},
    {"UnknownChangesAndNicksDoNothing", {u"c"_s},
     {{u"c"_s, 0}, {u"c"_s, 3}, {u"c"_s, -3}, {u"zed"_s, kGiveOperator}, {QString(), kGiveVoice}},
     {u"c:0"_s}, {}},
};

INSTANTIATE_TEST_SUITE_P(Ranks, SetNickModeTest, ::testing::ValuesIn(kRankCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
