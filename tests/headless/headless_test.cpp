// The real program, headless, with a home of its own, against a real ngircd; a second
// user speaks raw IRC from the test.

#include "support/ngircd_fixture.h"
#include "support/raw_irc_user.h"
#include "support/test_app.h"
#include "net/socket_transport.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

#include <poll.h>

using namespace Qt::StringLiterals;

namespace {

// The sending peer of a file offer: takes the client's connection, sends `bytes`, and closes
// only once the client has acknowledged `end` (closing earlier could reset the link).
bool ServeFile(int listener, const QByteArray& bytes, quint32 end) {
  const int peer = AcceptOne(listener, std::chrono::seconds(15));
  quint32 acknowledged = 0;
  bool flowing = peer >= 0 && ::send(peer, bytes.constData(), bytes.size(), MSG_NOSIGNAL) == bytes.size();
  for (uchar ack[4]; flowing && acknowledged != end;) {
    pollfd readable{peer, POLLIN, 0};
    flowing = ::poll(&readable, 1, 15000) == 1 && ::recv(peer, ack, 4, MSG_WAITALL) == 4;
    if (flowing) acknowledged = qFromBigEndian<quint32>(ack);
  }
  CloseSocketQuietly(peer);
  return acknowledged == end;
}

class HeadlessTolv : public ::testing::Test {
 protected:
  void Start(const QStringList& arguments) {
    TestApp();
    ASSERT_TRUE(server.Start());
    WriteFile(u"servers.txt"_s, "Test\t127.0.0.1\t" + QByteArray::number(server.Port()) + "\t\r\n");
    // Reconnecting is on, so that only the user's quit keeps the program offline.
    WriteFile(u"settings.reg"_s,
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv]\n\"server\"=dword:00000000\n"
              "\"nick\"=\"tolvbot\"\n\"email\"=\"me@home\"\n\"fullname\"=\"Tolv Bot\"\n\"tstamps\"=dword:00000000\n"
              "\"snd_enable\"=dword:00000000\n\"Options\"=dword:00000008\n\"partmsg\"=\"Gone fishing\"\n");
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"TOLV_HOME"_s, home.path());
    tolv.setProcessEnvironment(env);
    tolv.start(QStringLiteral(TOLV_BINARY), arguments);
    ASSERT_TRUE(tolv.waitForStarted(5000));
  }
  void TearDown() override {
    tolv.closeWriteChannel();
    if (!tolv.waitForFinished(3000)) tolv.kill();
    tolv.waitForFinished(2000);
  }
  void WriteFile(const QString& name, const QByteArray& bytes) {
    QFile file(home.path() + u'/' + name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  // Written at once: the test may block on a socket next, with no event loop to flush it.
  void Type(const QByteArray& line) {
    tolv.write(line + '\n');
    tolv.waitForBytesWritten(5000);
  }

  // The complete lines the program has written so far.
  const QStringList& Output() {
    pending += QString::fromUtf8(tolv.readAllStandardOutput());
    const qsizetype end = pending.lastIndexOf(u'\n');
    if (end >= 0) output += pending.first(end).split(u'\n');
    if (end >= 0) pending.remove(0, end + 1);
    return output;
  }
  // Waits for `line` among the lines not yet matched, passing over the ones before it.
  ::testing::AssertionResult Shows(const QString& line) {
    qsizetype at = -1;
    RunUntil([&] { return OtherLines(), (at = Output().indexOf(line, cursor)) >= 0; }, 15000);
    if (at < 0)
      return ::testing::AssertionFailure() << "not shown: " << line.toStdString() << "\nshown:\n"
                                           << output.mid(cursor).join(u'\n').toStdString();
    cursor = at + 1;
    return ::testing::AssertionSuccess();
  }
  // The other user's lines so far; the server's pings are answered, or it would drop them.
  QByteArrayList OtherLines() {
    const QByteArrayList lines = other ? other->Lines() : QByteArrayList();
    for (; answered < lines.size(); ++answered)
      if (lines[answered].startsWith("PING ")) other->Send("PONG " + lines[answered].mid(5) + "\r\n");
    return lines;
  }
  // Waits for a line from the program ending in `text` (a trailing colon is optional).
  ::testing::AssertionResult Receives(const QByteArray& text) {
    const auto plain = [](QByteArray line) { return line.replace(" :", " "); };
    qsizetype at = -1;
    RunUntil([&] {
      const QByteArrayList lines = OtherLines();
      for (qsizetype i = received; at < 0 && i < lines.size(); ++i)
        if (lines[i].startsWith(":tolvbot!") && plain(lines[i]).endsWith(plain(text))) at = i;
      return at >= 0;
    }, 15000);
    if (at < 0) return ::testing::AssertionFailure() << "not received: " << text.constData();
    received = at + 1;
    return ::testing::AssertionSuccess();
  }

  NgircdServer server;
  QTemporaryDir home;
  QProcess tolv;
  QString pending;
  QStringList output;
  qsizetype cursor = 0;
  std::unique_ptr<RawIrcUser> other;
  qsizetype answered = 0, received = 0;
};

TEST_F(HeadlessTolv, AConversationWithTypedAndMenuCommands) {
  Start({u"--headless"_s, u"--connect"_s});
  ASSERT_TRUE(Shows(u"Status\tWelcome to the Internet Relay Network tolvbot!~me@127.0.0.1"_s));
  other = std::make_unique<RawIrcUser>(server.Port(), "other");
  Type("\x1btab nowhere");
  EXPECT_TRUE(Shows(u"\x1b" "error\tno tab named nowhere"_s));
  Type("/join #c");
  ASSERT_TRUE(Shows(u"#c\t* Now talking in #c"_s));
  other->Send("JOIN #c\r\n");
  ASSERT_TRUE(Shows(u"#c\t* other has joined #c"_s));

  // {typed, or a menu command and the answers to its prompts; received; shown}
  const struct {
    QByteArrayList typed;
    const char* received;
    const char16_t* shown;
  } steps[] = {
      {{"hello   there "}, " PRIVMSG #c :hello   there", u"#c\t<tolvbot> hello   there"},
      {{"/me waves"}, " PRIVMSG #c :\x01" "ACTION waves\x01", u"#c\t* tolvbot waves"},
      {{"/msg other hi"}, " PRIVMSG other :hi", u"#c\t-> *other* hi"},
      {{"/notice other psst, a secret"}, " NOTICE other :psst, a secret", u"#c\t-> -other- psst, a secret"},
      {{"\x1bmenu 40307 other"}, " MODE #c +o other", u"#c\t* tolvbot sets mode: +o other"},
      {{"\x1bmenu 40110", "\x1b" "answer ok #c", "\x1b" "answer ok #c\tnew topic words"},
       " TOPIC #c :new topic words", u"#c\ttolvbot changes topic to 'new topic words'"},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.typed.front().constData());
    for (const QByteArray& line : step.typed) Type(line);
    EXPECT_TRUE(Receives(step.received));
    EXPECT_TRUE(Shows(QString::fromUtf16(step.shown)));
  }
  // The prompts the menu command asked, and the refusal of an answer with one text only.
  for (const QString& line : {u"\x1bprompt\tTopic input\tEnter channel:\tEnter new topic:"_s,
                              u"\x1b" "error\tOK needs both texts"_s})
    EXPECT_EQ(output.count(line), line.contains(u"prompt"_s) ? 2 : 1) << line.toStdString();
  other->Send("PRIVMSG #c :\x01" "ACTION waves back\x01\r\n");
  EXPECT_TRUE(Shows(u"#c\t* other waves back"_s));
  Type("\x1bnicks #c");
  EXPECT_TRUE(Shows(u"\x1bnicks\t#c\t@other @tolvbot"_s));

  // Ban/kick (reason) learns the address by a WHOIS the user never sees, then asks.
  Type("\x1bmenu 40315 @other");
  ASSERT_TRUE(Shows(u"\x1bprompt\tBan/kick reason\tEnter reason:"_s));
  Type("\x1b" "answer ok flooding");
  EXPECT_TRUE(Receives(" MODE #c +b *!*@127.0.0.1"));
  EXPECT_TRUE(Receives(" KICK #c other :flooding"));
  EXPECT_TRUE(Shows(u"#c\tother was kicked by tolvbot (flooding)"_s));
  other->Send("JOIN #c\r\n");
  EXPECT_TRUE(other->WaitFor(" 474 other #c "));  // banned from the channel
  Type("\x1bmenu 40423");
  EXPECT_TRUE(Shows(u"\x1blist\t#c banlist\tSelect ban to remove:\tRemove\t*!*@127.0.0.1"_s));
  Type("\x1b" "answer pick 0");
  EXPECT_TRUE(Shows(u"#c\t* tolvbot sets mode: -b *!*@127.0.0.1"_s));
  other->Send("JOIN #c\r\n");
  EXPECT_TRUE(Shows(u"#c\t* other has joined #c"_s));
  for (const QString& line : output) EXPECT_FALSE(line.contains(u"End of WHOIS"_s)) << line.toStdString();

  // A bare part takes "partmsg"; the server quotes the quit reason; no reconnect follows.
  Type("/join #d");
  ASSERT_TRUE(Shows(u"#d\t* Now talking in #d"_s));
  other->Send("JOIN #d\r\n");
  ASSERT_TRUE(Shows(u"#d\t* other has joined #d"_s));
  Type("/part #c");
  EXPECT_TRUE(Receives(" PART #c :Gone fishing"));
  Type("/quit see you all");
  EXPECT_TRUE(Receives(" QUIT :\"see you all\""));
  EXPECT_TRUE(Shows(u"Status\t\"see you all\""_s));
  EXPECT_TRUE(Shows(u"\x1bstate\tdisconnected"_s));
  EXPECT_TRUE(Shows(u"Status\t* Disconnected"_s));
  EXPECT_TRUE(Shows(u"#d\t* Disconnected"_s));
  RunUntil([] { return false; }, 2500);  // a reconnect would start on the next poll tick
  EXPECT_EQ(Output().size(), cursor) << Output().mid(cursor).join(u'\n').toStdString();
  tolv.closeWriteChannel();
  EXPECT_TRUE(tolv.waitForFinished(5000));
  EXPECT_EQ(tolv.exitCode(), 0);
}

