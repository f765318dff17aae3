// A whole conversation typed into the real program, against a real server: what the
// other user in the channel receives must be the protocol the user meant, and what the
// program shows must read exactly as its users know it.

#include "support/headless_tolv.h"
#include "support/raw_irc_user.h"
#include "support/test_app.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

// One IRC line cut into its prefix and its words: the command, then every parameter with
// the trailing one's colon removed, so "TOPIC #c :new" and "TOPIC #c new" read alike.
struct IrcLine {
  QByteArray prefix;
  QByteArrayList words;
};

IrcLine ParseIrcLine(QByteArray line) {
  IrcLine parsed;
  if (line.startsWith(':')) {
    const qsizetype blank = line.indexOf(' ');
    parsed.prefix = line.mid(1, blank < 0 ? -1 : blank - 1);
    line = blank < 0 ? QByteArray() : line.mid(blank + 1);
  }
  while (!line.isEmpty()) {
    if (line.startsWith(':')) {
      parsed.words << line.mid(1);
      break;
    }
    const qsizetype blank = line.indexOf(' ');
    parsed.words << line.left(blank);
    if (blank < 0) break;
    line = line.mid(blank + 1);
    while (line.startsWith(' ')) line.remove(0, 1);
  }
  return parsed;
}

// The scripted user in the channel: reads the server's lines in order, answers its pings
// (the test server asks every few seconds), and remembers how far it has read.
class Peer {
 public:
  Peer(int port, const QByteArray& nick) : user(port, nick), nick(nick) {}

  // Waits for the next line from `from` (a server, or a nick with any user and host) whose
  // command and parameters are exactly those of `expected`; lines before it are passed over.
  ::testing::AssertionResult Receives(const QByteArray& from, const QByteArray& expected,
                                      int milliseconds = 15000) {
    const QByteArrayList wanted = ParseIrcLine(expected).words;
    QByteArrayList lines;
    const qsizetype at = FindLine(lines, milliseconds, [&](const IrcLine& line) {
      return line.words == wanted && (line.prefix == from || line.prefix.startsWith(from + '!'));
    });
    if (at >= 0) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "no \"" << expected.constData() << "\" from " << from.constData() << "; received:\n"
           << lines.mid(cursor_).join('\n').constData();
  }
  ::testing::AssertionResult Registers() {
    return Receives("irc.test.local", "001 " + nick + " :Welcome to the Internet Relay Network " +
                                          nick + "!~" + nick + "@127.0.0.1");
  }

  // The words of the next numeric reply `number`, such as 311 of a WHOIS.
  QByteArrayList NextReply(const QByteArray& number, int milliseconds = 15000) {
    QByteArrayList lines;
    const qsizetype at = FindLine(lines, milliseconds, [&](const IrcLine& line) {
      return !line.words.isEmpty() && line.words[0] == number;
    });
    return at >= 0 ? ParseIrcLine(lines[at]).words : QByteArrayList();
  }

  void Send(const QByteArray& line) { user.Send(line + "\r\n"); }

  RawIrcUser user;
  const QByteArray nick;

 private:
  // The index of the first unread line that `match` accepts, or -1 when none came in time;
  // `lines` holds what was read, and the reading goes on behind a found line.
  qsizetype FindLine(QByteArrayList& lines, int milliseconds,
                     const std::function<bool(const IrcLine&)>& match) {
    qsizetype at = -1;
    RunUntil([&] {
      lines = Read();
      for (qsizetype i = cursor_; at < 0 && i < lines.size(); ++i)
        if (match(ParseIrcLine(lines[i]))) at = i;
      return at >= 0;
    }, milliseconds);
    if (at >= 0) cursor_ = at + 1;
    return at;
  }

  QByteArrayList Read() {
    const QByteArrayList lines = user.Lines();
    for (; answered_ < lines.size(); ++answered_)
      if (lines[answered_].startsWith("PING "))
        user.Send("PONG " + lines[answered_].mid(5) + "\r\n");
    return lines;
  }

  qsizetype cursor_ = 0;
  qsizetype answered_ = 0;
};

class HeadlessCommands : public HeadlessTolvTest {
 protected:
  // Reconnecting is on, so that only the user's quit keeps the program offline.
  QByteArray ExtraSettings() const override {
    return "\"snd_enable\"=dword:00000000\n\"Options\"=dword:00000008\n"
           "\"partmsg\"=\"Gone fishing\"\n\"quitmsg\"=\"not this one\"\n";
  }

