#include "irc/dispatch.h"

#include "irc/server_message.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct RouteCase {
  const char16_t* line;
  RowTest test;          // of the row expected to take it
  const char16_t* word;  // nullptr: no row, the rest goes to Status
};

class DispatchRouteTest : public ::testing::TestWithParam<RouteCase> {};

TEST_P(DispatchRouteTest, PicksTheRow) {
  const RouteCase& c = GetParam();
  const DispatchRow* row = FindDispatchRow(ParseServerLine(QStringView(c.line), u"srv"_s));
  if (!c.word) {
    EXPECT_EQ(row, nullptr);
    return;
  }
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->test, c.test);
  EXPECT_EQ(row->word.toString(), QStringView(c.word).toString());
}

INSTANTIATE_TEST_SUITE_P(
    Commands, DispatchRouteTest,
    ::testing::Values(
        RouteCase{u":n!u@h JOIN :#a", RowTest::Word, u"JOIN"},
        RouteCase{u":n!u@h join :#a", RowTest::Word, u"JOIN"},
        RouteCase{u":n!u@h Part #a", RowTest::Word, u"PART"},
        RouteCase{u"ERROR :Closing Link", RowTest::Word, u"ERROR"},
        RouteCase{u":n!u@h KICK #a bob :bye", RowTest::Word, u"KICK"},
        RouteCase{u"PING :srv1", RowTest::Word, u"PING"},
        RouteCase{u":n!u@h NOTICE me :\u0001PING 123\u0001", RowTest::WordCtcp, u"NOTICE"},
        RouteCase{u":n!u@h NOTICE me :hello", RowTest::WordPlain, u"NOTICE"},
        // The opening mark alone decides; a missing closing mark is the CTCP handler's concern.
        RouteCase{u":n!u@h PRIVMSG #a :\u0001ACTION waves", RowTest::WordCtcp, u"PRIVMSG"},
        RouteCase{u":n!u@h PRIVMSG #a : \u0001VERSION\u0001", RowTest::WordPlain, u"PRIVMSG"},
        RouteCase{u":n!u@h PRIVMSG #a", RowTest::WordPlain, u"PRIVMSG"},
        RouteCase{u":srv 001 me :Welcome", RowTest::Numeric, u""},
        RouteCase{u":srv 433 * me :in use", RowTest::Numeric, u""},
        RouteCase{u":srv 0 me :zero", RowTest::Numeric, nullptr},
        RouteCase{u":srv PINGS :x", RowTest::Word, nullptr},
        RouteCase{u":srv WALLOPS :x", RowTest::Word, nullptr},
        RouteCase{u"", RowTest::Word, nullptr}));

}  // namespace
