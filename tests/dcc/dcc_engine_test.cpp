// Two clients in one process, each with its own context, files and sockets, their DCC
// requests carried between them as server lines: chats, transfers with resume and
// passive offers, refusals, and peers that misbehave (played by raw sockets here).

#include "dcc/dcc_chat.h"
#include "dcc/dcc_engine.h"
#include "dcc/dcc_transfer.h"
#include "net/socket_transport.h"
#include "settings/settings_flags.h"
#include "support/file_bytes.h"
#include "support/styled_lines.h"
#include "support/test_app.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class Peer : public StyledClient {
 public:
  explicit Peer(const QString& nick) : nick(nick) {
    TestApp();
    settings.SetDword(u"DCC", 0x3000);
    settings.SetString(u"LocalHost", u"127.0.0.1"_s, 30);
    settings.SetString(u"DCCpath", Downloads(), 250);
    QDir().mkpath(Downloads());
    ctx.session.currentNick = nick;
    ctx.dccEngine.peerTimeout = 5s;
    ctx.dccEngine.stallTimeout = 5s;
    ctx.dccEngine.lastAckTimeout = 5s;
  }
  QString Downloads() const { return dir.path() + u"/downloads/"_s; }

  // What this client sent to the server, delivered to `to` as the server relays it.
  void RelayTo(Peer& to) {
    for (const QByteArray& line : Sent().split('\n'))
      if (line.startsWith("PRIVMSG ") || line.startsWith("NOTICE "))
        to.Receive(u':' + nick + u"!u@h "_s + QString::fromUtf8(line));
  }

  DccTransfer* Transfer(TabKind kind) {
    for (int i = ctx.tabs.Count() - 1; i >= 0; --i)
      if (ctx.tabs.At(i)->kind == kind) return ctx.dccEngine.TransferOf(ctx.tabs.At(i)->id);
    return nullptr;
  }
  QString StatusOf(TabKind kind) {
    const DccTransfer* t = Transfer(kind);
    return t ? t->Status() : u"(none)"_s;
  }

  QStringList Lines(int position) const {
    QStringList out;
    for (qsizetype i = 0; i < ctx.tabs.At(position)->lines->LineCount(); ++i)
      out << ctx.tabs.At(position)->lines->Line(i).text;
    return out;
  }

  QString nick;
};

QByteArray RandomBytes(qsizetype size) {
  QByteArray bytes(size, Qt::Uninitialized);
  QRandomGenerator generator(7);
  generator.fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
  return bytes;
}

bool Exchange(Peer& a, Peer& b, const std::function<bool()>& done, int ms = 10000) {
  return RunUntil([&] {
    a.RelayTo(b);
    b.RelayTo(a);
    return done();
  }, ms);
}

// us -> us across the 4 GiB mark, more than the socket buffers hold: bob resumes a partial
// file, the rest arrives byte for byte, and the wrapped acknowledgements still confirm the
// last byte at once (not after the 60 s wait). Sparse files keep the disk nearly empty.
TEST(DccEngine, FileResumedAcross4GiB) {
  Peer alice(u"alice"_s), bob(u"bob"_s);
  alice.ctx.dccEngine.lastAckTimeout = 60s;
  const qint64 size = (qint64(1) << 32) + (1 << 20);
  const QByteArray tail = RandomBytes(24 << 20);
  for (auto [path, length] : {std::pair{alice.dir.path() + u"/my file.bin"_s, size},
                              std::pair{bob.Downloads() + u"my_file.bin"_s, size - tail.size()}}) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(length));
    if (length == size) {
      ASSERT_TRUE(file.seek(size - tail.size()) && file.write(tail) == tail.size());
    }
  }
  bob.shell.dccReceiveAnswers = {DccChoice::Accept};
  bob.shell.dccExistingAnswers = {DccChoice::Resume};
  alice.ctx.dccEngine.OfferFile(u"bob"_s, alice.dir.path() + u"/my file.bin"_s, 8192);
  // Both ends finish on their own threads: wait for each, not only the sender.
  ASSERT_TRUE(Exchange(alice, bob, [&] {
    return alice.StatusOf(TabKind::DccSend) == u"File sent!"_s && bob.StatusOf(TabKind::DccRecv) == u"File received!"_s;
  }, 20000)) << alice.StatusOf(TabKind::DccSend).toStdString();
  EXPECT_EQ(bob.StatusOf(TabKind::DccRecv), u"File received!"_s);
  QFile received(bob.Downloads() + u"my_file.bin"_s);
  ASSERT_TRUE(received.open(QIODevice::ReadOnly) && received.seek(size - tail.size()));
  EXPECT_TRUE(received.readAll() == tail);
  EXPECT_EQ(bob.shell.dccAsked, (QStringList{u"receive alice "_s + bob.Downloads() + u"my_file.bin"_s,
                                             u"existing "_s + bob.Downloads() + u"my_file.bin resume"_s}));
  EXPECT_TRUE(alice.StatusLines().contains(u"* DCC SEND my_file.bin to bob: File sent!"_s));
  EXPECT_TRUE(bob.StatusLines().contains(u"* DCC RECV my_file.bin from alice: File received!"_s));
}

