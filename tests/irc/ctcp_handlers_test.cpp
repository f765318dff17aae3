#include "irc/ctcp_handlers.h"
#include "irc/message_handlers.h"
#include "irc/registration.h"
#include "irc/server_message.h"

#include "support/styled_lines.h"

#include <gtest/gtest.h>

#include <QTimeZone>
#include <array>

using namespace Qt::StringLiterals;

namespace {

// ---- The PING reply's seconds ------------------------------------------------------

struct SecondsCase {
  const char* name;
  QString argument;
  std::optional<qint64> seconds;
};

void PrintTo(const SecondsCase& c, std::ostream* out) { *out << c.name; }

class PingSecondsTest : public ::testing::TestWithParam<SecondsCase> {};

TEST_P(PingSecondsTest, ReadsWholeNumbersOnly) {
  EXPECT_EQ(ParsePingSeconds(GetParam().argument), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, PingSecondsTest,
    ::testing::Values(
        SecondsCase{"Blanks", u" 12 "_s, 12},
        SecondsCase{"Negative", u"-5"_s, -5},
        SecondsCase{"Largest", u"9223372036854775807"_s, Q_INT64_C(9223372036854775807)},
        SecondsCase{"TooLarge", u"9223372036854775808"_s, std::nullopt},
        SecondsCase{"TrailingGarbage", u"12abc"_s, std::nullopt},
        SecondsCase{"TwoNumbers", u"1 2"_s, std::nullopt},
        SecondsCase{"Empty", u""_s, std::nullopt},
        SecondsCase{"OtherDigits", u"\u0661\u0662"_s, std::nullopt}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- Handlers ---------------------------------------------------------------------

void Deliver(IrcClientFixture& f, const QString& line) { f.Receive(line); }

// The clock of the PING reply cases.
constexpr qint64 kNow = 1700000003;

class CtcpFixture : public IrcClientFixture {
 public:
  CtcpFixture() {
    settings.SetBinary(u"kolory", DistinctColours());
    settings.SetString(u"query", u"query.wav", 250, SettingsKey::Sounds);
    settings.SetDword(u"DCC", 0);  // no USERHOST when the gate registers
    ctx.session.currentNick = u"me"_s;
    ctx.tabs.SetClock([] { return QDateTime::fromSecsSinceEpoch(kNow, QTimeZone::utc()); });
  }
};

struct CtcpCase {
  const char* name;
  QStringList channels;
  QString ignore;   // "" leaves "en_ignore" 0
  QString hlights;  // "" leaves "en_hlights" 0
  QStringList lines;
  QStringList shown;  // "tab|text|style"
  QStringList sounds;
  QByteArray sent;
};

void PrintTo(const CtcpCase& c, std::ostream* out) { *out << c.name; }

class CtcpTest : public ::testing::TestWithParam<CtcpCase> {};

TEST_P(CtcpTest, AnswersShowsAndSounds) {
  const CtcpCase& c = GetParam();
  CtcpFixture f;
  for (const QString& channel : c.channels) f.ctx.tabs.OpenTab(channel, TabKind::Channel);
  f.SetWordLists(c.ignore, c.hlights);
  for (const QString& line : c.lines) Deliver(f, line);
  EXPECT_EQ(AllStyledLines(f), c.shown);
  EXPECT_EQ(f.SoundFiles(), c.sounds);
  EXPECT_EQ(f.Sent(), c.sent);
}

INSTANTIATE_TEST_SUITE_P(
    Silent, CtcpTest,
    ::testing::Values(
        CtcpCase{"Version", {}, {}, {},
                 {u":bob!u@h PRIVMSG me :\1VERSION\1"_s, u":bob!u@h PRIVMSG me :\1VERSION \1"_s,
                  u":bob!u@h PRIVMSG me :\1TIME x\1"_s, u":bob!u@h PRIVMSG me :\1CLIENTINFO \1"_s},
                 {}, {}, {}},
        CtcpCase{"Malformed", {u"#room"_s}, {}, {},
                 {u":bob!u@h PRIVMSG #room :\1ACTION waves"_s,
                  u":bob!u@h PRIVMSG #room :\1ACTION\1"_s,
                  u":bob!u@h PRIVMSG me :\1"_s, u":bob!u@h PRIVMSG me :\1\1\1"_s,
                  u":bob!u@h PRIVMSG me :\1PING\1"_s, u":bob!u@h PRIVMSG me :\1PING\1 1"_s,
                  u":bob!u@h NOTICE me :\1PING"_s,
                  u":bob!u@h NOTICE me :\1"_s, u":bob PRIVMSG :\1PING 1"_s},
                 {}, {}, {}},
        CtcpCase{"ActionInNotice", {u"#room"_s}, {}, {},
                 {u":bob!u@h NOTICE #room :\1ACTION waves\1"_s}, {}, {}, {}},
        CtcpCase{"IgnoredSender", {u"#room"_s}, u"bob "_s, {},
                 {u":Bob!u@h PRIVMSG #room :\1ACTION waves\1"_s,
                  u":bob!u@h PRIVMSG me :\1PING 1\1"_s,
                  u":bob!u@h NOTICE me :\1PING 1700000000\1"_s,
                  u":bob!u@h PRIVMSG me :\1DCC SEND f 1 2 3\1"_s},
                 {}, {}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Action, CtcpTest,
    ::testing::Values(
        CtcpCase{"InChannel", {u"#room"_s}, {}, {},
                 {u":bob!u@h PRIVMSG #room :\1ACTION waves\1"_s}, {u"#room|* bob waves|Action"_s},
                 {}, {}},
        CtcpCase{"LowerCaseKeyword", {u"#room"_s}, {}, {},
                 {u":bob!u@h PRIVMSG #room :\1action waves\1"_s}, {u"#room|* bob waves|Action"_s},
                 {}, {}},
        CtcpCase{"Highlighted", {u"#room"_s}, {}, u"bob "_s,
                 {u":alice!u@h PRIVMSG #room :\1ACTION hugs Bobby\1"_s},
                 {u"#room|* alice hugs Bobby|Hlight"_s}, {u"highlight.wav"_s}, {}},
        CtcpCase{"PrivateOpensChat", {}, {}, {},
                 {u":bob!u@h PRIVMSG me :\1ACTION waves\1"_s}, {u"bob|* bob waves|Action"_s},
                 {u"query.wav"_s}, {}},
        CtcpCase{"ChannelWithoutTab", {}, {}, {},
                 {u":bob!u@h PRIVMSG #gone :\1ACTION waves\1"_s}, {u"Status|* bob waves|Action"_s},
                 {}, {}},
        CtcpCase{"EmptyArgument", {u"#room"_s}, {}, {},
                 {u":bob!u@h PRIVMSG #room :\1ACTION \1"_s}, {u"#room|* bob |Action"_s}, {}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Ping, CtcpTest,
    ::testing::Values(
        CtcpCase{"RequestToUs", {}, {}, {}, {u":bob!u@h PRIVMSG me :\1PING 12345\1"_s},
                 {u"Status|[bob PING]|Ping"_s}, {u"ping.wav"_s},
                 "NOTICE bob :\x01PING 12345\x01\n"},
        CtcpCase{"RequestToChannel", {u"#room"_s}, {}, {},
                 {u":bob!u@h PRIVMSG #room :\1PING 12345\1"_s}, {u"#room|[bob:#room PING]|Ping"_s},
                 {u"ping.wav"_s}, "NOTICE bob :\x01PING 12345\x01\n"},
        CtcpCase{"RequestToChannelWithoutTab", {}, {}, {},
                 {u":bob!u@h PRIVMSG #room :\1PING 1\1"_s}, {u"Status|[bob:#room PING]|Ping"_s},
                 {u"ping.wav"_s}, "NOTICE bob :\x01PING 1\x01\n"},
        // The whole rest goes back as received: keyword case, marks and what follows.
        CtcpCase{"RequestEchoedVerbatim", {}, {}, {}, {u":bob!u@h PRIVMSG me :\1ping a b\1 c"_s},
                 {u"Status|[bob PING]|Ping"_s}, {u"ping.wav"_s},
                 "NOTICE bob :\x01ping a b\x01 c\n"},
        // A bare CR inside the echo could end our NOTICE early at the server.
        CtcpCase{"RequestWithLineBreakNotEchoed", {}, {}, {},
                 {u":bob!u@h PRIVMSG me :\1PING 1\rQUIT :x\1"_s}, {}, {}, {}},
        CtcpCase{"Reply", {}, {}, {}, {u":bob!u@h NOTICE me :\1PING 1700000000\1"_s},
                 {u"Status|[bob PING reply]: 3secs|Ping"_s}, {}, {}},
        CtcpCase{"ReplyInChannelStillOnStatus", {u"#room"_s}, {}, {},
                 {u":bob!u@h NOTICE #room :\1PING 1700000003\1"_s},
                 {u"Status|[bob PING reply]: 0secs|Ping"_s}, {}, {}},
        CtcpCase{"ReplyNegative", {}, {}, {}, {u":bob!u@h NOTICE me :\1PING -5\1"_s},
                 {u"Status|[bob PING reply]: 1700000008secs|Ping"_s}, {}, {}},
        CtcpCase{"ReplyLargest64Bit", {}, {}, {},
                 {u":bob!u@h NOTICE me :\1PING 9223372036854775807\1"_s},
                 {u"Status|[bob PING reply]: -9223372035154775804secs|Ping"_s}, {}, {}},
        CtcpCase{"ReplyWhoseDifferenceOverflows", {}, {}, {},
                 {u":bob!u@h NOTICE me :\1PING -9223372036854775808\1"_s}, {}, {}, {}},
        CtcpCase{"ReplyGarbage", {}, {}, {},
                 {u":bob!u@h NOTICE me :\1PING abc\1"_s, u":bob!u@h NOTICE me :\1PING \1"_s,
                  u":bob!u@h NOTICE me :\1PING 99999999999999999999\1"_s,
                  u":bob!u@h NOTICE me :\1PING 12x\1"_s},
                 {}, {}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

const QString kOffer = u":bob!u@h PRIVMSG me :\1DCC SEND file.zip 3232235777 0 1024\1"_s;
const QString kOfferShown = u"Status|* DCC SEND from bob refused: no address or port|Info2"_s;

INSTANTIATE_TEST_SUITE_P(
    Dcc, CtcpTest,
    ::testing::Values(
        CtcpCase{"OfferWithoutPortRefused", {}, {}, {}, {kOffer},
                 {kOfferShown}, {}, {}},
        CtcpCase{"RequestWithoutArguments", {}, {}, {},
                 {u":bob!u@h PRIVMSG me :\1DCC CHAT\1"_s, u":bob!u@h PRIVMSG me :\1DCC \1"_s,
                  u":bob!u@h PRIVMSG me :\1DCC  x\1"_s},
                 {}, {}, {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(DccOffer, DroppedWhileAnEarlierOfferIsBusy) {
  CtcpFixture f;
  Deliver(f, kOffer);
  f.ctx.dccOfferBusy = true;
  Deliver(f, kOffer);
  EXPECT_EQ(AllStyledLines(f), QStringList{kOfferShown});
  EXPECT_TRUE(f.ctx.dccOfferBusy);  // the flag belongs to whoever set it
  f.ctx.dccOfferBusy = false;
  Deliver(f, kOffer);
  EXPECT_EQ(AllStyledLines(f).size(), 2);
  EXPECT_EQ(f.ctx.tabs.Count(), 1);  // no transfer or chat tab
  EXPECT_EQ(f.Sent(), QByteArray());
}

}  // namespace
