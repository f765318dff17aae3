#include "irc/server_message.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kHost = u"irc.example.net";

struct ParseCase {
  const char16_t* line;
  const char16_t* prefix;
  const char16_t* command;
  const char16_t* target;
  const char16_t* rest;
  int fields;
};

class ParseServerLineTest : public ::testing::TestWithParam<ParseCase> {};

TEST_P(ParseServerLineTest, CutsIntoFourFields) {
  const ParseCase& c = GetParam();
  int fields = -1;
  const ServerMessage m = ParseServerLine(QStringView(c.line), QStringView(kHost).toString(), &fields);
  EXPECT_EQ(m.prefix, QStringView(c.prefix).toString());
  EXPECT_EQ(m.command, QStringView(c.command).toString());
  EXPECT_EQ(m.target, QStringView(c.target).toString());
  EXPECT_EQ(m.rest, QStringView(c.rest).toString());
  EXPECT_EQ(fields, c.fields);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ParseServerLineTest,
    ::testing::Values(
        ParseCase{u":a!b@c PRIVMSG #x :hi there", u"a!b@c", u"PRIVMSG", u"#x", u"hi there", 4},
        ParseCase{u"PING :srv1", kHost, u"PING", u"", u"srv1", 4},
        ParseCase{u":srv 353 me = #x :a b", u"srv", u"353", u"me", u"= #x :a b", 4},
        // A colon-led text right after the command is the rest.
        ParseCase{u":n!u@h JOIN :#chan", u"n!u@h", u"JOIN", u"", u"#chan", 4},
        // Only one colon goes; later colons and blanks stay.
        ParseCase{u":n PRIVMSG #x ::-) a  b", u"n", u"PRIVMSG", u"#x", u":-) a  b", 4},
        ParseCase{u":srv 372 me :", u"srv", u"372", u"me", u"", 4},
        // Fewer fields.
        ParseCase{u":srv 001 me", u"srv", u"001", u"me", u"", 3},
        ParseCase{u":srv PONG", u"srv", u"PONG", u"", u"", 2},
        ParseCase{u"PING", kHost, u"PING", u"", u"", 2},
        ParseCase{u":srv", u"srv", u"", u"", u"", 1},
        ParseCase{u"", u"", u"", u"", u"", 0},
        // A colon where the command belongs leaves command and target empty.
        ParseCase{u":srv :only rest", u"srv", u"", u"", u"only rest", 4},
        // Every blank ends a field, so repeated blanks give empty fields.
        ParseCase{u":a  PRIVMSG #x", u"a", u"", u"PRIVMSG", u"#x", 4},
        ParseCase{u"PRIVMSG  #x :hi", kHost, u"PRIVMSG", u"", u"#x :hi", 4},
        ParseCase{u":srv 353 me  = #x", u"srv", u"353", u"me", u" = #x", 4}));

TEST(ParseServerLine, WithoutASelectedServerTheMissingPrefixIsEmpty) {
  EXPECT_EQ(ParseServerLine(u"PING :x", QString()).prefix, QString());
}

TEST(TrimTrailingBlanks, RemovesOnlyTrailingSpaces) {
  const std::pair<QString, QString> cases[] = {
      {u"PING :x  "_s, u"PING :x"_s}, {u"a b"_s, u"a b"_s},   {u"   "_s, u""_s},
      {u"a\t "_s, u"a\t"_s},          {u"a \u00a0"_s, u"a \u00a0"_s}, {u""_s, u""_s},
  };
  for (const auto& [in, out] : cases) {
    QString line = in;
    TrimTrailingBlanks(line);
    EXPECT_EQ(line, out) << in.toStdString();
  }
}

TEST(CommandNumber, ReadsLeadingDigits) {
  const std::pair<const char16_t*, int> cases[] = {
      {u"001", 1},  {u"433", 433}, {u"0", 0},    {u"000", 0}, {u"PRIVMSG", 0},
      {u"", 0},     {u"12ab", 12}, {u"-5", 0},   {u"+5", 0},
      {u"99999999999999", std::numeric_limits<int>::max()},
  };
  for (const auto& [command, number] : cases)
    EXPECT_EQ(CommandNumber(QStringView(command)), number) << QStringView(command).toString().toStdString();
}

}  // namespace
