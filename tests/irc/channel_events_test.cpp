// JOIN, PART, QUIT, NICK, KICK, TOPIC, INVITE, MODE and ERROR from the server: the lines
// shown, the nick lists, the tabs, the sounds and the replies, after a sequence of lines.

#include "settings/settings_flags.h"

#include "support/styled_lines.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Tab names in order, the current one marked with "*", and each channel's nick list.
QStringList Tabs(const IrcClientFixture& f) {
  QStringList out;
  for (int p = 0; p < f.ctx.tabs.Count(); ++p) out << f.ctx.tabs.At(p)->name + (p == f.ctx.tabs.Current() ? u"*"_s : u""_s);
  return out;
}

QStringList Nicks(const IrcClientFixture& f) {
  QStringList out;
  for (int p = 0; p < f.ctx.tabs.Count(); ++p) {
    if (const NickList* list = f.ctx.tabs.At(p)->nickList.get()) {
      out << f.ctx.tabs.At(p)->name + u':';
      for (int i = 0; i < list->Count(); ++i) out.last() += u' ' + list->At(i).shown;
    }
  }
  return out;
}

const QStringList kStartTabs{u"Status*"_s, u"#x"_s, u"#y"_s, u"b"_s};
const QStringList kStartNicks{u"#x: @me @op +v b"_s, u"#y: b c me"_s};

struct EventCase {
  const char* name;
  quint32 options = 0;
  QStringList input = {};
  QStringList shown = {};
  QStringList nicks = kStartNicks;
  QStringList tabs = kStartTabs;
  QStringList sounds = {};
  QByteArray sent = {};
  QString currentNick = u"me"_s;
  bool connected = true;
  QString actionChannel = {};
};

class ChannelEventsTest : public ::testing::TestWithParam<EventCase> {};

// "me" is registered and in #x and #y, with a chat open with b.
TEST_P(ChannelEventsTest, LinesListsTabsAndReplies) {
  const EventCase& c = GetParam();
  StyledClient f;
  f.SetOptions(c.options);
  for (const QString& event : {u"invite"_s, u"deop"_s, u"voice"_s, u"devoice"_s})
    f.settings.SetString(event, event + u".wav"_s, 250, SettingsKey::Sounds);
  for (const auto& [channel, names] : {std::pair{u"#x"_s, QStringList{u"b"_s, u"@op"_s, u"+v"_s, u"@me"_s}},
                                       std::pair{u"#y"_s, QStringList{u"me"_s, u"c"_s, u"b"_s}}}) {
    f.ctx.tabs.OpenTab(channel, TabKind::Channel);
    for (const QString& nick : names) f.ctx.tabs.AddNickUnchecked(channel, nick);
  }
  f.ctx.tabs.OpenTab(u"b", TabKind::Chat);
  f.ctx.tabs.ActivateTab(0);
  for (const QString& line : c.input) f.Receive(line);
  EXPECT_EQ(f.Shown(), c.shown);
  EXPECT_EQ(Nicks(f), c.nicks);
  EXPECT_EQ(Tabs(f), c.tabs);
  EXPECT_EQ(f.SoundEvents(), c.sounds);
  EXPECT_EQ(f.Sent(), c.sent);
  EXPECT_EQ(f.ctx.session.currentNick, c.currentNick);
  EXPECT_EQ(f.ctx.session.connected, c.connected);
  EXPECT_EQ(f.ctx.actionChannel, c.actionChannel);
}

constexpr quint32 kShort = kOptShortJoins | kOptShowAddresses;
constexpr quint32 kRejoin = kOptRejoinAfterKick;

