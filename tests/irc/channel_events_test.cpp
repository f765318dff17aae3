#include "irc/channel_events.h"
#include "irc/dispatch.h"
#include "irc/mode_handler.h"
#include "irc/registration.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"

#include "support/styled_lines.h"

#include <gtest/gtest.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// The start of every case: "me" is registered and in #x and #y, with a chat open with b.
void SetUpScene(IrcClientFixture& f, quint32 options) {
  f.SetOptions(options);
  f.settings.SetBinary(u"kolory", DistinctColours());
  for (const QString& event : {u"invite"_s, u"deop"_s, u"voice"_s, u"devoice"_s})
    f.settings.SetString(event, event + u".wav"_s, 250, SettingsKey::Sounds);
  f.ctx.session.currentNick = u"me"_s;
  f.ctx.session.connected = true;
  const std::pair<QString, QStringList> channels[] = {
      {u"#x"_s, {u"b"_s, u"@op"_s, u"+v"_s, u"@me"_s}},
      {u"#y"_s, {u"me"_s, u"c"_s, u"b"_s}},
  };
  for (const auto& [channel, names] : channels) {
    f.ctx.tabs.OpenTab(channel, TabKind::Channel);
    for (const QString& nick : names) f.ctx.tabs.AddNickUnchecked(channel, nick);
  }
  f.ctx.tabs.OpenTab(u"b", TabKind::Chat);
  f.ctx.tabs.ActivateTab(0);
}

void Feed(IrcClientFixture& f, const QString& line) { f.Receive(line); }

QStringList Shown(const IrcClientFixture& f) { return AllStyledLines(f, u" | "_s); }

// Tab names in order, the current one marked with "*".
QStringList Tabs(const IrcClientFixture& f) {
  QStringList out;
  for (int position = 0; position < f.ctx.tabs.Count(); ++position)
    out << f.ctx.tabs.At(position)->name + (position == f.ctx.tabs.Current() ? u"*"_s : QString());
  return out;
}

