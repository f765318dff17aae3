#include "irc/line_assembly.h"
#include "settings/settings_flags.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct PingCase {
  const char* name;
  quint32 options;
  QByteArray line;
  QByteArray sent;
  QStringList status;
};

class ServerPingTest : public ::testing::TestWithParam<PingCase> {};

TEST_P(ServerPingTest, AnswersWithPong) {
  const PingCase& c = GetParam();
  IrcClientFixture f;
  f.SetOptions(c.options);
  f.settings.SetDword(u"DCC", 0);  // "PING srv1" is addressed to "srv1": no USERHOST then
  SplitAndDispatch(f.ctx, c.line);
  EXPECT_EQ(f.Sent(), c.sent);
  EXPECT_EQ(f.StatusLines(), c.status);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ServerPingTest,
    ::testing::Values(
        PingCase{"Shown", 0, "PING :x\r\n", "PONG :x\n", {u"PING? PONG!"_s}},
        PingCase{"Hidden", kOptHidePingPong, "PING :x\r\n", "PONG :x\n", {}},
        PingCase{"WithPrefix", 0, ":irc.test PING :irc.test\n", "PONG :irc.test\n",
                 {u"PING? PONG!"_s}},
        PingCase{"LowerCase", kOptHidePingPong, "ping :12345\n", "PONG :12345\n", {}},
        // The answer echoes only the colon-led text; a bare word is the first parameter.
        PingCase{"WithoutColon", kOptHidePingPong, "PING srv1\n", "PONG :\n", {}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ServerPing, LineIsWrittenBeforeThePongGoesOut) {
  IrcClientFixture f;
  f.SetOptions(0);
  QByteArray sentWhenShown = "<not shown>";
  QObject::connect(&f.ctx.tabs, &TabBar::linesAppended, [&] { sentWhenShown = f.Sent(); });
  SplitAndDispatch(f.ctx, "PING :x\r\n");
  EXPECT_EQ(sentWhenShown, QByteArray());
  EXPECT_EQ(f.Sent(), "PONG :x\n");
  EXPECT_EQ(f.StatusColour(0), f.ctx.Colour(LineStyle::Ping));
}

}  // namespace
