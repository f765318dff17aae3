#include "irc/ctcp_handlers.h"
#include "irc/message_handlers.h"
#include "irc/registration.h"
#include "irc/server_message.h"

#include "support/styled_lines.h"

#include <gtest/gtest.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

void Deliver(IrcClientFixture& f, const QString& line) { f.Receive(line); }

struct MessageCase {
  const char* name;
  QString ownNick;  // empty: not registered yet
  QStringList channels;
  int current;       // the tab in front: 0 Status, 1 the first channel
  QString ignore;    // "" leaves "en_ignore" 0
  QString hlights;   // "" leaves "en_hlights" 0
  QStringList lines;
  QStringList shown;   // "tab|text|style"
  QStringList sounds;  // file names
};

void PrintTo(const MessageCase& c, std::ostream* out) { *out << c.name; }

class MessageTest : public ::testing::TestWithParam<MessageCase> {};

TEST_P(MessageTest, ShowsLinesAndPlaysSounds) {
  const MessageCase& c = GetParam();
  IrcClientFixture f;
  f.settings.SetBinary(u"kolory", DistinctColours());
  f.settings.SetString(u"query", u"query.wav", 250, SettingsKey::Sounds);
  f.settings.SetDword(u"DCC", 0);  // no USERHOST when the gate registers
  f.ctx.session.currentNick = c.ownNick;
  for (const QString& channel : c.channels) f.ctx.tabs.OpenTab(channel, TabKind::Channel);
  f.ctx.tabs.ActivateTab(c.current);
  f.SetWordLists(c.ignore, c.hlights);
  for (const QString& line : c.lines) Deliver(f, line);

  EXPECT_EQ(AllStyledLines(f), c.shown);
  EXPECT_EQ(f.SoundFiles(), c.sounds);
  EXPECT_EQ(f.Sent(), QByteArray());  // saying something never makes us answer
}

INSTANTIATE_TEST_SUITE_P(
    Privmsg, MessageTest,
    ::testing::Values(
        MessageCase{"ToUsOpensChat", u"me"_s, {}, 0, {}, {},
                    {u":bob!u@h PRIVMSG me :hello there"_s},
                    {u"bob|<bob> hello there|Normal"_s}, {u"query.wav"_s}},
        MessageCase{"SecondMessageSameChat", u"me"_s, {}, 0, {}, {},
                    {u":bob!u@h PRIVMSG me :one"_s, u":Bob!u@h PRIVMSG ME :two"_s},
                    {u"bob|<bob> one|Normal"_s, u"bob|<Bob> two|Normal"_s}, {u"query.wav"_s}},
        MessageCase{"TargetUpToBang", u"me"_s, {}, 0, {}, {},
                    {u":bob!u@h PRIVMSG me!x@y :hi"_s}, {u"bob|<bob> hi|Normal"_s},
                    {u"query.wav"_s}},
        MessageCase{"ToChannel", u"me"_s, {u"#room"_s}, 0, {}, {},
                    {u":alice!u@h PRIVMSG #Room :hi all"_s}, {u"#room|<alice> hi all|Normal"_s},
                    {}},
        MessageCase{"ChannelWithoutTabGoesToStatus", u"me"_s, {}, 0, {}, {},
                    {u":alice!u@h PRIVMSG #gone :hi"_s}, {u"Status|<alice> hi|Normal"_s}, {}},
        MessageCase{"Highlighted", u"me"_s, {u"#room"_s}, 0, {}, u"bob "_s,
                    {u":alice!u@h PRIVMSG #room :hi Bobby"_s},
                    {u"#room|<alice> hi Bobby|Hlight"_s}, {u"highlight.wav"_s}},
        MessageCase{"PrivateHighlightAfterQuerySound", u"me"_s, {}, 0, {}, u"bob "_s,
                    {u":alice!u@h PRIVMSG me :bob?"_s}, {u"alice|<alice> bob?|Hlight"_s},
                    {u"query.wav"_s, u"highlight.wav"_s}},
        MessageCase{"IgnoredSender", u"me"_s, {u"#room"_s}, 0, u"alice "_s, u"hi "_s,
                    {u":ALICE!u@h PRIVMSG #room :hi"_s, u":alice!u@h PRIVMSG me :hi"_s}, {}, {}},
        // The ignore list holds nicks only: a host in it matches nobody's prefix.
        MessageCase{"IgnoreNeverMatchesTheHost", u"me"_s, {}, 0, u"h "_s, {},
                    {u":alice!u@h PRIVMSG #x :hi"_s}, {u"Status|<alice> hi|Normal"_s}, {}},
        MessageCase{"MissingFields", u"me"_s, {}, 0, {}, {},
                    {u":bob!u@h PRIVMSG #x"_s, u":bob PRIVMSG"_s, u"PRIVMSG"_s,
                     u": PRIVMSG me :x"_s},
                    {u"Status|<bob> |Normal"_s, u"Status|<bob> |Normal"_s,
                     u"Status|<irc.test> |Normal"_s, u"Status|<> x|Normal"_s},
                    {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Notice, MessageTest,
    ::testing::Values(
        MessageCase{"ToChannel", u"me"_s, {u"#room"_s}, 0, {}, {},
                    {u":alice!u@h NOTICE #room :text"_s}, {u"#room|-alice:#room- text|Notice"_s},
                    {u"notice.wav"_s}},
        MessageCase{"ToChannelWithoutTab", u"me"_s, {}, 0, {}, {},
                    {u":alice!u@h NOTICE #room :text"_s}, {u"Status|-alice:#room- text|Notice"_s},
                    {u"notice.wav"_s}},
        MessageCase{"ToUsGoesToTheCurrentTab", u"me"_s, {u"#room"_s, u"#other"_s}, 2, {}, {},
                    {u":alice!u@h NOTICE Me :psst"_s}, {u"#other|-alice- psst|Notice"_s},
                    {u"notice.wav"_s}},
        MessageCase{"BeforeRegistrationSilentInCurrentTab", {}, {u"#room"_s}, 1, {}, {},
                    {u":irc.test NOTICE AUTH :*** Looking up your hostname"_s,
                     u"NOTICE * :*** Checking ident"_s},
                    {u"#room|-irc.test- *** Looking up your hostname|Notice"_s,
                     u"#room|-irc.test- *** Checking ident|Notice"_s},
                    {}},
        MessageCase{"NeverHighlighted", u"me"_s, {u"#room"_s}, 0, {}, u"bob "_s,
                    {u":alice!u@h NOTICE #room :hi bob"_s},
                    {u"#room|-alice:#room- hi bob|Notice"_s}, {u"notice.wav"_s}},
        MessageCase{"IgnoredSenderNoSound", u"me"_s, {}, 0, u"alice "_s, {},
                    {u":alice!u@h NOTICE me :hi"_s}, {}, {}},
        MessageCase{"MissingFields", u"me"_s, {}, 0, {}, {},
                    {u":bob NOTICE"_s, u":bob NOTICE me"_s},
                    {u"Status|-bob:- |Notice"_s, u"Status|-bob- |Notice"_s},
                    {u"notice.wav"_s, u"notice.wav"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
