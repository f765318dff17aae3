#include "irc/line_assembly.h"
#include "irc/registration.h"
#include "settings/settings_flags.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Server lines in order, then the own nick the client believes in.
struct GateCase {
  const char* name;
  QByteArray lines;
  QString currentNick;
};

class RegistrationGateTest : public ::testing::TestWithParam<GateCase> {};

TEST_P(RegistrationGateTest, FollowsTheServersIdeaOfTheNick) {
  const GateCase& c = GetParam();
  IrcClientFixture f;
  f.SetOptions(0);
  f.ctx.session.requestedNick = u"alice"_s;
  f.settings.SetString(u"alternick", u"alice", 60);  // a refused nick falls back to the same
  SplitAndDispatch(f.ctx, c.lines);
  EXPECT_EQ(f.ctx.session.currentNick, c.currentNick);
  EXPECT_EQ(f.ctx.session.requestedNick, c.currentNick.isEmpty() ? u"alice"_s : QString());
}

INSTANTIATE_TEST_SUITE_P(
    Lines, RegistrationGateTest,
    ::testing::Values(
        GateCase{"WelcomeCompletes", ":srv 001 alice :Welcome\r\n", u"alice"_s},
        // Before registration the nick of a 433 is "*": not addressed to us at all.
        GateCase{"NickInUseBeforeRegistration", ":srv 433 * alice :Nickname is already in use\r\n",
                 QString()},
        // Above 99 a numeric counts as any other message addressed to us.
        GateCase{"HighNumericAddressedToUsCompletes", ":srv 433 bob alice :in use\r\n", u"bob"_s},
        GateCase{"AuthNoticesDoNotComplete",
                 "NOTICE AUTH :*** Looking up your hostname\r\n:srv NOTICE auth :*** Found\r\n",
                 QString()},
        GateCase{"NoticeToStarIsNotGated", ":srv NOTICE * :*** Checking Ident\r\n", QString()},
        GateCase{"NoticeToUsCompletes", ":srv NOTICE alice :*** You are connected\r\n", u"alice"_s},
        GateCase{"PingIsNotAddressedToUs", "PING :srv\r\n", QString()},
        GateCase{"LaterWelcomeNumericRenames",
                 ":srv 001 alice :Welcome\r\n:srv 005 alice2 CHANTYPES=# :are supported\r\n",
                 u"alice2"_s},
        GateCase{"LaterHighNumericDoesNotRename",
                 ":srv 001 alice :Welcome\r\n:srv 375 bob :- motd\r\n", u"alice"_s},
        GateCase{"LaterMessageDoesNotRename",
                 ":srv 001 alice :Welcome\r\n:bob!u@h PRIVMSG carol :hi\r\n", u"alice"_s}),
    [](const auto& info) { return std::string(info.param.name); });

// Settings, then what completing registration sends, byte for byte.
struct CompletionCase {
  const char* name;
  quint32 options;
  quint32 dcc;
  QByteArray sent;
};

class RegistrationCompleteTest : public ::testing::TestWithParam<CompletionCase> {};

TEST_P(RegistrationCompleteTest, SendsWhatTheSettingsAskFor) {
  const CompletionCase& c = GetParam();
  IrcClientFixture f;
  f.SetOptions(c.options);
  f.settings.SetDword(u"DCC", static_cast<qint32>(c.dcc));
  f.ctx.tabs.OpenTab(u"#b", TabKind::Channel);
  f.ctx.tabs.OpenTab(u"carol", TabKind::Chat);
  f.ctx.tabs.OpenTab(u"#a", TabKind::Channel);
  SplitAndDispatch(f.ctx, ":srv 001 alice :Welcome\r\n");
  EXPECT_EQ(f.Sent(), c.sent);
  // The 302 answer is ours, not the user's: it must reach the address learning.
  EXPECT_FALSE(f.ctx.userhostRequested);
  SplitAndDispatch(f.ctx, ":srv 002 alice :Your host\r\n");
  EXPECT_EQ(f.Sent(), QByteArray()) << "completes once";
}

INSTANTIATE_TEST_SUITE_P(
    Settings, RegistrationCompleteTest,
    ::testing::Values(
        CompletionCase{"Nothing", 0, 0, ""},
        CompletionCase{"Everything", kOptInvisible | kOptRejoinOnConnect,
                       kDccAutoAddress | kDccServerLookup,
                       "USERHOST alice\nMODE alice +i\nJOIN #b\nJOIN #a\n"},
        CompletionCase{"Invisible", kOptInvisible, 0, "MODE alice +i\n"},
        CompletionCase{"RejoinInTabOrder", kOptRejoinOnConnect, 0, "JOIN #b\nJOIN #a\n"},
        CompletionCase{"AddressFromTheServer", 0, kDccAutoAddress | kDccServerLookup,
                       "USERHOST alice\n"},
        // Without the server look-up the address comes from the socket: nothing is asked.
        CompletionCase{"AddressFromTheSocket", 0, kDccAutoAddress, ""},
        CompletionCase{"AutoAddressOff", 0, kDccServerLookup, ""}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