  // The complete lines the program has written so far.
  const QStringList& Output() {
    pending += QString::fromUtf8(tolv.readAllStandardOutput());
    const qsizetype end = pending.lastIndexOf(u'\n');
    if (end >= 0) {
      output += pending.first(end).split(u'\n');
      pending.remove(0, end + 1);
    }
    return output;
  }
  // Waits for `line` among the lines not yet matched; the lines before it are passed over,
  // since lines of other tabs (the own address's look-up, say) come whenever they come.
  ::testing::AssertionResult Shows(const QString& line, int milliseconds = 15000) {
    qsizetype at = -1;
    RunUntil([&] {
      if (at < 0) at = Output().indexOf(line, cursor);
      return at >= 0;
    }, milliseconds);
    if (at >= 0) {
      cursor = at + 1;
      return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "not shown: " << line.toStdString() << "\nshown:\n"
                                         << output.mid(cursor).join(u'\n').toStdString();
  }
  qsizetype CountOf(const QString& line) { return Output().count(line); }

  // The program joins first and so holds the channel's op; then the other user comes.
  void JoinBoth(Peer& other, const QByteArray& channel) {
    const QString name = QString::fromUtf8(channel);
    Type("/join " + channel);
    ASSERT_TRUE(Shows(name + u"\t* Now talking in "_s + name));
    EXPECT_TRUE(Shows(u"Status\t= "_s + name + u" :@tolvbot"_s));
    EXPECT_TRUE(Shows(u"Status\t"_s + name + u" :End of NAMES list"_s));
    other.Send("JOIN " + channel);
    const QString joined = u"* "_s + QString::fromUtf8(other.nick) + u" has joined "_s + name;
    ASSERT_TRUE(Shows(name + u'\t' + joined));
  }
  // The other user's host as the server tells it in a WHOIS, which a ban names.
  QByteArray HostOf(Peer& other) {
    other.Send("WHOIS " + other.nick);
    const QByteArrayList whois = other.NextReply("311");  // 311 me nick user host * :real
    EXPECT_EQ(whois.size(), 7) << whois.join(' ').constData();
    return whois.value(4);
  }

  QString pending;
  QStringList output;
  qsizetype cursor = 0;
};

TEST_F(HeadlessCommands, TypedAndMenuCommandsReachTheOtherUserExactly) {
  ASSERT_TRUE(Shows(u"Status\tWelcome to the Internet Relay Network tolvbot!~me@127.0.0.1"_s));
  Peer other(server.Port(), "other");
  ASSERT_TRUE(other.Registers());

  ASSERT_NO_FATAL_FAILURE(JoinBoth(other, "#c"));

  // Said in the channel and to the other user, each echoed where it belongs.
  struct Said {
    const char* typed;
    const char* received;  // by the other user, from tolvbot
    const char16_t* shown;
  };
  const Said conversation[] = {
      {"hello   there ", "PRIVMSG #c :hello   there", u"#c\t<tolvbot> hello   there"},
      {"/me waves", "PRIVMSG #c :\x01" "ACTION waves\x01", u"#c\t* tolvbot waves"},
      {"/msg other hi", "PRIVMSG other :hi", u"#c\t-> *other* hi"},
      {"/msg #c to all of you", "PRIVMSG #c :to all of you", u"#c\t<tolvbot> to all of you"},
      {"/notice other psst, a secret", "NOTICE other :psst, a secret",
       u"#c\t-> -other- psst, a secret"},
      {"/topic #c new topic words", "TOPIC #c :new topic words",
       u"#c\ttolvbot changes topic to 'new topic words'"},
      {"/mode #c +m", "MODE #c +m", u"#c\t* tolvbot sets mode: +m"},
      {"\x1bmenu 40307 other", "MODE #c +o other", u"#c\t* tolvbot sets mode: +o other"},
  };
  for (const Said& step : conversation) {
    SCOPED_TRACE(step.typed);
    Type(step.typed);
    EXPECT_TRUE(other.Receives("tolvbot", step.received));
    EXPECT_TRUE(Shows(QString::fromUtf16(step.shown)));
  }
  Type("\x1bnicks #c");
  EXPECT_TRUE(Shows(u"\x1bnicks\t#c\t@other @tolvbot"_s));

  // Kick (Reason) asks for the reason first.
  Type("\x1bmenu 40312 @other");
  ASSERT_TRUE(Shows(u"\x1bprompt\tKick reason\tEnter reason:"_s));
  Type("\x1b" "answer ok go away now");
  EXPECT_TRUE(other.Receives("tolvbot", "KICK #c other :go away now"));
  EXPECT_TRUE(Shows(u"#c\tother was kicked by tolvbot (go away now)"_s));
  other.Send("JOIN #c");
  ASSERT_TRUE(Shows(u"#c\t* other has joined #c"_s));

  // Ban learns the address by a WHOIS of its own, which the user never sees.
  const QByteArray host = HostOf(other);
  Type("\x1bmenu 40313 other");
  EXPECT_TRUE(other.Receives("tolvbot", "MODE #c +b *!*@" + host));
  EXPECT_TRUE(Shows(u"#c\t* tolvbot sets mode: +b *!*@"_s + QString::fromUtf8(host)));

  // A channel alone takes "partmsg"; the server's confirmation closes the tab silently
  // (the next join's reply comes after it).
  Type("/part #c");
  EXPECT_TRUE(other.Receives("tolvbot", "PART #c :Gone fishing"));
  ASSERT_NO_FATAL_FAILURE(JoinBoth(other, "#d"));
  Type("\x1bnicks #c");
  EXPECT_TRUE(Shows(u"\x1b" "error\tno channel tab named #c"_s));

  // The user's own reason wins over "quitmsg", and a quit is not followed by a reconnect.
  Type("/quit see you all");
  // The server quotes a user's reason when it passes it on, and when it says goodbye.
  EXPECT_TRUE(other.Receives("tolvbot", "QUIT :\"see you all\""));
  EXPECT_TRUE(Shows(u"Status\t\"see you all\""_s));
  EXPECT_TRUE(Shows(u"\x1bstate\tdisconnected"_s));
  EXPECT_TRUE(Shows(u"Status\t* Disconnected"_s));
  EXPECT_TRUE(Shows(u"#d\t* Disconnected"_s));
  RunUntil([] { return false; }, 2500);  // a reconnect would start on the next poll tick
  EXPECT_EQ(Output().size(), cursor) << Output().mid(cursor).join(u'\n').toStdString();
  EXPECT_EQ(CountOf(u"Status\t* Connecting to 127.0.0.1 (%1)"_s.arg(server.Port())), 1);

  // Nothing of the ban's WHOIS reached any tab.
  for (const QString& line : Output()) {
    EXPECT_FALSE(line.contains(u"End of WHOIS"_s)) << line.toStdString();
    EXPECT_FALSE(line.startsWith(u"Status\tother "_s)) << line.toStdString();
  }
  tolv.closeWriteChannel();
  EXPECT_TRUE(tolv.waitForFinished(5000));
  EXPECT_EQ(tolv.exitCode(), 0);
}

// The ban actions against the server's own replies: the WHOIS the ban is built from, and
// the ban list (with the setter and time ngircd adds to every entry) that Remove ban offers.
TEST_F(HeadlessCommands, BanKickAndRemoveBanLetTheUserBackIn) {
  ASSERT_TRUE(Shows(u"\x1bstate\tconnected"_s));
  Peer other(server.Port(), "other");
  ASSERT_TRUE(other.Registers());
  ASSERT_NO_FATAL_FAILURE(JoinBoth(other, "#c"));
  const QByteArray host = HostOf(other);
  const QString mask = u"*!*@"_s + QString::fromUtf8(host);

  Type("\x1bmenu 40315 +other");
  ASSERT_TRUE(Shows(u"\x1bprompt\tBan/kick reason\tEnter reason:"_s));
  Type("\x1b" "answer ok flooding");
  EXPECT_TRUE(other.Receives("tolvbot", "MODE #c +b " + mask.toUtf8()));
  EXPECT_TRUE(other.Receives("tolvbot", "KICK #c other :flooding"));
  EXPECT_TRUE(Shows(u"#c\t* tolvbot sets mode: +b "_s + mask));
  EXPECT_TRUE(Shows(u"#c\tother was kicked by tolvbot (flooding)"_s));
  other.Send("JOIN #c");
  EXPECT_EQ(other.NextReply("474").value(2), QByteArray("#c"));  // banned from the channel

  Type("\x1bmenu 40423");
  EXPECT_TRUE(Shows(u"\x1blist\t#c banlist\tSelect ban to remove:\tRemove\t"_s + mask));
  Type("\x1b" "answer pick 0");
  EXPECT_TRUE(Shows(u"#c\t* tolvbot sets mode: -b "_s + mask));
  other.Send("JOIN #c");
  EXPECT_TRUE(Shows(u"#c\t* other has joined #c"_s));
}

}  // namespace
