// Two users in one channel on a real server: the program through its headless front
// end, and a second user speaking raw IRC from the test. What the program shows must
// read exactly as its users know it.

#include "support/headless_tolv.h"
#include "support/raw_irc_user.h"
#include "support/test_app.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>


using namespace Qt::StringLiterals;

namespace {

class HeadlessChannel : public HeadlessTolvTest {
 protected:
  bool Shows(const QString& line, int milliseconds = 5000) {
    return RunUntil([&] {
      output += QString::fromUtf8(tolv.readAllStandardOutput());
      return output.split(u'\n').contains(line);
    }, milliseconds);
  }

  QString output;
};

TEST_F(HeadlessChannel, ShowsWhatAnotherUserDoes) {
  ASSERT_TRUE(Shows(u"\x1bstate\tconnected"_s));
  RawIrcUser alice(server.Port(), "alice");
  ASSERT_TRUE(alice.WaitFor(" 001 alice"));
  RawIrcUser victim(server.Port(), "victim");
  ASSERT_TRUE(victim.WaitFor(" 001 victim"));
  ASSERT_TRUE(Shows(u"Status\tWelcome to the Internet Relay Network tolvbot!~me@127.0.0.1"_s))
      << output.toStdString();

  Type("/join #tolv");
  ASSERT_TRUE(Shows(u"#tolv\t* Now talking in #tolv"_s)) << output.toStdString();
  alice.Send("JOIN #tolv\r\n");
  EXPECT_TRUE(Shows(u"#tolv\t* alice has joined #tolv"_s));
  victim.Send("JOIN #tolv\r\n");
  EXPECT_TRUE(Shows(u"#tolv\t* victim has joined #tolv"_s));
  Type("\x1bnicks #tolv");
  EXPECT_TRUE(Shows(u"\x1bnicks\t#tolv\t@tolvbot alice victim"_s)) << output.toStdString();

  alice.Send("PRIVMSG #tolv :hello there\r\n");
  EXPECT_TRUE(Shows(u"#tolv\t<alice> hello there"_s));
  alice.Send("PRIVMSG #tolv :\x01" "ACTION waves\x01\r\n");
  EXPECT_TRUE(Shows(u"#tolv\t* alice waves"_s));
  alice.Send("NICK alicia\r\n");
  EXPECT_TRUE(Shows(u"#tolv\talice is now known as alicia"_s));

  Type("/mode #tolv +o alicia");
  EXPECT_TRUE(Shows(u"#tolv\t* tolvbot sets mode: +o alicia"_s));
  ASSERT_TRUE(alice.WaitFor("MODE #tolv +o alicia"));
  alice.Send("TOPIC #tolv :fresh topic\r\n");
  EXPECT_TRUE(Shows(u"#tolv\talicia changes topic to 'fresh topic'"_s));
  alice.Send("MODE #tolv -o+v tolvbot tolvbot\r\n");
  EXPECT_TRUE(Shows(u"#tolv\t* alicia sets mode: -o+v tolvbot tolvbot"_s));
  Type("\x1bnicks #tolv");
  EXPECT_TRUE(Shows(u"\x1bnicks\t#tolv\t@alicia +tolvbot victim"_s)) << output.toStdString();

  alice.Send("KICK #tolv victim :off you go\r\n");
  EXPECT_TRUE(Shows(u"#tolv\tvictim was kicked by alicia (off you go)"_s));
  alice.Send("QUIT :see you\r\n");
  EXPECT_TRUE(RunUntil([&] {
    output += QString::fromUtf8(tolv.readAllStandardOutput());
    return output.contains(u"#tolv\t* alicia Quit ("_s);
  }));
  Type("\x1bnicks #tolv");
  EXPECT_TRUE(Shows(u"\x1bnicks\t#tolv\t+tolvbot"_s)) << output.toStdString();
}

}  // namespace