QStringList Nicks(const IrcClientFixture& f) {
  QStringList out;
  for (int position = 0; position < f.ctx.tabs.Count(); ++position) {
    const ConversationTab& tab = *f.ctx.tabs.At(position);
    if (!tab.nickList) continue;
    QString text = tab.name + u':';
    for (int i = 0; i < tab.nickList->Count(); ++i) text += u' ' + tab.nickList->At(i).shown;
    out << text;
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

void PrintTo(const EventCase& c, std::ostream* out) { *out << c.name; }

class ChannelEventsTest : public ::testing::TestWithParam<EventCase> {};

TEST_P(ChannelEventsTest, LinesListsTabsAndReplies) {
  const EventCase& c = GetParam();
  IrcClientFixture f;
  SetUpScene(f, c.options);
  for (const QString& line : c.input) Feed(f, line);
  EXPECT_EQ(Shown(f), c.shown);
  EXPECT_EQ(Nicks(f), c.nicks);
  EXPECT_EQ(Tabs(f), c.tabs);
  EXPECT_EQ(f.SoundEvents(), c.sounds);
  EXPECT_EQ(f.Sent(), c.sent);
  EXPECT_EQ(f.ctx.session.currentNick, c.currentNick);
  EXPECT_EQ(f.ctx.session.connected, c.connected);
  EXPECT_EQ(f.ctx.actionChannel, c.actionChannel);
}

constexpr quint32 kShort = kOptShortJoins;
constexpr quint32 kAddresses = kOptShowAddresses;
constexpr quint32 kRejoin = kOptRejoinAfterKick;

const EventCase kJoinPartCases[] = {
    {.name = "JoinWithColon",
     .input = {u":a!u@h JOIN :#x"_s},
     .shown = {u"#x | * a has joined #x | Join"_s},
     .nicks = {u"#x: @me @op +v a b"_s, u"#y: b c me"_s},
     .sounds = {u"join"_s}},
    {.name = "JoinWithoutColon",
     .input = {u":a!u@h JOIN #X"_s},
     .shown = {u"#x | * a has joined #X | Join"_s},
     .nicks = {u"#x: @me @op +v a b"_s, u"#y: b c me"_s},
     .sounds = {u"join"_s}},
    {.name = "JoinOfAListedNickAddsNoTwin",
     .input = {u":B!u@h JOIN #x"_s},
     .shown = {u"#x | * B has joined #x | Join"_s},
     .sounds = {u"join"_s}},
    {.name = "JoinOfAChannelWithoutTabGoesToStatus",
     .input = {u":a!u@h JOIN #z"_s},
     .shown = {u"Status | * a has joined #z | Join"_s},
     .sounds = {u"join"_s}},
    {.name = "ShortJoinWithAddress",
     .options = kShort | kAddresses,
     .input = {u":a!u@h JOIN :#x"_s},
     .shown = {u"#x | * Joins: a (u@h) | Join"_s},
     .nicks = {u"#x: @me @op +v a b"_s, u"#y: b c me"_s},
     .sounds = {u"join"_s}},
    {.name = "OwnJoinOpensAndFrontsTheTab",
     .options = kShort | kAddresses,
     .input = {u":ME!u@h JOIN :#new"_s},
     .shown = {u"#new | * Now talking in #new | Join"_s},
     .nicks = {u"#x: @me @op +v b"_s, u"#y: b c me"_s, u"#new:"_s},
     .tabs = {u"Status"_s, u"#x"_s, u"#y"_s, u"b"_s, u"#new*"_s},
     .sounds = {u"join"_s},
     .actionChannel = u"#new"_s},
    {.name = "OwnJoinOfAnOpenTabEmptiesItsList",
     .input = {u":me!u@h JOIN #X"_s},
     .shown = {u"#x | * Now talking in #X | Join"_s},
     .nicks = {u"#x:"_s, u"#y: b c me"_s},
     .tabs = {u"Status"_s, u"#x*"_s, u"#y"_s, u"b"_s},
     .sounds = {u"join"_s},
     .actionChannel = u"#X"_s},
    {.name = "PartWithReason",
     .input = {u":b!u@h PART #x :bye now"_s},
     .shown = {u"#x | * b has left #x (bye now) | Part"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: b c me"_s},
     .sounds = {u"part"_s}},
    {.name = "PartWithoutReason",
     .input = {u":b!u@h PART #x"_s},
     .shown = {u"#x | * b has left #x | Part"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: b c me"_s},
     .sounds = {u"part"_s}},
    {.name = "ShortPartWithAddressAndReason",
     .options = kShort | kAddresses,
     .input = {u":V!u@h PART #x :bye"_s},
     .shown = {u"#x | * Parts: V (u@h) (bye) | Part"_s},
     .nicks = {u"#x: @me @op b"_s, u"#y: b c me"_s},
     .sounds = {u"part"_s}},
    {.name = "PartWithColonLedChannel",
     .input = {u":b!u@h PART :#x"_s},
     .shown = {u"#x | * b has left #x | Part"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: b c me"_s},
     .sounds = {u"part"_s}},
    // One parameter, "#x bye": shown split, but no channel has that name.
    {.name = "PartWithColonLedChannelAndReason",
     .input = {u":b!u@h PART :#x bye"_s},
     .shown = {u"Status | * b has left #x (bye) | Part"_s},
     .sounds = {u"part"_s}},
    {.name = "OwnPartClosesTheTabSilently",
     .input = {u":me!u@h PART #X :bye"_s},
     .nicks = {u"#y: b c me"_s},
     .tabs = {u"Status*"_s, u"#y"_s, u"b"_s},
     .sounds = {u"part"_s}},
};

INSTANTIATE_TEST_SUITE_P(JoinPart, ChannelEventsTest, ::testing::ValuesIn(kJoinPartCases),
                         [](const auto& info) { return std::string(info.param.name); });

const EventCase kQuitNickCases[] = {
    {.name = "QuitInTwoChannelsSkipsStatusAndChat",
     .input = {u":b!u@h QUIT :gone"_s},
     .shown = {u"#x | * b Quit (gone) | Quit"_s, u"#y | * b Quit (gone) | Quit"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: c me"_s},
     .sounds = {u"quit"_s}},
    {.name = "QuitWithAddress",
     .options = kAddresses,
     .input = {u":C!u@h QUIT :Ping timeout: 240 seconds"_s},
     .shown = {u"#y | * C (u@h) Quit (Ping timeout: 240 seconds) | Quit"_s},
     .nicks = {u"#x: @me @op +v b"_s, u"#y: b me"_s},
     .sounds = {u"quit"_s}},
    {.name = "QuitOfAStrangerShowsNothing",
     .input = {u":zed!u@h QUIT :x"_s},
     .sounds = {u"quit"_s}},
    {.name = "OtherNickRenamesInEveryChannel",
     .input = {u":op!u@h NICK :boss"_s, u":b!u@h NICK bee"_s},
     .shown = {u"#x | op is now known as boss | Nick"_s, u"#x | b is now known as bee | Nick"_s,
               u"#y | b is now known as bee | Nick"_s},
     .nicks = {u"#x: @boss @me +v bee"_s, u"#y: bee c me"_s}},
    {.name = "OwnNick",
     .options = kAddresses,
     .input = {u":Me!u@h NICK :new"_s},
     .shown = {u"Status | Your nick is now new | Nick"_s, u"#x | Me is now known as new | Nick"_s,
               u"#y | Me is now known as new | Nick"_s},
     .nicks = {u"#x: @new @op +v b"_s, u"#y: b c new"_s},
     .currentNick = u"new"_s},
};

INSTANTIATE_TEST_SUITE_P(QuitNick, ChannelEventsTest, ::testing::ValuesIn(kQuitNickCases),
                         [](const auto& info) { return std::string(info.param.name); });

const EventCase kKickTopicInviteErrorCases[] = {
    {.name = "KickOfAnotherShowsTheKickerWithoutAddress",
     .options = kAddresses,
     .input = {u":op!o@h KICK #x b :flooding"_s},
     .shown = {u"#x | b was kicked by op (flooding) | Kick"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: b c me"_s},
     .sounds = {u"kick"_s}},
    {.name = "KickWithoutReasonShowsTheVictim",
     .input = {u":op!o@h KICK #x b"_s},
     .shown = {u"#x | b was kicked by op (b) | Kick"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: b c me"_s},
     .sounds = {u"kick"_s}},
    {.name = "KickOfSelfWithRejoin",
     .options = kRejoin,
     .input = {u":op!o@h KICK #x ME :out"_s},
     .shown = {u"Status | You were kicked by op (out) | Kick"_s},
     .nicks = {u"#y: b c me"_s},
     .tabs = {u"Status*"_s, u"#y"_s, u"b"_s},
     .sounds = {u"kick"_s},
     .sent = "JOIN #x\n"},
    {.name = "KickOfSelfWithoutRejoin",
     .input = {u":op!o@h KICK #x me :out"_s},
     .shown = {u"Status | You were kicked by op (out) | Kick"_s},
     .nicks = {u"#y: b c me"_s},
     .tabs = {u"Status*"_s, u"#y"_s, u"b"_s},
     .sounds = {u"kick"_s}},
    {.name = "RejoinConfirmedReopensTheTab",
     .options = kRejoin,
     .input = {u":op!o@h KICK #x me :out"_s, u":me!u@h JOIN :#x"_s},
     .shown = {u"Status | You were kicked by op (out) | Kick"_s,
               u"#x | * Now talking in #x | Join"_s},
     .nicks = {u"#y: b c me"_s, u"#x:"_s},
     .tabs = {u"Status"_s, u"#y"_s, u"b"_s, u"#x*"_s},
     .sounds = {u"kick"_s, u"join"_s},
     .sent = "JOIN #x\n",
     .actionChannel = u"#x"_s},
    {.name = "Topic",
     .options = kAddresses,
     .input = {u":op!o@h TOPIC #x :it's new"_s, u":op!o@h TOPIC #z :elsewhere"_s},
     .shown = {u"Status | op changes topic to 'elsewhere' | Topic"_s,
               u"#x | op changes topic to 'it's new' | Topic"_s}},
    {.name = "InviteIsShownAndNotFollowed",
     .input = {u":a!u@h INVITE me :#z"_s, u":a!u@h INVITE me #q"_s},
     .shown = {u"Status | a (u@h) invites you to join #z | Invite"_s,
               u"Status | a (u@h) invites you to join #q | Invite"_s},
     .sounds = {u"invite"_s, u"invite"_s}},
    {.name = "ErrorClearsTheConnectedFlag",
     .input = {u"ERROR :Closing Link: me[h] (Quit: bye)"_s},
     .shown = {u"Status | Closing Link: me[h] (Quit: bye) | Info2"_s},
     .connected = false},
};

INSTANTIATE_TEST_SUITE_P(KickTopicInviteError, ChannelEventsTest,
                         ::testing::ValuesIn(kKickTopicInviteErrorCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Missing fields, empty texts and senders without a nick: nothing crashes, no nameless
// tab or list entry appears, and the own nick never becomes empty.
const EventCase kBadInputCases[] = {
    {.name = "JoinWithoutChannelOrNick",
     .input = {u":a!u@h JOIN"_s, u":a!u@h JOIN :"_s, u":!u@h JOIN #x"_s, u": JOIN #x"_s,
               u":me JOIN"_s}},
    {.name = "PartWithoutChannelOrNick",
     .input = {u":b!u@h PART"_s, u":b!u@h PART :"_s, u":!u@h PART #x"_s, u":me PART"_s}},
    {.name = "QuitWithoutReasonOrAddress",
     .options = kAddresses,
     .input = {u":b QUIT"_s, u": QUIT"_s, u"QUIT"_s},
     .shown = {u"#x | * b () Quit () | Quit"_s, u"#y | * b () Quit () | Quit"_s},
     .nicks = {u"#x: @me @op +v"_s, u"#y: c me"_s},
     .sounds = {u"quit"_s, u"quit"_s, u"quit"_s}},
    {.name = "NickWithoutNewNick",
     .input = {u":me!u@h NICK"_s, u":me!u@h NICK :"_s, u":b NICK"_s, u"NICK"_s}},
    {.name = "KickWithoutVictim",
     .options = kRejoin,
     .input = {u":op KICK #x"_s, u":op KICK #x :"_s, u":op KICK"_s, u"KICK"_s}},
    {.name = "KickOfSelfWithoutChannelSendsNoJoin",
     .options = kRejoin,
     .input = {u":op KICK :me"_s},
     .shown = {u"Status | You were kicked by op (me) | Kick"_s},
     .sounds = {u"kick"_s}},
    {.name = "TopicAndInviteWithoutFields",
     .input = {u":op TOPIC"_s, u":op TOPIC #x"_s, u":a INVITE"_s},
     .shown = {u"Status | op changes topic to '' | Topic"_s,
               u"Status | a () invites you to join  | Invite"_s,
               u"#x | op changes topic to '' | Topic"_s},
     .sounds = {u"invite"_s}},
    {.name = "ErrorWithoutText",
     .input = {u"ERROR"_s},
     .shown = {u"Status |  | Info2"_s},
     .connected = false},
};

INSTANTIATE_TEST_SUITE_P(BadInput, ChannelEventsTest, ::testing::ValuesIn(kBadInputCases),
                         [](const auto& info) { return std::string(info.param.name); });

// Before registration the own nick is empty; a nick change from nobody settles it.
TEST(ChannelEvents, NickBeforeRegistrationSettlesTheRequestedNick) {
  IrcClientFixture f;
  f.ctx.session.requestedNick = u"want"_s;
  OnNick(f.ctx, ParseServerLine(u": NICK :got", u"irc.test"_s));
  EXPECT_EQ(f.ctx.session.currentNick, u"got"_s);
  EXPECT_EQ(f.ctx.session.requestedNick, QString());
  EXPECT_EQ(f.StatusLines(), QStringList{u"Your nick is now got"_s});
}

}  // namespace
