// Long messages are cut so that every line other users receive fits an IRC line: never
// inside a character or a colour code, at a blank where one is near.

#include "commands/message_split.h"
#include "commands/submit_input.h"
#include "support/command_test_support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(SplitMessageText, Pieces) {
  const struct {
    QString text;
    int room;  // in UTF-8 bytes
    QStringList pieces;
  } cases[] = {
      {u"hello world"_s, 16, {u"hello world"_s}},
      {u"aaaa bbbb cccc dddd eeee"_s, 16, {u"aaaa bbbb cccc"_s, u"dddd eeee"_s}},
      {u"ab cdefghijklmnopqrstuvwxyz"_s, 16, {u"ab cdefghijklmno"_s, u"pqrstuvwxyz"_s}},  // no blank near the end
      {QString(20, u'\u00e9'), 17, {QString(8, u'\u00e9'), QString(8, u'\u00e9'), QString(4, u'\u00e9')}},
      {u"\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600"_s, 18,
       {u"\U0001F600\U0001F600\U0001F600\U0001F600"_s, u"\U0001F600"_s}},
      {u"0123456789abc\x03" "12,04red"_s, 16, {u"0123456789abc"_s, u"\x03" "12,04red"_s}},
      {u"0123456789\x04" "ff8800x"_s, 16, {u"0123456789"_s, u"\x04" "ff8800x"_s}},
  };
  for (const auto& c : cases) EXPECT_EQ(SplitMessageText(c.text, c.room), c.pieces) << c.text.toStdString();
}

// A long typed line reaches the channel as lines that each fit with our prefix (the host
// taken as 64 bytes until our own JOIN shows it), cut at the last blank, echoed piece by piece.
TEST(LongTypedLine, GoesOutInPiecesThatFitTheWire) {
  QStringList words;
  for (int i = 0; i < 140; ++i) words << u"word%1"_s.arg(i, 3, 10, QChar(u'0'));
  for (const QByteArray& userHost : {"~me@" + QByteArray(64, 'h'), QByteArray("~me@h")}) {
    CommandClient client({{"#x", TabKind::Channel}}, "#x");
    client.settings.SetString(u"email", u"me@home"_s, 240);
    if (userHost.size() < 10) client.Receive(u":me!~me@h JOIN #x"_s);
    client.Sent();
    SubmitInputText(client.ctx, words.join(u' '));
    const QByteArrayList sent = client.Sent().chopped(1).split('\n');
    QStringList said, shown;
    for (const QByteArray& line : sent) {
      const qsizetype received = (":me!" + userHost + ' ' + line + "\r\n").size();
      EXPECT_TRUE(line.startsWith("PRIVMSG #x :") && received <= 512 && (received >= 500 || &line == &sent.last()));
      said << QString::fromUtf8(line.sliced(12));
      shown << u"#x|<me> "_s + said.last() + u"|Normal"_s;
    }
    EXPECT_EQ(said.join(u' '), words.join(u' '));
    EXPECT_EQ(client.Shown().mid(client.Shown().size() - sent.size()), shown);
  }
}

// Without a blank the first piece fills the line to the last byte: the guessed prefix
// (the e-mail's user, 64 bytes of host) is exactly what the server adds here.
TEST(LongTypedLine, WithoutBlanksFillsTheLineExactly) {
  CommandClient client({{"#x", TabKind::Channel}}, "#x");
  client.settings.SetString(u"email", u"me@home"_s, 240);
  client.Sent();
  SubmitInputText(client.ctx, QString(600, u'a'));
  const QByteArrayList sent = client.Sent().chopped(1).split('\n');
  ASSERT_EQ(sent.size(), 2);
  EXPECT_EQ((":me!~me@" + QByteArray(64, 'h') + ' ' + sent[0] + "\r\n").size(), 512);
}

}  // namespace