TEST(DccEngine, ChatBothWaysWithLongLinesAndLog) {
  Peer alice(u"alice"_s), bob(u"bob"_s);
  SetFlag(bob.settings, u"Files", kLogDccChat, true);
  bob.settings.SetString(u"logpath", bob.dir.path() + u'/', 250);
  bob.shell.dccChatAnswers = {DccChoice::Accept};
  alice.ctx.dccEngine.StartChat(u"bob"_s);
  const auto chatOf = [](Peer& p) { return p.ctx.dccEngine.ChatOf(p.ctx.tabs.At(p.ctx.tabs.Count() - 1)->id); };
  ASSERT_TRUE(Exchange(alice, bob, [&] {
    return chatOf(alice)->CurrentState() == DccChat::State::Connected &&
           chatOf(bob)->CurrentState() == DccChat::State::Connected;
  }));
  const QString longLine = QString(2500, u'x');
  chatOf(alice)->Say(longLine);
  chatOf(bob)->Say(u"h\u00e9llo"_s);
  ASSERT_TRUE(RunUntil([&] { return bob.Lines(1).contains(u"<alice> "_s + longLine); }));
  ASSERT_TRUE(RunUntil([&] { return alice.Lines(1).contains(u"<bob> h\u00e9llo"_s); }));
  alice.ctx.dccEngine.CloseTab(alice.ctx.tabs.At(1)->id);
  ASSERT_TRUE(RunUntil([&] { return bob.Lines(1).contains(u"DCC session closed"_s); }));
  EXPECT_EQ(alice.ctx.tabs.Count(), 1);
  const QStringList shown = bob.Shown().filter(QRegularExpression(u"^alice\\|"_s));
  EXPECT_EQ(shown.mid(0, 2), (QStringList{u"alice|DCC Chat Session|Info2"_s, u"alice|Client: alice (127.0.0.1)|Normal"_s}));
  EXPECT_EQ(shown.mid(3), (QStringList{u"alice|Acknowledging chat request...|Ping"_s,
                                      u"alice|DCC Chat connection established|Ping"_s,
                                      u"alice|<bob> h\u00e9llo|Normal"_s, u"alice|<alice> "_s + longLine + u"|Normal"_s,
                                      u"alice|DCC session closed|Ping"_s}));
  const QStringList logs = QDir(bob.dir.path()).entryList({u"DCC_alice.*.txt"_s});
  ASSERT_EQ(logs.size(), 1);
  EXPECT_TRUE(ReadBytes(bob.dir.path() + u'/' + logs[0]).contains("<bob> h\xc3\xa9llo\r\n"));
}

// Offers that name no way to reach the peer, and a RESUME past the end, are refused on
// Status; nothing is opened, asked or sent.
TEST(DccEngine, RefusesOffersWithoutAddressAndResumesBeyondTheFile) {
  Peer alice(u"alice"_s), bob(u"bob"_s);
  for (const char* offer : {"\1DCC SEND f.bin 0 5000 10\1", "\1DCC SEND f.bin 2130706433 0 10\1",
                            "\1DCC CHAT chat 0 5000\1"})
    bob.Receive(u":alice!u@h PRIVMSG bob :"_s + QString::fromLatin1(offer));
  EXPECT_EQ(bob.StatusLines(), (QStringList{u"* DCC SEND from alice refused: no address or port"_s,
                                            u"* DCC SEND from alice refused: no address or port"_s,
                                            u"* DCC CHAT from alice refused: no address or port"_s}));
  EXPECT_EQ(bob.ctx.tabs.Count(), 1);
  EXPECT_TRUE(bob.shell.dccAsked.isEmpty());

  WriteBytes(alice.dir.path() + u"/f.bin"_s, QByteArray(100, 'x'));
  alice.ctx.dccEngine.OfferFile(u"bob"_s, alice.dir.path() + u"/f.bin"_s, 512);
  const int port = alice.Transfer(TabKind::DccSend)->port;
  alice.Sent();
  for (int position : {100, 5000})
    alice.Receive(u":bob!u@h PRIVMSG alice :\1DCC RESUME f.bin %1 %2\1"_s.arg(port).arg(position));
  EXPECT_EQ(alice.Sent(), QByteArray());
  EXPECT_EQ(alice.StatusLines().mid(0, 2),
            (QStringList{u"* DCC RESUME from bob refused: position 100 is not below the file size 100"_s,
                         u"* DCC RESUME from bob refused: position 5000 is not below the file size 100"_s}));
}

