#include "irc/dispatch.h"
#include "irc/notify_list.h"
#include "irc/numeric_handlers.h"
#include "irc/registration.h"
#include "irc/server_message.h"
#include "settings/settings_flags.h"
#include "views/time_format.h"

#include "support/styled_lines.h"
#include "support/test_app.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

QString Date(qint64 seconds) { return FormatServerTime(seconds); }

// A registered client ("me") with the numeric state beside it, fed as the line assembly
// will feed it once the numeric row is plugged in: registration gate, then the handler.
struct NumericScene {
  NumericScene() {
    f.SetOptions(0);
    f.settings.SetDword(u"DCC", 0);
    f.settings.SetBinary(u"kolory", DistinctColours());
    f.ctx.session.currentNick = u"me"_s;
    f.ctx.session.connected = true;
  }

  void Feed(QStringView lines) {
    for (QStringView line : lines.split(u'\n', Qt::SkipEmptyParts)) {
      const ServerMessage message = ParseServerLine(line, u"irc.test"_s);
      if (!message.target.isEmpty() && message.target != u"*") RegistrationGate(f.ctx, message);
      if (CommandNumber(message.command) > 0)
        HandleNumeric(f.ctx, state, message);
      else
        DispatchServerMessage(f.ctx, message);
    }
  }

  // Every line of every tab as "tab | text | style".
  QStringList Shown() const { return AllStyledLines(f, u" | "_s); }

  QStringList Nicks(QStringView channel) {
    QStringList out;
    if (const NickList* list = f.ctx.tabs.ChannelNickList(channel))
      for (int i = 0; i < list->Count(); ++i) out << list->At(i).shown;
    return out;
  }

  IrcClientFixture f;
  NotifyList notify;
  BanList banList;
  NumericState state{notify, banList, {}};
};

// ---- What each reply shows, and where --------------------------------------------------

struct ShownCase {
  const char* name;
  QString lines;
  QStringList shown;
  quint32 options = 0;
  QStringList channelTabs = {};
};

class NumericShownTest : public ::testing::TestWithParam<ShownCase> {};

TEST_P(NumericShownTest, ShowsExactLines) {
  const ShownCase& c = GetParam();
  NumericScene s;
  s.f.SetOptions(c.options);
  for (const QString& channel : c.channelTabs) s.f.ctx.tabs.OpenTab(channel, TabKind::Channel);
  s.Feed(c.lines);
  EXPECT_EQ(s.Shown(), c.shown);
  EXPECT_EQ(s.f.Sent(), QByteArray());
}

const QStringList kRoom = {u"#room"_s};

