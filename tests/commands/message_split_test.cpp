// Long messages are cut so that every line other users receive fits an IRC line: never
// inside a character or a colour code, at a blank where one is near.

#include "commands/message_split.h"
#include "commands/submit_input.h"
#include "support/command_test_support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct SplitCase {
  const char* name;
  QString text;
  int room;
  QStringList pieces;
};

void PrintTo(const SplitCase& c, std::ostream* os) { *os << c.name; }

class SplitMessageTextTest : public ::testing::TestWithParam<SplitCase> {};

TEST_P(SplitMessageTextTest, Pieces) {
  EXPECT_EQ(SplitMessageText(GetParam().text, GetParam().room), GetParam().pieces);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SplitMessageTextTest,
    ::testing::Values(
        SplitCase{"Fits", u"hello world"_s, 16, {u"hello world"_s}},
        SplitCase{"AtTheLastBlank", u"aaaa bbbb cccc dddd eeee"_s, 16, {u"aaaa bbbb cccc"_s, u"dddd eeee"_s}},
        SplitCase{"NoBlankNearTheEnd", u"ab cdefghijklmnopqrstuvwxyz"_s, 16,
                  {u"ab cdefghijklmno"_s, u"pqrstuvwxyz"_s}},
        SplitCase{"TwoByteCharacters", QString(20, u'\u00e9'), 17,
                  {QString(8, u'\u00e9'), QString(8, u'\u00e9'), QString(4, u'\u00e9')}},
        SplitCase{"SurrogatePairs", u"\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600"_s, 18,
                  {u"\U0001F600\U0001F600\U0001F600\U0001F600"_s, u"\U0001F600"_s}},
        SplitCase{"ColourDigitsStayWhole", u"0123456789abc\x03" "12,04red"_s, 16,
                  {u"0123456789abc"_s, u"\x03" "12,04red"_s}},
        SplitCase{"HexColourStaysWhole", u"0123456789\x04" "ff8800x"_s, 16,
                  {u"0123456789"_s, u"\x04" "ff8800x"_s}}),
    [](const auto& info) { return std::string(info.param.name); });

// A long typed line reaches the channel as several lines that each fit with our prefix
// (the host taken as 64 bytes until our own JOIN shows it), and is echoed piece by piece.
TEST(LongTypedLine, GoesOutInPiecesThatFitTheWire) {
  QStringList words;
  for (int i = 0; i < 140; ++i) words << u"word%1"_s.arg(i, 3, 10, QChar(u'0'));
  const QString text = words.join(u' ');
  for (const bool hostKnown : {false, true}) {
    CommandClient client({{"#x", TabKind::Channel}}, "#x");
    client.settings.SetString(u"email", u"me@home"_s, 240);
    const QByteArray userHost = hostKnown ? "~me@h" : "~me@" + QByteArray(64, 'h');
    if (hostKnown) client.Receive(u":me!~me@h JOIN #x"_s);
    client.Sent();
    SubmitInputText(client.ctx, text);
    QByteArrayList sent = client.Sent().split('\n');
    sent.removeLast();
    QStringList said;
    for (const QByteArray& line : sent) {
      ASSERT_TRUE(line.startsWith("PRIVMSG #x :"));
      const qsizetype received = (":me!" + userHost + ' ' + line + "\r\n").size();
      EXPECT_LE(received, 512);
      if (&line != &sent.last()) {
        EXPECT_GE(received, 500);  // cut at the last blank, not before
      }
      said << QString::fromUtf8(line.mid(12));
    }
    EXPECT_EQ(said.join(u' '), text);
    EXPECT_EQ(client.Shown().size(), sent.size() + (hostKnown ? 1 : 0));
    EXPECT_EQ(client.Shown().last(), u"#x|<me> "_s + said.last() + u"|Normal"_s);
  }
}

}  // namespace