struct DestinationCase {
  const char* name;
  int policy;  // the "Send:" nibble of "DCC"
  qsizetype existing;  // bytes of a file of that name already there; -1 for none
  QList<DccChoice> answers;  // receive question, then existing-file question
  QString offered;
  QString expectedFile;  // in the download folder; "" for no transfer
  QByteArray expectedSent;  // what bob sends: a RESUME, or nothing
  qsizetype expectedKept;  // bytes of the existing file left as they were
};

class DestinationTest : public ::testing::TestWithParam<DestinationCase> {};

// Where an offered file goes, and that nothing already there is lost unless the user
// chose Overwrite. The offers name a port nobody listens on: only the start matters.
TEST_P(DestinationTest, NeverReplacesWithoutOverwrite) {
  const DestinationCase& c = GetParam();
  Peer bob(u"bob"_s);
  SetNibble(bob.settings, u"DCC", kDccSendPolicyShift, c.policy);
  const QByteArray old(std::max<qsizetype>(c.existing, 0), 'o');
  if (c.existing >= 0) WriteBytes(bob.Downloads() + u"f.bin"_s, old);
  if (!c.answers.isEmpty()) bob.shell.dccReceiveAnswers = {c.answers.front()};
  bob.shell.dccExistingAnswers = c.answers.mid(1);
  bob.Sent();
  bob.Receive(u":alice!u@h PRIVMSG bob :\1DCC SEND "_s + c.offered + u" 2130706433 1 1000\1"_s);
  const DccTransfer* transfer = bob.Transfer(TabKind::DccRecv);
  EXPECT_EQ(transfer ? transfer->localName : QString(), c.expectedFile);
  EXPECT_EQ(bob.Sent(), c.expectedSent);
  if (c.existing >= 0) {
    EXPECT_TRUE(ReadBytes(bob.Downloads() + u"f.bin"_s).startsWith(old.left(c.expectedKept)));
  }
  EXPECT_FALSE(QFile::exists(bob.dir.path() + u"/.f.bin"_s));
}

