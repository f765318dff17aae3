// PRIVMSG, NOTICE and the CTCP requests inside them: the lines shown in which tab and
// style, the sounds, and the only answer ever sent (the PING echo).

#include "support/styled_lines.h"

#include <gtest/gtest.h>

#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace {

struct MessageCase {
  const char* name;
  QStringList lines;
  QStringList shown = {};  // "tab|text|style"
  QStringList sounds = {};
  QByteArray sent = {};
  QString ignore = {};   // "" leaves the list off
  QString hlights = {};  // "" leaves the list off
  int current = 0;       // the tab in front: 0 Status, 1 #room, 2 #other
};

class MessageTest : public ::testing::TestWithParam<MessageCase> {};

TEST_P(MessageTest, ShowsSoundsAndAnswers) {
  const MessageCase& c = GetParam();
  StyledClient f;
  f.settings.SetString(u"query", u"query.wav", 250, SettingsKey::Sounds);
  f.ctx.tabs.SetClock([] { return QDateTime::fromSecsSinceEpoch(1700000003, QTimeZone::utc()); });
  f.ctx.tabs.OpenTab(u"#room", TabKind::Channel);
  f.ctx.tabs.OpenTab(u"#other", TabKind::Channel);
  f.ctx.tabs.ActivateTab(c.current);
  f.SetWordLists(c.ignore, c.hlights);
  for (const QString& line : c.lines) f.Receive(line);
  EXPECT_EQ(f.Shown(), c.shown);
  EXPECT_EQ(f.SoundEvents(), c.sounds);
  EXPECT_EQ(f.Sent(), c.sent);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MessageTest,
    ::testing::Values(
        MessageCase{"PrivateOpensOneChat", {u":bob!u@h PRIVMSG me!x@y :one"_s, u":Bob!u@h PRIVMSG ME :two"_s},
                    {u"bob|<bob> one|Normal"_s, u"bob|<Bob> two|Normal"_s}, {u"query"_s}},
        MessageCase{"ToChannelAnyCase", {u":alice!u@h PRIVMSG #ROOM :hi all"_s}, {u"#room|<alice> hi all|Normal"_s}},
        MessageCase{"ChannelWithoutTab", {u":alice!u@h PRIVMSG #gone :hi"_s}, {u"Status|<alice> hi|Normal"_s}},
        MessageCase{"Highlighted", {u":alice!u@h PRIVMSG #room :hi Bobby"_s, u":alice!u@h PRIVMSG me :bob?"_s},
                    {u"#room|<alice> hi Bobby|Hlight"_s, u"alice|<alice> bob?|Hlight"_s},
                    {u"highlight"_s, u"query"_s, u"highlight"_s}, {}, {}, u"bob "_s},
        // The ignore list holds nicks only: "h" is carol's host, not her.
        MessageCase{"Ignored", {u":ALICE!u@h PRIVMSG #room :hi"_s, u":alice!u@h NOTICE me :hi"_s,
                                u":alice!u@h PRIVMSG me :\1PING 1\1"_s, u":carol!u@h PRIVMSG #room :x"_s},
                    {u"#room|<carol> x|Normal"_s}, {}, {}, u"alice h "_s},
        MessageCase{"NoticeToChannel", {u":alice!u@h NOTICE #room :hi bob"_s, u":alice!u@h NOTICE #gone :x"_s},
                    {u"Status|-alice:#gone- x|Notice"_s, u"#room|-alice:#room- hi bob|Notice"_s},
                    {u"notice"_s, u"notice"_s}, {}, {}, u"bob "_s},
        MessageCase{"NoticeToUsInTheCurrentTab", {u":alice!u@h NOTICE Me :psst"_s},
                    {u"#other|-alice- psst|Notice"_s}, {u"notice"_s}, {}, {}, {}, 2},
        MessageCase{"Action", {u":bob!u@h PRIVMSG #room :\1action waves\1"_s, u":bob!u@h PRIVMSG me :\1ACTION \1"_s,
                               u":al!u@h PRIVMSG #room :\1ACTION hugs Bobby\1"_s},
                    {u"#room|* bob waves|Action"_s, u"#room|* al hugs Bobby|Hlight"_s, u"bob|* bob |Action"_s},
                    {u"query"_s, u"highlight"_s}, {}, {}, u"bob "_s},
        MessageCase{"CtcpDroppedSilently",
                    {u":bob!u@h PRIVMSG #room :\1ACTION waves"_s, u":bob!u@h PRIVMSG #room :\1ACTION\1"_s,
                     u":bob!u@h PRIVMSG me :\1\1\1"_s, u":bob!u@h PRIVMSG me :\1VERSION \1"_s,
                     u":bob!u@h NOTICE #room :\1ACTION waves\1"_s, u":bob!u@h PRIVMSG me :\1PING\1 1"_s,
                     u":bob!u@h PRIVMSG me :\1DCC \1"_s, u":bob!u@h PRIVMSG me :\1DCC CHAT\1"_s}},
        // The whole rest goes back as received, but a CR in it could end our NOTICE early.
        MessageCase{"PingRequests", {u":bob!u@h PRIVMSG me :\1ping a b\1 c"_s, u":bob!u@h PRIVMSG #room :\1PING 1\1"_s,
                                     u":bob!u@h PRIVMSG #gone :\1PING 2\1"_s, u":bob!u@h PRIVMSG me :\1PING 1\rQUIT\1"_s},
                    {u"Status|[bob PING]|Ping"_s, u"Status|[bob:#gone PING]|Ping"_s, u"#room|[bob:#room PING]|Ping"_s},
                    {u"ping"_s, u"ping"_s, u"ping"_s},
                    "NOTICE bob :\x01ping a b\x01 c\nNOTICE bob :\x01PING 1\x01\nNOTICE bob :\x01PING 2\x01\n"},
        MessageCase{"PingReplies", {u":bob!u@h NOTICE #room :\1PING 1700000000\1"_s, u":bob!u@h NOTICE me :\1PING -5\1"_s,
                                    u":bob!u@h NOTICE me :\1PING 9223372036854775807\1"_s,
                                    u":bob!u@h NOTICE me :\1PING -9223372036854775808\1"_s,
                                    u":bob!u@h NOTICE me :\1PING 12x\1"_s, u":bob!u@h NOTICE me :\1PING \1"_s},
                    {u"Status|[bob PING reply]: 3secs|Ping"_s, u"Status|[bob PING reply]: 1700000008secs|Ping"_s,
                     u"Status|[bob PING reply]: -9223372035154775804secs|Ping"_s}},
        MessageCase{"DccOfferWithoutPortRefused", {u":bob!u@h PRIVMSG me :\1DCC SEND file.zip 3232235777 0 1024\1"_s},
                    {u"Status|* DCC SEND from bob refused: no address or port|Info2"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