const EventCase kCases[] = {
    {.name = "Join", .input = {u":a!u@h JOIN :#x"_s, u":B!u@h JOIN #Y"_s, u":a!u@h JOIN #z"_s},
     .shown = {u"Status|* a has joined #z|Join"_s, u"#x|* a has joined #x|Join"_s,
       u"#y|* B has joined #Y|Join"_s},
     .nicks = {u"#x: @me @op +v a b"_s, u"#y: b c me"_s}, .sounds = {u"join"_s, u"join"_s, u"join"_s}},
    {.name = "OwnJoinOpensAndFrontsTheTabShortLines", .options = kShort,
     .input = {u":ME!u@h JOIN :#new"_s, u":a!u@h JOIN :#x"_s, u":V!u@h PART #x :bye"_s},
     .shown = {u"#x|* Joins: a (u@h)|Join"_s, u"#x|* Parts: V (u@h) (bye)|Part"_s, u"#new|* Now talking in #new|Join"_s},
     .nicks = {u"#x: @me @op a b"_s, u"#y: b c me"_s, u"#new:"_s},
     .tabs = {u"Status"_s, u"#x"_s, u"#y"_s, u"b"_s, u"#new*"_s}, .sounds = {u"join"_s, u"join"_s, u"part"_s},
     .actionChannel = u"#new"_s},
    // ":#y bye" is one parameter: shown split, but no channel has that name.
    {.name = "Part", .input = {u":b!u@h PART #x :bye now"_s, u":b!u@h PART :#y"_s, u":c!u@h PART :#y bye"_s},
     .shown = {u"Status|* c has left #y (bye)|Part"_s, u"#x|* b has left #x (bye now)|Part"_s,
       u"#y|* b has left #y|Part"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: c me"_s}, .sounds = {u"part"_s, u"part"_s, u"part"_s}},
    {.name = "OwnPartClosesTheTabSilently", .input = {u":me!u@h PART #X :bye"_s}, .nicks = {u"#y: b c me"_s},
     .tabs = {u"Status*"_s, u"#y"_s, u"b"_s}, .sounds = {u"part"_s}},
    {.name = "QuitInEveryChannelOfTheNick", .input = {u":b!u@h QUIT :gone"_s, u":zed!u@h QUIT :x"_s},
     .shown = {u"#x|* b Quit (gone)|Quit"_s, u"#y|* b Quit (gone)|Quit"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: c me"_s}, .sounds = {u"quit"_s, u"quit"_s}},
    {.name = "OtherNickRenamesInEveryChannel", .input = {u":op!u@h NICK :boss"_s, u":b!u@h NICK bee"_s},
     .shown = {u"#x|op is now known as boss|Nick"_s, u"#x|b is now known as bee|Nick"_s,
       u"#y|b is now known as bee|Nick"_s},
     .nicks = {u"#x: @boss @me +v bee"_s, u"#y: bee c me"_s}},
    {.name = "OwnNick", .options = kOptShowAddresses, .input = {u":Me!u@h NICK :new"_s},
     .shown = {u"Status|Your nick is now new|Nick"_s, u"#x|Me is now known as new|Nick"_s,
       u"#y|Me is now known as new|Nick"_s},
     .nicks = {u"#x: @new @op +v b"_s, u"#y: b c new"_s}, .currentNick = u"new"_s},
    {.name = "KickOfAnother", .options = kOptShowAddresses,
     .input = {u":op!o@h KICK #x b :flooding"_s, u":op!o@h KICK #y b"_s},
     .shown = {u"#x|b was kicked by op (flooding)|Kick"_s, u"#y|b was kicked by op (b)|Kick"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: c me"_s}, .sounds = {u"kick"_s, u"kick"_s}},
    {.name = "KickOfSelfRejoinsAndReopensTheTab", .options = kRejoin,
     .input = {u":op!o@h KICK #x ME :out"_s, u":me!u@h JOIN :#x"_s, u":op KICK :me"_s},
     .shown = {u"Status|You were kicked by op (out)|Kick"_s, u"Status|You were kicked by op (me)|Kick"_s,
       u"#x|* Now talking in #x|Join"_s},
     .nicks = {u"#y: b c me"_s, u"#x:"_s}, .tabs = {u"Status"_s, u"#y"_s, u"b"_s, u"#x*"_s},
     .sounds = {u"kick"_s, u"join"_s, u"kick"_s}, .sent = "JOIN #x\n", .actionChannel = u"#x"_s},
    {.name = "TopicAndInvite",
     .input = {u":op!o@h TOPIC #x :it's new"_s, u":op TOPIC #z"_s, u":a!u@h INVITE me :#z"_s, u":a INVITE"_s},
     .shown = {u"Status|op changes topic to ''|Topic"_s, u"Status|a (u@h) invites you to join #z|Invite"_s,
       u"Status|a () invites you to join |Invite"_s, u"#x|op changes topic to 'it's new'|Topic"_s},
     .sounds = {u"invite"_s, u"invite"_s}},
    {.name = "ErrorClearsTheConnectedFlag", .input = {u"ERROR :Closing Link: me[h] (Quit: bye)"_s, u"ERROR"_s},
     .shown = {u"Status|Closing Link: me[h] (Quit: bye)|Info2"_s, u"Status||Info2"_s}, .connected = false},
    {.name = "ModeOpAndVoice", .input = {u":op!o@h MODE #x +ov b b"_s, u":op!o@h MODE #X -o b"_s},
     .shown = {u"#x|* op sets mode: +ov b b|Mode"_s, u"#x|* op sets mode: -o b|Mode"_s},
     .nicks = {u"#x: @me @op +b +v"_s, u"#y: b c me"_s}, .sounds = {u"op"_s, u"voice"_s, u"deop"_s}},
    {.name = "ModeSignsSwitchAndMasksKeysLimitsTakeArguments",
     .input = {u":op!o@h MODE #x +o-v+b b v *!*@x"_s, u":op MODE #x +lk-o 10 secret op"_s,
       u":op MODE #x -l+o v"_s},
     .shown = {u"#x|* op sets mode: +o-v+b b v *!*@x|Mode"_s, u"#x|* op sets mode: +lk-o 10 secret op|Mode"_s,
       u"#x|* op sets mode: -l+o v|Mode"_s},
     .nicks = {u"#x: @b @me op v"_s, u"#y: b c me"_s}, .sounds = {u"op"_s, u"devoice"_s, u"deop"_s}},
    {.name = "ModeOtherLettersTakeNoArgument", .input = {u":op!o@h MODE #x +ntvo b :V"_s},
     .shown = {u"#x|* op sets mode: +ntvo b :V|Mode"_s}, .nicks = {u"#x: @me @op @v +b"_s, u"#y: b c me"_s},
     .sounds = {u"voice"_s, u"op"_s}},
    {.name = "ModeOfUsOrUnlistedChangesNothing",
     .input = {u":me MODE me :+i"_s, u":op MODE #x +o zed"_s, u":op MODE #z +o b"_s, u":op MODE #x +o"_s},
     .shown = {u"Status|* me sets mode: +i|Mode"_s, u"Status|* op sets mode: +o b|Mode"_s,
               u"#x|* op sets mode: +o zed|Mode"_s, u"#x|* op sets mode: +o|Mode"_s}},
};

INSTANTIATE_TEST_SUITE_P(Lines, ChannelEventsTest, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
