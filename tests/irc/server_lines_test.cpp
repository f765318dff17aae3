// Bytes from the server, read in chunks: the Status lines shown, what the client answers,
// the nick it settles on, and the unfinished tail it keeps.

#include "settings/settings_flags.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

struct WireCase {
  const char* name;
  std::vector<QByteArray> chunks;
  QStringList status = {};
  QByteArray sent = {};
  QString nick = {};  // the own nick afterwards; empty: not registered
  quint32 options = 0;
  quint32 dcc = 0;
  QByteArray kept = {};
};

class ServerLinesTest : public ::testing::TestWithParam<WireCase> {};

TEST_P(ServerLinesTest, ShowsAnswersAndRegisters) {
  const WireCase& c = GetParam();
  IrcClientFixture f;
  f.SetOptions(c.options);
  f.settings.SetDword(u"DCC", static_cast<qint32>(c.dcc));
  f.settings.SetString(u"alternick", u"alice", 60);  // a refused nick falls back to the same
  f.ctx.session.requestedNick = u"alice"_s;
  for (const char* tab : {"#b", "carol", "#a"})
    f.ctx.tabs.OpenTab(QString::fromLatin1(tab), tab[0] == '#' ? TabKind::Channel : TabKind::Chat);
  f.ctx.tabs.ActivateTab(0);
  for (const QByteArray& chunk : c.chunks) SplitAndDispatch(f.ctx, chunk);
  EXPECT_EQ(f.StatusLines(), c.status);
  EXPECT_EQ(f.Sent(), c.sent);
  EXPECT_EQ(f.ctx.session.currentNick, c.nick);
  EXPECT_EQ(f.ctx.session.receiveBuffer, c.kept);
  EXPECT_FALSE(f.ctx.userhostRequested);  // our own USERHOST: its answer is not the user's
}

const QByteArray k20KiB(20 * 1024, 'x'), k10KiB(10 * 1024, 'x');
const QByteArray kBound = "FOO :" + QByteArray(16 * 1024 - 5, 'x');  // exactly 16 KiB
const QString kWelcome = u"Welcome"_s;
constexpr quint32 kEveryDcc = kDccAutoAddress | kDccServerLookup;

INSTANTIATE_TEST_SUITE_P(
    Reads, ServerLinesTest,
    ::testing::Values(
        WireCase{"HalfLineCompletedLater", {"FOO :one\r\nFOO :two\nFOO :th", "ree  \r\nFOO :fo"},
                 {u"one"_s, u"two"_s, u"three"_s}, {}, {}, 0, 0, "FOO :fo"},
        WireCase{"BareCrEndsNoLine", {"FOO :a\rFOO :b\r\n"}, {u"a\rFOO :b"_s}},
        WireCase{"UnknownCommandShowsItsRest", {":srv FOO bar :baz  qux\n:srv 0 me :zero\n"},
                 {u"baz  qux"_s, u"zero"_s}, {}, u"bar"_s},
        WireCase{"Latin1BetweenUtf8", {"FOO :caf\xc3\xa9\nFOO :caf\xe9 \xbd\nFOO :\xe2\x82", "\xac\n"},
                 {u"caf\u00e9"_s, u"caf\u00e9 \u00bd"_s, u"\u20ac"_s}},
        WireCase{"OverLongLineLostUpToItsEnd", {"FOO :before\n" + k20KiB, "yyy\nFOO :after\n"},
                 {u"before"_s, u"after"_s}},
        WireCase{"OverLongOverReads", {k10KiB, k10KiB, k10KiB, "y\r\nFOO :after\nFOO :x"},
                 {u"after"_s}, {}, {}, 0, 0, "FOO :x"},
        WireCase{"TailAtTheBoundIsWhole", {kBound, "y\n"}, {QString(16 * 1024 - 5, u'x') + u'y'}},
        WireCase{"PingShown", {"PING :x\r\n:irc.test PING :irc.test\n"}, {u"PING? PONG!"_s, u"PING? PONG!"_s},
                 "PONG :x\nPONG :irc.test\n"},
        // The answer echoes only the colon-led text; a bare word is the first parameter.
        WireCase{"PingHidden", {"ping :12345\nPING srv1\n"}, {}, "PONG :12345\nPONG :\n", u"srv1"_s, kOptHidePingPong},
        WireCase{"NickInUseBeforeWelcomeIsNotForUs", {":srv 433 * alice :in use\r\n"},
                 {u"alice :in use"_s}},
        WireCase{"NoticeToUsRegisters", {":srv NOTICE alice :hi\r\n"}, {u"-srv- hi"_s}, {}, u"alice"_s},
        WireCase{"NumericToAnotherNickRegistersIt", {":srv 433 bob x :in use\r\n"}, {u"x :in use"_s}, {},
                 u"bob"_s},
        WireCase{"LaterWelcomeNumericRenames", {":srv 001 alice :Welcome\r\n:srv 005 alice2 A=1 :ok\r\n"},
                 {kWelcome, u"A=1 :ok"_s}, {}, u"alice2"_s},
        WireCase{"WelcomeWithEverything", {":srv 001 alice :Welcome\r\n:srv 002 alice :host\r\n"},
                 {kWelcome, u"host"_s}, "USERHOST alice\nMODE alice +i\nJOIN #b\nJOIN #a\n", u"alice"_s,
                 kOptInvisible | kOptRejoinOnConnect, kEveryDcc},
        // Without the server look-up the address comes from the socket: nothing is asked.
        WireCase{"WelcomeAddressFromSocket", {":srv 001 alice :Welcome\r\n"}, {kWelcome}, {}, u"alice"_s, 0,
                 kDccAutoAddress}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