// A file offer answered through the headless questions: the first try breaks off, the
// second resumes after "File already exist", and the file on disk is the sender's.
TEST_F(HeadlessTolv, AFileOfferIsTakenAndResumedThroughAnswers) {
  Start({u"--headless"_s, u"--connect"_s});
  ASSERT_TRUE(Shows(u"Status\tWelcome to the Internet Relay Network tolvbot!~me@127.0.0.1"_s));
  other = std::make_unique<RawIrcUser>(server.Port(), "other");
  ASSERT_TRUE(other->WaitFor(" 001 other "));
  QByteArray content(300000, Qt::Uninitialized);
  for (qsizetype i = 0; i < content.size(); ++i) content[i] = char(i * 7 + i / 251);
  const QString path = home.path() + u"/got.bin"_s;
  const QByteArray prompt = "\x1bprompt\tTolv DCC Receiving\tUser other is attempting to send you a file";
  const auto offer = [&](int& listener) {
    int port = 0;
    listener = OpenListener(0x7F000001, port);
    other->Send("PRIVMSG tolvbot :\x01" "DCC SEND f.bin 2130706433 " + QByteArray::number(port) + " 300000\x01\r\n");
    return port;
  };

  int listener = -1;
  offer(listener);
  ASSERT_TRUE(Shows(QString::fromUtf8(prompt) + u"\tDestination file:\t"_s + home.path() + u"/downloads/f.bin"_s));
  other->Send("PRIVMSG tolvbot :still there?\r\n");  // the link is served while the question waits
  EXPECT_TRUE(Shows(u"other\t<other> still there?"_s));
  Type("\x1b" "answer accept " + path.toUtf8());
  EXPECT_TRUE(ServeFile(listener, content.first(100000), 100000));
  EXPECT_TRUE(Shows(u"\x1btransfer\tgot.bin\tTransfer incomplete!\t100000\t300000"_s));

  const int port = offer(listener);
  ASSERT_TRUE(Shows(QString::fromUtf8(prompt) + u"\tDestination file:\t"_s + home.path() + u"/downloads/f.bin"_s));
  Type("\x1b" "answer accept " + path.toUtf8());
  ASSERT_TRUE(Shows(u"\x1bprompt\tTolv DCC Receiving\tFile already exist\t"_s + path));
  Type("\x1b" "answer resume");
  const QByteArray resume = " PRIVMSG other :\x01" "DCC RESUME \"f.bin\" " + QByteArray::number(port) + " 100000\x01";
  ASSERT_TRUE(Receives(resume));
  other->Send("PRIVMSG tolvbot :\x01" "DCC ACCEPT \"f.bin\" " + QByteArray::number(port) + " 100000\x01\r\n");
  EXPECT_TRUE(ServeFile(listener, content.sliced(100000), 300000));
  EXPECT_TRUE(Shows(u"\x1btransfer\tgot.bin\tFile received!\t300000\t300000"_s));
  QFile got(path);
  ASSERT_TRUE(got.open(QIODevice::ReadOnly));
  EXPECT_TRUE(got.readAll() == content);
}

// A second process on the same home, headless or not, is turned away unwritten.
TEST_F(HeadlessTolv, ASecondProcessOnTheSameHomeIsTurnedAway) {
  Start({u"--headless"_s});
  Type("/join #x");
  ASSERT_TRUE(Shows(u"Status\t* /join: not connected to server"_s));
  QFile settings(home.path() + u"/settings.reg"_s);
  const QByteArray before = settings.open(QIODevice::ReadOnly) ? settings.readAll() : QByteArray();
  settings.close();
  for (const QStringList& arguments : {QStringList{u"--headless"_s}, QStringList{}}) {
    QProcess second;
    QProcessEnvironment env = tolv.processEnvironment();
    for (const QString& display : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s}) env.remove(display);
    second.setProcessEnvironment(env);
    second.start(QStringLiteral(TOLV_BINARY), arguments);
    ASSERT_TRUE(second.waitForFinished(5000));
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_TRUE(second.readAllStandardError().contains(
        "Tolv is already running with the home folder " + home.path().toUtf8() + " (process " +
        QByteArray::number(tolv.processId()) + ")"));
  }
  ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
  EXPECT_EQ(settings.readAll(), before);
}

}  // namespace