INSTANTIATE_TEST_SUITE_P(
    Replies, NumericShownTest,
    ::testing::Values(
        ShownCase{"Away",
                  u":irc.test 301 me alice :gone fishing"_s,
                  {u"Status | alice is away: gone fishing | Normal"_s}},
        ShownCase{"AwayWithoutSeparator", u":irc.test 301 me alice"_s, {}},
        ShownCase{"WhoisUserGetsAnAt",
                  u":irc.test 311 me alice ~a somehost * :Alice A"_s,
                  {u"Status | alice ~a@somehost * :Alice A | Whois"_s}},
        ShownCase{"WhoisUserWithoutHost",
                  u":irc.test 311 me alice ~a"_s,
                  {u"Status | alice ~a | Whois"_s}},
        ShownCase{
            "WhoisLines",
            u":irc.test 312 me alice irc.test :Test\n:irc.test 317 me alice 5 1200000000 :idle\n"
            u":irc.test 319 me alice :@#room\n:irc.test 338 me alice 1.2.3.4 :actually"_s,
            {u"Status | alice irc.test :Test | Whois"_s,
             u"Status | alice 5 1200000000 :idle | Whois"_s, u"Status | alice :@#room | Whois"_s,
             u"Status | alice 1.2.3.4 :actually | Whois"_s}},
        ShownCase{"EndsOfLists",
                  u":irc.test 315 me #room :End of WHO list\n:irc.test 369 me alice End\n"
                  u":irc.test 318 me alice :End of WHOIS list\n:irc.test 315 me alone"_s,
                  {u"Status | End of WHO list | Whois"_s, u"Status | End | Whois"_s,
                   u"Status | End of WHOIS list | Whois"_s, u"Status | alone | Whois"_s}},
        ShownCase{"ChannelCreated",
                  u":irc.test 329 me #room 1200000000"_s,
                  {u"Status | #room created on "_s + Date(1200000000) + u" | Normal"_s},
                  0,
                  kRoom},
        ShownCase{"ChannelCreatedHugeCount",
                  u":irc.test 329 me #room 99999999999999999999999999"_s,
                  {u"Status | #room created on "_s + Date(std::numeric_limits<qint64>::max()) +
                   u" | Normal"_s}},
        ShownCase{"ChannelCreatedWithoutNumber",
                  u":irc.test 329 me #room abc\n:irc.test 329 me #room\n:irc.test 329 me #room -"_s,
                  {}},
        ShownCase{"NoTopicInTab",
                  u":irc.test 331 me #room :No topic is set"_s,
                  {u"#room | No topic is set | Topic"_s},
                  0,
                  kRoom},
        ShownCase{"NoTopicWithoutTab",
                  u":irc.test 331 me #room :No topic is set"_s,
                  {u"Status | #room :No topic is set | Topic"_s}},
        ShownCase{"TopicInTab",
                  u":irc.test 332 me #ROOM :hello there"_s,
                  {u"#room | Topic is 'hello there' | Topic"_s},
                  0,
                  kRoom},
        ShownCase{"TopicWithoutTab",
                  u":irc.test 332 me #room :hello"_s,
                  {u"Status | #room hello | Topic"_s},
                  0,
                  {u"#other"_s}},
        ShownCase{"TopicWithoutSeparator", u":irc.test 332 me #room hello"_s, {}, 0, kRoom},
        ShownCase{"TopicSetByInTab",
                  u":irc.test 333 me #room alice 1200000000"_s,
                  {u"#room | Set by alice on "_s + Date(1200000000) + u" | Topic"_s},
                  0,
                  kRoom},
        ShownCase{"TopicSetByWithoutTabRepeatedBlanks",
                  u":irc.test 333 me #room  alice   1200000000"_s,
                  {u"Status | topic set by alice on "_s + Date(1200000000) + u" | Topic"_s}},
        ShownCase{
            "TopicSetByWithoutCount",
            u":irc.test 333 me #room alice\n:irc.test 333 me #room alice soon\n:irc.test 333 me #room"_s,
            {},
            0,
            kRoom},
        ShownCase{"Inviting",
                  u":irc.test 341 me bob #room"_s,
                  {u"Status | bob has been invited to  #room | Normal"_s}},
        ShownCase{"InvitingWithoutChannel", u":irc.test 341 me bob"_s, {}},
        ShownCase{
            "BanEntryShown",
            u":irc.test 367 me #room *!*@bad alice 1200000000"_s,
            {u"Status | #room *!*@bad set by alice ("_s + Date(1200000000) + u") | Normal"_s}},
        ShownCase{"BanEntryWithoutCount",
                  u":irc.test 367 me #room *!*@bad alice"_s,
                  {u"Status | #room *!*@bad set by alice | Normal"_s}},
        ShownCase{"BanEntryWithoutSetter", u":irc.test 367 me #room *!*@bad"_s, {}},
        ShownCase{"MotdShown",
                  u":irc.test 375 me :- irc.test Message of the day -\n:irc.test 372 me :- hi\n"
                  u":irc.test 376 me :End of MOTD command"_s,
                  {u"Status | - irc.test Message of the day - | Normal"_s,
                   u"Status | - hi | Normal"_s, u"Status | End of MOTD command | Normal"_s}},
        ShownCase{"MotdSkipped",
                  u":irc.test 375 me :- irc.test Message of the day -\n:irc.test 372 me :- hi\n"
                  u":irc.test 376 me :End of MOTD command"_s,
                  {},
                  kOptSkipMotd},
        ShownCase{"NoMotdShownEvenWhenSkipping",
                  u":irc.test 422 me :MOTD File is missing"_s,
                  {u"Status | MOTD File is missing | Normal"_s},
                  kOptSkipMotd},
        ShownCase{
            "OtherNumericsRaw",
            u":irc.test 005 me CHANTYPES=# :are supported\n:irc.test 401 me zed :No such nick"_s,
            {u"Status | CHANTYPES=# :are supported | Normal"_s,
             u"Status | zed :No such nick | Normal"_s}},
        ShownCase{"NickInUseOnceRegisteredOnlyShown",
                  u":irc.test 433 me other :Nickname is already in use"_s,
                  {u"Status | other :Nickname is already in use | Normal"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(NumericReplies, InvitingPlaysTheInviteSound) {
  NumericScene s;
  s.f.settings.SetString(u"invite", u"inv.wav", 250, SettingsKey::Sounds);
  s.Feed(u":irc.test 341 me bob #room");
  EXPECT_EQ(s.f.shell.sounds, QStringList{s.f.settings.HomeDir() + u"/inv.wav"_s});
}

TEST(NumericReplies, WelcomeWithAnotherNickIsTheServersNick) {
  NumericScene s;
  s.f.ctx.session.currentNick.clear();
  s.f.ctx.session.requestedNick = u"me"_s;
  s.Feed(u":irc.test 001 me2 :Welcome to the network me2");
  EXPECT_EQ(s.f.ctx.session.currentNick, u"me2"_s);
  EXPECT_EQ(s.f.ctx.session.requestedNick, QString());
  EXPECT_EQ(s.Shown(), QStringList{u"Status | Welcome to the network me2 | Normal"_s});
}

// ---- USERHOST and ISON: whose question was it? -----------------------------------------

struct RequestCase {
  const char* name;
  bool userhostRequested;
  bool isonRequested;
  QString line;
  QStringList shown;
  QString localHost;  // the "LocalHost" setting afterwards
  bool userhostStillRequested = false;
};

class RequestedReplyTest : public ::testing::TestWithParam<RequestCase> {};

TEST_P(RequestedReplyTest, AnswersTheOneWhoAsked) {
  const RequestCase& c = GetParam();
  NumericScene s;
  s.f.settings.SetString(u"notify", u"alice ", 2002);
  s.notify.Load(s.f.settings);
  s.f.ctx.userhostRequested = c.userhostRequested;
  s.f.ctx.isonRequested = c.isonRequested;
  s.Feed(c.line);
  EXPECT_EQ(s.Shown(), c.shown);
  EXPECT_EQ(s.f.ctx.userhostRequested, c.userhostStillRequested);
  EXPECT_FALSE(s.f.ctx.isonRequested);
  QString localHost;
  s.f.settings.GetString(u"LocalHost", localHost, 250);
  EXPECT_EQ(localHost, c.localHost);
  EXPECT_FALSE(s.notify.Entries().front().online) << "the user's own ISON changes no flag";
}

INSTANTIATE_TEST_SUITE_P(
    Replies, RequestedReplyTest,
    ::testing::Values(
        RequestCase{"UserhostAsked",
                    true,
                    false,
                    u":irc.test 302 me :alice=+~a@192.0.2.7"_s,
                    {u"Status | userhost: alice=+~a@192.0.2.7 | Normal"_s},
                    u"0.0.0.0"_s},
        RequestCase{
            "OwnUserhostWithoutAt", false, false, u":irc.test 302 me :me=+~me"_s, {}, u"0.0.0.0"_s},
        RequestCase{"OwnUserhostNothingBehindAt",
                    false,
                    false,
                    u":irc.test 302 me :me=+~me@"_s,
                    {},
                    u"0.0.0.0"_s},
        RequestCase{"IsonAsked",
                    false,
                    true,
                    u":irc.test 303 me :alice bob"_s,
                    {u"Status | ison: alice bob | Normal"_s},
                    u"0.0.0.0"_s},
        RequestCase{"IsonAskedBothPending",
                    true,
                    true,
                    u":irc.test 303 me :alice"_s,
                    {u"Status | ison: alice | Normal"_s},
                    u"0.0.0.0"_s,
                    true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(NumericReplies, UnrequestedIsonIsTheNotifyAnswer) {
  NumericScene s;
  s.f.settings.SetString(u"notify", u"alice bob ", 2002);
  s.notify.Load(s.f.settings);
  s.Feed(u":irc.test 303 me :Alice\n:irc.test 303 me :\n");
  EXPECT_EQ(s.Shown(), (QStringList{u"Status | * Alice is on IRC | Notify"_s,
                                    u"Status | * Alice has left IRC | Notify"_s}));
}

TEST(NumericReplies, OwnUserhostStoresTheLocalAddressAndNamesTheHost) {
  TestApp();
  NumericScene s;
  s.Feed(u":irc.test 302 me :me=+~me@127.0.0.1");
  QString localHost;
  s.f.settings.GetString(u"LocalHost", localHost, 250);
  EXPECT_EQ(localHost, u"127.0.0.1"_s);
  // The host name is whatever this machine's resolver calls the loopback address.
  ASSERT_TRUE(RunUntil([&] { return !s.Shown().isEmpty(); }));
  const QString line = s.Shown().front();
  EXPECT_TRUE(line.startsWith(u"Status | Local host: "_s)) << line.toStdString();
  EXPECT_TRUE(line.endsWith(u" (127.0.0.1) | Info2"_s)) << line.toStdString();
  EXPECT_EQ(s.f.Sent(), QByteArray());
}

TEST(NumericReplies, LocalHostLineAfterTheContextIsGoneIsDropped) {
  TestApp();
  {
    NumericScene s;
    s.Feed(u":irc.test 302 me :me=+~me@127.0.0.1");
  }
  // The look-up thread answers into an event loop whose context no longer exists.
  RunUntil([] { return false; }, 300);
  SUCCEED();
}

// ---- Names -----------------------------------------------------------------------------

struct NamesCase {
  const char* name;
  QString actionChannel;
  QStringList already;  // in the list before the reply
  QString lines;
  QStringList nicks;
  QString actionChannelAfter;
};

class NamesTest : public ::testing::TestWithParam<NamesCase> {};

TEST_P(NamesTest, FillsOnlyTheJustJoinedChannel) {
  const NamesCase& c = GetParam();
  NumericScene s;
  s.f.ctx.tabs.OpenTab(u"#room", TabKind::Channel);
  s.f.ctx.tabs.OpenTab(u"&local", TabKind::Channel);
  s.f.ctx.actionChannel = c.actionChannel;
  for (const QString& nick : c.already) s.f.ctx.tabs.AddNick(u"#room", nick);
  s.Feed(c.lines);
  EXPECT_EQ(s.Nicks(u"#room") + s.Nicks(u"&local"), c.nicks);
  EXPECT_EQ(s.f.ctx.actionChannel, c.actionChannelAfter);
  // Every names line is shown raw as well.
  const qsizetype replies = c.lines.count(u'\n') + 1;
  EXPECT_EQ(s.f.StatusLines().size(), replies);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, NamesTest,
    ::testing::Values(
        NamesCase{"JoinedChannel",
                  u"#room"_s,
                  {},
                  u":irc.test 353 me = #room :@alice +bob carol"_s,
                  {u"@alice"_s, u"+bob"_s, u"carol"_s},
                  u"#room"_s},
        NamesCase{"ChannelCaseIgnored",
                  u"#ROOM"_s,
                  {},
                  u":irc.test 353 me = #room :carol @alice"_s,
                  {u"@alice"_s, u"carol"_s},
                  u"#ROOM"_s},
        NamesCase{"AnotherChannelOnlyShown",
                  u"#room"_s,
                  {},
                  u":irc.test 353 me = #other :a b"_s,
                  {},
                  u"#room"_s},
        NamesCase{
            "NothingJoined", QString(), {}, u":irc.test 353 me = #room :a b"_s, {}, QString()},
        NamesCase{"SecondReplyAfterEndOnlyShown",
                  u"#room"_s,
                  {},
                  u":irc.test 353 me = #room :a\n:irc.test 366 me #room :End of NAMES list\n"
                  u":irc.test 353 me = #room :b"_s,
                  {u"a"_s},
                  QString()},
        NamesCase{"EndOfAnotherChannelKeepsIt",
                  u"#room"_s,
                  {},
                  u":irc.test 366 me #other :End of NAMES list"_s,
                  {},
                  u"#room"_s},
        NamesCase{"JoinedMeanwhileKept",
                  u"#room"_s,
                  {u"zed"_s},
                  u":irc.test 353 me = #room :dave @carol"_s,
                  {u"@carol"_s, u"dave"_s, u"zed"_s},
                  u"#room"_s},
        NamesCase{"RepeatedBlanks",
                  u"#room"_s,
                  {},
                  u":irc.test 353 me = #room :a  b   c"_s,
                  {u"a"_s, u"b"_s, u"c"_s},
                  u"#room"_s},
        NamesCase{"AmpersandChannel",
                  u"&local"_s,
                  {},
                  u":irc.test 353 me * &local :x y"_s,
                  {u"x"_s, u"y"_s},
                  u"&local"_s},
        NamesCase{"WithoutColonNoNicks",
                  u"#room"_s,
                  {},
                  u":irc.test 353 me = #room a b"_s,
                  {},
                  u"#room"_s},
        NamesCase{"EmptyNames", u"#room"_s, {}, u":irc.test 353 me = #room :"_s, {}, u"#room"_s}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(NumericReplies, FiveHundredNamesInOneReplyAreSorted) {
  NumericScene s;
  s.f.ctx.tabs.OpenTab(u"#big", TabKind::Channel);
  s.f.ctx.actionChannel = u"#big"_s;
  QStringList words, expected;
  for (int i = 499; i >= 0; --i) {
    const QString nick = u"n%1"_s.arg(i, 3, 10, QChar(u'0'));
    words << (i % 100 == 0 ? u'@' + nick : i % 10 == 0 ? u'+' + nick : nick);
  }
  s.Feed(u":irc.test 353 me = #big :"_s + words.join(u' '));
  const QStringList nicks = s.Nicks(u"#big");
  ASSERT_EQ(nicks.size(), 500);
  EXPECT_EQ(nicks.mid(0, 5),
            (QStringList{u"@n000"_s, u"@n100"_s, u"@n200"_s, u"@n300"_s, u"@n400"_s}));
  EXPECT_EQ(nicks[5], u"+n010"_s);
  EXPECT_EQ(nicks[50], u"n001"_s);
  EXPECT_EQ(nicks.last(), u"n499"_s);
}

// ---- The Ban actions of the nick menu ----------------------------------------------------

struct BanCase {
  const char* name;
  QString requestedNick;
  QString pendingKick;
  QString lines;
  QByteArray sent;
  QStringList shown;
};

class PendingBanTest : public ::testing::TestWithParam<BanCase> {};

TEST_P(PendingBanTest, BansTheHostOfTheWhoisReply) {
  const BanCase& c = GetParam();
  NumericScene s;
  s.f.ctx.actionChannel = u"#x"_s;
  s.f.ctx.session.requestedNick = c.requestedNick;
  s.f.ctx.pendingKickLine = c.pendingKick;
  s.Feed(c.lines);
  EXPECT_EQ(s.f.Sent(), c.sent);
  EXPECT_EQ(s.Shown(), c.shown);
  EXPECT_EQ(s.f.ctx.pendingKickLine, QString());
  EXPECT_EQ(s.f.ctx.actionChannel, QString()) << "the end of the whois ends the pending ban";
  EXPECT_EQ(s.f.ctx.session.requestedNick, QString());
}

const QString kBanWhois =
    u":irc.test 311 me bob ~b host.example * :Bob B\n:irc.test 312 me bob irc.test :Test\n"
    u":irc.test 317 me bob 3 1200000000 :idle\n:irc.test 319 me bob :#x\n"
    u":irc.test 318 me bob :End of WHOIS list"_s;

INSTANTIATE_TEST_SUITE_P(
    Replies, PendingBanTest,
    ::testing::Values(
        BanCase{"Ban", u"bob"_s, QString(), kBanWhois, "MODE #x +b *!*@host.example\n", {}},
        BanCase{"BanKick",
                u"bob"_s,
                u"KICK #x bob :behave"_s,
                kBanWhois,
                "MODE #x +b *!*@host.example\nKICK #x bob :behave\n",
                {}},
        BanCase{
            "NickCaseIgnored", u"BOB"_s, QString(), kBanWhois, "MODE #x +b *!*@host.example\n", {}},
        BanCase{"WhoisWithoutHostBansNothing",
                u"bob"_s,
                u"KICK #x bob"_s,
                u":irc.test 311 me bob\n:irc.test 318 me bob :End"_s,
                "KICK #x bob\n",
                {}},
        BanCase{"OtherWhoisMeanwhileShown",
                u"bob"_s,
                QString(),
                u":irc.test 311 me alice ~a h * :A\n:irc.test 318 me alice :End of WHOIS list\n"_s +
                    kBanWhois,
                "MODE #x +b *!*@host.example\n",
                {u"Status | alice ~a@h * :A | Whois"_s, u"Status | End of WHOIS list | Whois"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- Ban lists -------------------------------------------------------------------------

const QString kBanList =
    u":irc.test 367 me #x *!*@one alice 1200000000\n:irc.test 367 me #X *!*@two bob\n"
    u":irc.test 367 me #x *!*@three\n:irc.test 368 me #x :End of channel ban list"_s;

TEST(BanList, RequestedListGoesToTheChooser) {
  NumericScene s;
  s.f.ctx.actionChannel = u"#x"_s;
  std::optional<std::vector<std::pair<QString, QString>>> offered;
  s.state.openBanListChooser = [&](ClientContext& ctx, BanList& list) {
    offered.emplace();
    for (const BanListEntry& entry : list) offered->emplace_back(entry.channel, entry.mask);
    ctx.actionChannel.clear();
    list.clear();
  };
  s.Feed(kBanList);
  ASSERT_TRUE(offered.has_value());
  EXPECT_EQ(*offered,
            (std::vector<std::pair<QString, QString>>{
                {u"#x"_s, u"*!*@one"_s}, {u"#X"_s, u"*!*@two"_s}, {u"#x"_s, u"*!*@three"_s}}));
  EXPECT_EQ(s.Shown(), QStringList());
}

TEST(BanList, EmptyRequestedListStillOpensTheChooser) {
  NumericScene s;
  s.f.ctx.actionChannel = u"#x"_s;
  int opened = 0;
  s.state.openBanListChooser = [&](ClientContext&, BanList& list) {
    opened += list.empty() ? 1 : 100;
  };
  s.Feed(u":irc.test 368 me #x :End of channel ban list");
  EXPECT_EQ(opened, 1);
}

TEST(BanList, WithoutChooserTheEndIsShownAndNothingLingers) {
  NumericScene s;
  s.f.ctx.actionChannel = u"#x"_s;
  s.Feed(kBanList);
  EXPECT_EQ(s.Shown(), QStringList{u"Status | #x :End of channel ban list | Normal"_s});
  EXPECT_TRUE(s.banList.empty());
  EXPECT_EQ(s.f.ctx.actionChannel, QString());
}

TEST(BanList, ListsNobodyAskedForAreShown) {
  for (const auto& [actionChannel, requestedNick] :
       {std::pair{u"#other"_s, QString()}, std::pair{u"#x"_s, u"bob"_s},
        std::pair{QString(), QString()}}) {
    NumericScene s;
    s.f.ctx.actionChannel = actionChannel;
    s.f.ctx.session.requestedNick = requestedNick;
    s.Feed(kBanList);
    EXPECT_EQ(s.Shown(), (QStringList{u"Status | #x *!*@one set by alice ("_s + Date(1200000000) +
                                          u") | Normal"_s,
                                      u"Status | #X *!*@two set by bob | Normal"_s,
                                      u"Status | #x :End of channel ban list | Normal"_s}))
        << actionChannel.toStdString();
    EXPECT_TRUE(s.banList.empty());
  }
}

// ---- The nick fallback -----------------------------------------------------------------

struct FallbackCase {
  const char* name;
  QString alternick;
  QList<std::optional<QString>> answers;  // nullopt: Cancel
  QString lines;
  QByteArray sent;
  int prompts;
  QString requestedNick;
  bool stillConnected;
};

class NickFallbackTest : public ::testing::TestWithParam<FallbackCase> {};

TEST_P(NickFallbackTest, TriesAlternickThenAsks) {
  const FallbackCase& c = GetParam();
  NumericScene s;
  s.f.ctx.session.currentNick.clear();
  s.f.ctx.session.requestedNick = u"me"_s;
  s.f.settings.SetString(u"alternick", c.alternick, 60);
  s.f.shell.textAnswers = c.answers;
  s.Feed(c.lines);
  EXPECT_EQ(s.f.Sent(), c.sent);
  ASSERT_EQ(s.f.shell.prompts.size(), c.prompts);
  for (const FakeShell::Message& prompt : s.f.shell.prompts)
    EXPECT_EQ(prompt, (FakeShell::Message{u"Nickname already in use"_s, u"Enter a new nick:"_s}));
  EXPECT_EQ(s.f.ctx.session.requestedNick, c.requestedNick);
  EXPECT_EQ(s.f.ctx.session.connected, c.stillConnected);
  EXPECT_EQ(s.f.ctx.session.userQuit, !c.stillConnected);
  EXPECT_EQ(s.f.ctx.session.currentNick, QString());
  EXPECT_EQ(s.f.StatusLines().size(), c.lines.count(u'\n') + 1) << "each refusal is shown raw";
}

const QString kInUse = u":irc.test 433 * me :Nickname is already in use"_s;
const QString kAltInUse = u":irc.test 433 * me2 :Nickname is already in use"_s;

INSTANTIATE_TEST_SUITE_P(
    Replies, NickFallbackTest,
    ::testing::Values(
        FallbackCase{"Alternick", u"me2"_s, {}, kInUse, "NICK me2\n", 0, u"me2"_s, true},
        FallbackCase{"ErroneousNickToo",
                     u"me2"_s,
                     {},
                     u":irc.test 432 * me :Erroneous nickname"_s,
                     "NICK me2\n",
                     0,
                     u"me2"_s,
                     true},
        FallbackCase{"AlternickRefusedThenAsked",
                     u"me2"_s,
                     {u"me3"_s},
                     kInUse + u'\n' + kAltInUse,
                     "NICK me2\nNICK me3\n",
                     1,
                     u"me3"_s,
                     true},
        FallbackCase{"AlternickEqualsRefusedNickAsksAtOnce",
                     u"ME"_s,
                     {u"other"_s},
                     kInUse,
                     "NICK other\n",
                     1,
                     u"other"_s,
                     true},
        FallbackCase{"EmptyAlternickAsks",
                     QString(),
                     {u"other"_s},
                     kInUse,
                     "NICK other\n",
                     1,
                     u"other"_s,
                     true},
        FallbackCase{"CancelDisconnects", u"me"_s, {std::nullopt}, kInUse, "", 1, u"me"_s, false},
        FallbackCase{"AskedNickRefusedGoesBackToAlternick",
                     u"me2"_s,
                     {u"me3"_s, std::nullopt},
                     kInUse + u'\n' + kAltInUse + u"\n:irc.test 433 * me3 :in use\n"_s + kAltInUse,
                     "NICK me2\nNICK me3\nNICK me2\n",
                     2,
                     u"me2"_s,
                     false}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- Odd replies ------------------------------------------------------------------------

// Every handled numeric with every shape of broken rest, with and without a pending ban:
// nothing may crash or loop.
TEST(NumericReplies, BrokenRepliesNeverCrash) {
  const QStringList rests = {QString(),
                             u":"_s,
                             u" "_s,
                             u" :"_s,
                             u"x"_s,
                             u"#x"_s,
                             u"#x :"_s,
                             u"= #x"_s,
                             u"= #x :"_s,
                             u"@"_s,
                             u"a=+b@"_s,
                             u"#x x x x x x x x"_s,
                             u"#x 9223372036854775808"_s,
                             u"#x -9223372036854775809"_s};
  const int numbers[] = {1,   301, 302, 303, 311, 312, 315, 317, 318, 319, 329, 331, 332, 333,
                         338, 341, 353, 366, 367, 368, 369, 372, 375, 376, 432, 433, 999};
  for (bool pending : {false, true}) {
    NumericScene s;
    s.f.ctx.tabs.OpenTab(u"#x", TabKind::Channel);
    s.f.settings.SetString(u"notify", u"alice  ", 2002);
    s.notify.Load(s.f.settings);
    s.f.shell.textAnswers = {u"n"_s, u"n"_s, u"n"_s};
    for (int number : numbers) {
      for (const QString& rest : rests) {
        s.f.ctx.actionChannel = pending ? u"#x"_s : QString();
        s.f.ctx.session.requestedNick = pending ? u"x"_s : QString();
        s.Feed(u":irc.test %1 me %2"_s.arg(number, 3, 10, QChar(u'0')).arg(rest));
      }
    }
    s.f.Sent();
  }
  SUCCEED();
}

}  // namespace