INSTANTIATE_TEST_SUITE_P(
    Offers, DestinationTest,
    ::testing::Values(
        DestinationCase{"AskNew", 0, -1, {DccChoice::Accept}, u"f.bin"_s, u"f.bin"_s, "", 0},
        DestinationCase{"AskCancel", 0, -1, {DccChoice::Cancel}, u"f.bin"_s, u""_s, "", 0},
        DestinationCase{"AskExistingCancel", 0, 10, {DccChoice::Accept, DccChoice::Cancel}, u"f.bin"_s, u""_s, "", 10},
        DestinationCase{"AskExistingResume", 0, 10, {DccChoice::Accept, DccChoice::Resume}, u"f.bin"_s,
                        u"f.bin"_s, "PRIVMSG alice :\1DCC RESUME \"f.bin\" 1 10\1\n", 10},
        DestinationCase{"AskExistingOverwrite", 0, 10, {DccChoice::Accept, DccChoice::Overwrite}, u"f.bin"_s,
                        u"f.bin"_s, "", 0},
        DestinationCase{"AutoResumesAShorterFile", 1, 10, {}, u"f.bin"_s, u"f.bin"_s,
                        "PRIVMSG alice :\1DCC RESUME \"f.bin\" 1 10\1\n", 10},
        DestinationCase{"AutoTakesANewNameBesideAWholeFile", 1, 1000, {}, u"f.bin"_s, u"f(1).bin"_s, "", 1000},
        DestinationCase{"HostileNameStaysInTheFolder", 1, -1, {}, u"\"../../.f.bin\""_s, u"%2Ef.bin"_s, "", 0}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(DccEngine, IgnorePolicyAndIgnoreAnswerAddTheSender) {
  Peer bob(u"bob"_s);
  bob.shell.dccChatAnswers = {DccChoice::Ignore};
  bob.Receive(u":alice!u@h PRIVMSG bob :\1DCC CHAT chat 2130706433 1\1"_s);
  SetNibble(bob.settings, u"DCC", kDccSendPolicyShift, 2);
  bob.Receive(u":carol!u@h PRIVMSG bob :\1DCC SEND f 2130706433 1 5\1"_s);
  bob.Receive(u":alice!u@h PRIVMSG bob :\1DCC SEND f 2130706433 1 5\1"_s);  // ignored now: dropped
  EXPECT_EQ(bob.StatusLines(), (QStringList{u"* Added alice to ignore list"_s, u"* Added carol to ignore list"_s}));
  EXPECT_EQ(bob.shell.dccAsked, QStringList{u"chat alice"_s});
}

struct MisbehaviourCase {
  const char* name;
  qsizetype sendBytes;  // of the 100000 offered
  bool close;           // then close; otherwise stall
  const char* status;
};

class MisbehaviourTest : public ::testing::TestWithParam<MisbehaviourCase> {};

TEST_P(MisbehaviourTest, LeavesAClearLineAndAWorkingClient) {
  const MisbehaviourCase& c = GetParam();
  Peer bob(u"bob"_s);
  bob.ctx.dccEngine.stallTimeout = 300ms;
  SetNibble(bob.settings, u"DCC", kDccSendPolicyShift, 1);
  int port = 0;
  const int listener = OpenListener(0x7F000001, port);
  bob.Receive(u":evil!u@h PRIVMSG bob :\1DCC SEND f.bin 2130706433 %1 100000\1"_s.arg(port));
  int sender = AcceptOne(listener, 5s);
  ASSERT_GE(sender, 0);
  const QByteArray junk = RandomBytes(c.sendBytes);
  ASSERT_EQ(::send(sender, junk.constData(), junk.size(), MSG_NOSIGNAL), junk.size());
  if (c.close) CloseSocketQuietly(std::exchange(sender, -1));
  ASSERT_TRUE(RunUntil([&] { return bob.StatusOf(TabKind::DccRecv) == QString::fromLatin1(c.status); }))
      << bob.StatusOf(TabKind::DccRecv).toStdString();
  EXPECT_EQ(bob.StatusLines().last(), u"* DCC RECV f.bin from evil: "_s + QString::fromLatin1(c.status));
  EXPECT_TRUE(ReadBytes(bob.Downloads() + u"f.bin"_s) == junk.left(100000));
  bob.Receive(u":alice!u@h PRIVMSG bob :\1DCC CHAT chat 0 1\1"_s);  // still answering
  EXPECT_EQ(bob.StatusLines().last(), u"* DCC CHAT from alice refused: no address or port"_s);
  CloseSocketQuietly(sender);
}

INSTANTIATE_TEST_SUITE_P(
    Peers, MisbehaviourTest,
    ::testing::Values(MisbehaviourCase{"ClosesEarly", 30000, true, "Transfer incomplete!"},
                      MisbehaviourCase{"Stalls", 30000, false, "Transfer incomplete!"},
                      MisbehaviourCase{"SendsMoreThanOffered", 150000, false, "File received!"}),
    [](const auto& info) { return std::string(info.param.name); });

// A passive offer: we listen, answer with our port and the token, and the peer connects.
TEST(DccEngine, PassiveOfferIsAnsweredByListening) {
  Peer bob(u"bob"_s);
  SetNibble(bob.settings, u"DCC", kDccSendPolicyShift, 1);
  bob.Sent();
  bob.Receive(u":nat!u@h PRIVMSG bob :\1DCC SEND \"p.bin\" 16843009 0 5000 77\1"_s);
  const QByteArray sent = bob.Sent();
  const QRegularExpression answer(u"^PRIVMSG nat :\x01\x44\x43\x43 SEND \"p.bin\" 2130706433 (\\d+) 5000 77\x01\n$"_s);
  const auto match = answer.match(QString::fromUtf8(sent));
  ASSERT_TRUE(match.hasMatch()) << sent.toStdString();
  const ConnectResult link = ConnectToServer("127.0.0.1", match.captured(1).toInt(), 5s);
  ASSERT_GE(link.socket, 0);
  const QByteArray content = RandomBytes(5000);
  ::send(link.socket, content.constData(), content.size(), MSG_NOSIGNAL);
  ASSERT_TRUE(RunUntil([&] { return bob.StatusOf(TabKind::DccRecv) == u"File received!"_s; }));
  EXPECT_TRUE(ReadBytes(bob.Downloads() + u"p.bin"_s) == content);
  char ack[4];
  EXPECT_TRUE(RunUntil([&] { return ::recv(link.socket, ack, 4, MSG_DONTWAIT | MSG_PEEK) == 4; }));
  ::recv(link.socket, ack, 4, 0);
  CloseSocketQuietly(link.socket);
}

}  // namespace
