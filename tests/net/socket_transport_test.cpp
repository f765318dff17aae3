#include "net/socket_transport.h"

#include "net/socket_errors.h"
#include "support/scripted_server.h"

#include <QString>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

struct RecordingSink : SocketErrorSink {
  std::vector<int> errors;
  void ReportSocketError(int winsockError) override { errors.push_back(winsockError); }
};

// Two connected local sockets, closed at the end of the test. A SOCK_SEQPACKET pair
// keeps the boundary of every send, so a test can see how a line was cut.
struct SocketPair {
  explicit SocketPair(int type = SOCK_STREAM) {
    int fds[2];
    EXPECT_EQ(socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, fds), 0);
    near = fds[0];
    far = fds[1];
  }
  ~SocketPair() {
    CloseFar();
    if (near >= 0) close(near);
  }
  void CloseFar() {
    if (far >= 0) close(far);
    far = -1;
  }
  // Every record waiting on the far end, one entry per send.
  std::vector<QByteArray> FarRecords() const {
    std::vector<QByteArray> records;
    QByteArray buffer(8192, '\0');
    for (ssize_t n; (n = recv(far, buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0;)
      records.push_back(buffer.first(n));
    return records;
  }
  void WriteFar(const QByteArray& bytes) const {
    ASSERT_EQ(write(far, bytes.constData(), bytes.size()), bytes.size());
  }
  int near = -1;
  int far = -1;
};

// A loopback port with nothing listening on it (it was just in use, so it is free).
int ClosedPort() {
  int port = 0;
  CloseSocketQuietly(OpenListener(0x7F000001, port));
  return port;
}

// ---- How a line is cut and encoded ---------------------------------------------------------

struct LineCase {
  const char* name;
  QString text;
  std::vector<QByteArray> sends;
};

void PrintTo(const LineCase& c, std::ostream* os) { *os << c.name; }

class SendLineTest : public testing::TestWithParam<LineCase> {};

TEST_P(SendLineTest, SendsPiecesThenTheRestWithOneLf) {
  SocketPair pair(SOCK_SEQPACKET);
  RecordingSink sink;
  const int result = SendLine(pair.near, GetParam().text, sink);
  const std::vector<QByteArray> sends = pair.FarRecords();
  EXPECT_EQ(sends, GetParam().sends);
  EXPECT_EQ(result, GetParam().sends.back().size());
  EXPECT_TRUE(sink.errors.empty());
}

const QString kEmoji = u"\U0001F600"_s;  // one character, two UTF-16 units, four UTF-8 bytes

INSTANTIATE_TEST_SUITE_P(
    SocketTransport, SendLineTest,
    testing::Values(
        LineCase{"Empty", u""_s, {"\n"}},
        LineCase{"Short", u"PRIVMSG #a :hi"_s, {"PRIVMSG #a :hi\n"}},
        LineCase{"Exactly1024", QString(1024, u'a'), {QByteArray(1024, 'a'), "\n"}},
        LineCase{"Units2050",
                 QString(2050, u'b'),
                 {QByteArray(1024, 'b'), QByteArray(1024, 'b'), "bb\n"}},
        LineCase{"Utf8", u"caf\u00e9 "_s + kEmoji, {"caf\xC3\xA9 \xF0\x9F\x98\x80\n"}},
        // 1024 units of two bytes each are one piece of 2048 bytes.
        LineCase{"PieceOfTwoByteCharacters",
                 QString(1024, QChar(0xE9)),
                 {QByteArray(1024, '\0').replace('\0', "\xC3\xA9"), "\n"}},
        // A pair that would straddle unit 1024 moves whole into the next piece.
        LineCase{"PairNotSplit",
                 QString(1023, u'c') + kEmoji + u"d"_s,
                 {QByteArray(1023, 'c'), "\xF0\x9F\x98\x80" "d\n"}}),
    [](const testing::TestParamInfo<LineCase>& info) { return info.param.name; });

TEST(SocketTransport, SendLineIfAnySendsNothingForAnEmptyText) {
  SocketPair pair(SOCK_SEQPACKET);
  RecordingSink sink;
  EXPECT_EQ(SendLineIfAny(pair.near, u"", sink), 1);
  EXPECT_TRUE(pair.FarRecords().empty());
  EXPECT_EQ(SendLineIfAny(pair.near, u"PING x", sink), 1);
  EXPECT_EQ(pair.FarRecords(), std::vector<QByteArray>{"PING x\n"});
}

// Without MSG_NOSIGNAL this test dies of SIGPIPE. The first failing piece ends the line:
// one report, no second attempt.
TEST(SocketTransport, SendToAClosedPeerReportsOnceAndStops) {
  SocketPair pair;
  pair.CloseFar();
  RecordingSink sink;
  EXPECT_EQ(SendLine(pair.near, QString(2050, u'x'), sink), -1);
  EXPECT_EQ(sink.errors, std::vector<int>{10058});
  EXPECT_EQ(SendBytes(pair.near, "reply\r\n", sink), -1);
  EXPECT_EQ(sink.errors.size(), 2u);
}

// ---- Reading ---------------------------------------------------------------------------

struct Collector {
  QByteArray bytes;
  int calls = 0;
  std::function<void(QByteArrayView)> Sink() {
    return [this](QByteArrayView chunk) {
      bytes.append(chunk);
      ++calls;
    };
  }
};

TEST(SocketTransport, PollDrainsWritesThatFollowWithinTheDrainWait) {
  SocketPair pair;
  RecordingSink sink;
  Collector got;
  pair.WriteFar("one\n");
  std::thread later([&] {
    std::this_thread::sleep_for(20ms);
    pair.WriteFar("two!\n");
  });
  const int result = PollSocket(pair.near, sink, got.Sink(), 10ms, 300ms);
  later.join();
  EXPECT_EQ(got.bytes, "one\ntwo!\n");
  EXPECT_EQ(got.calls, 2);
  EXPECT_EQ(result, 5);  // the last read's count
}

TEST(SocketTransport, PollReturnsZeroWhenThePeerClosedAfterItsLastBytes) {
  SocketPair pair;
  RecordingSink sink;
  Collector got;
  pair.WriteFar("bye\n");
  pair.CloseFar();
  EXPECT_EQ(PollSocket(pair.near, sink, got.Sink()), 0);
  EXPECT_EQ(got.bytes, "bye\n");
  EXPECT_EQ(PollSocket(pair.near, sink, got.Sink()), 0);
  EXPECT_EQ(got.calls, 1);
  EXPECT_TRUE(sink.errors.empty());
}

TEST(SocketTransport, ReadChunkTakesAtMostItsCapacity) {
  SocketPair pair;
  RecordingSink sink;
  Collector got;
  pair.WriteFar("abcdefgh");
  EXPECT_EQ(ReadChunk(pair.near, sink, got.Sink(), 5), 5);
  EXPECT_EQ(got.bytes, "abcde");
}

TEST(SocketTransport, ReadChunkOnAnUnconnectedSocketReports) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  RecordingSink sink;
  Collector got;
  EXPECT_EQ(ReadChunk(fd, sink, got.Sink()), -1);
  EXPECT_EQ(sink.errors, std::vector<int>{10057});
  CloseSocket(fd, sink);
  EXPECT_EQ(sink.errors.size(), 1u);
}

TEST(SocketTransport, CloseSocketReportsAFailingClose) {
  RecordingSink sink;
  CloseSocket(kNoSocket, sink);
  EXPECT_TRUE(sink.errors.empty());
  CloseSocket(1 << 20, sink);  // far above any open descriptor
  EXPECT_EQ(sink.errors, std::vector<int>{10009});
}

// ---- Connecting ------------------------------------------------------------------------

TEST(SocketTransport, ConnectsAndALineArrivesByteForByte) {
  ScriptedServer server;
  const ConnectResult connection = ConnectToServer("127.0.0.1", server.Port(), 2s);
  ASSERT_NE(connection.socket, kNoSocket);
  EXPECT_EQ(connection.error, 0);
  RecordingSink sink;
  EXPECT_EQ(SendLine(connection.socket, QString(1024, u'z'), sink), 1);
  const QByteArray expected = QByteArray(1024, 'z') + "\n";
  EXPECT_TRUE(server.WaitForBytes([&](const QByteArray& bytes) { return bytes.size() >= 1025; }));
  EXPECT_EQ(server.Received(), expected);
  CloseSocketQuietly(connection.socket);
}

TEST(SocketTransport, ConnectUsesTheLowSixteenBitsOfThePort) {
  ScriptedServer server;
  const ConnectResult connection = ConnectToServer("localhost", server.Port() + 0x10000, 2s);
  EXPECT_EQ(connection.error, 0);
  EXPECT_TRUE(server.WaitForClient());
  CloseSocketQuietly(connection.socket);
}

TEST(SocketTransport, ARefusedConnectionGives10061) {
  const ConnectResult connection = ConnectToServer("127.0.0.1", ClosedPort(), 2s);
  EXPECT_EQ(connection.socket, kNoSocket);
  EXPECT_EQ(connection.error, 10061);
}

TEST(SocketTransport, AnUnknownHostGives11001Quickly) {
  const auto start = Clock::now();
  const ConnectResult connection = ConnectToServer("no-such-host.invalid", 6667, 3s);
  EXPECT_EQ(connection.socket, kNoSocket);
  EXPECT_EQ(connection.error, 11001);
  EXPECT_LT(Clock::now() - start, 3500ms);
}

// A listener whose queue is full and that never accepts drops further SYNs, so the
// connect can only end by the time-out.
TEST(SocketTransport, AConnectThatGetsNoAnswerTimesOutWith10060) {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(0x7F000001);
  socklen_t size = sizeof address;
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
  ASSERT_EQ(listen(listener, 0), 0);
  ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
  const int port = ntohs(address.sin_port);
  std::vector<int> queued;
  ConnectResult connection;
  for (int i = 0; i < 4 && connection.error != 10060; ++i) {
    connection = ConnectToServer("127.0.0.1", port, 300ms);
    if (connection.socket != kNoSocket) queued.push_back(connection.socket);
  }
  EXPECT_EQ(connection.error, 10060);
  EXPECT_EQ(connection.socket, kNoSocket);
  for (int fd : queued) CloseSocketQuietly(fd);
  close(listener);
}

TEST(SocketTransport, AServerThatNeverSpeaksDoesNotHoldThePoll) {
  ScriptedServer server;
  const ConnectResult connection = ConnectToServer("127.0.0.1", server.Port(), 2s);
  ASSERT_NE(connection.socket, kNoSocket);
  RecordingSink sink;
  Collector got;
  const auto start = Clock::now();
  EXPECT_EQ(PollSocket(connection.socket, sink, got.Sink()), -1);
  EXPECT_LT(Clock::now() - start, 500ms);
  EXPECT_TRUE(server.Send("PING :x\r\n"));
  EXPECT_EQ(PollSocket(connection.socket, sink, got.Sink(), 1s), 9);
  EXPECT_EQ(got.bytes, "PING :x\r\n");
  EXPECT_TRUE(server.CloseClient());
  EXPECT_EQ(PollSocket(connection.socket, sink, got.Sink(), 1s), 0);
  EXPECT_TRUE(sink.errors.empty());
  CloseSocketQuietly(connection.socket);
}

TEST(SocketTransport, APeerResetIsReportedAs10054) {
  ScriptedServer server;
  const ConnectResult connection = ConnectToServer("127.0.0.1", server.Port(), 2s);
  ASSERT_NE(connection.socket, kNoSocket);
  EXPECT_TRUE(server.CloseClient(/*reset=*/true));
  RecordingSink sink;
  Collector got;
  EXPECT_EQ(PollSocket(connection.socket, sink, got.Sink(), 1s), -1);
  EXPECT_EQ(sink.errors, std::vector<int>{10054});
  CloseSocketQuietly(connection.socket);
}

// ---- Listening -------------------------------------------------------------------------

TEST(SocketTransport, ListenerOnPortZeroReadsBackThePortAndAcceptsOne) {
  int port = 0;
  const int listener = OpenListener(0x7F000001, port);
  ASSERT_NE(listener, kNoSocket);
  ASSERT_GT(port, 0);
  const ConnectResult client = ConnectToServer("127.0.0.1", port, 2s);
  ASSERT_NE(client.socket, kNoSocket);
  const int accepted = AcceptOne(listener, 2s);
  ASSERT_NE(accepted, kNoSocket);
  EXPECT_EQ(PeerAddress(accepted), "127.0.0.1");
  EXPECT_EQ(ConnectToServer("127.0.0.1", port, 2s).error, 10061);  // one connection only
  CloseSocketQuietly(accepted);
  CloseSocketQuietly(client.socket);
}

TEST(SocketTransport, AcceptOneClosesTheListenerAfterItsTimeOut) {
  int port = 0;
  const int listener = OpenListener(0x7F000001, port);
  ASSERT_NE(listener, kNoSocket);
  const auto start = Clock::now();
  EXPECT_EQ(AcceptOne(listener, 50ms), kNoSocket);
  EXPECT_GE(Clock::now() - start, 50ms);
  EXPECT_EQ(ConnectToServer("127.0.0.1", port, 2s).error, 10061);
}

TEST(SocketTransport, ABusyPortCannotBeOpenedTwice) {
  int port = 0;
  const int listener = OpenListener(0x7F000001, port);
  ASSERT_NE(listener, kNoSocket);
  int same = port;
  EXPECT_EQ(OpenListener(0x7F000001, same), kNoSocket);
  EXPECT_EQ(ListenAndAccept(0x7F000001, same, 10ms), kNoSocket);
  CloseSocketQuietly(listener);
}

TEST(SocketTransport, PeerAddressIsEmptyWithoutAnIpv4Peer) {
  SocketPair pair;
  EXPECT_EQ(PeerAddress(pair.near), "");
  EXPECT_EQ(PeerAddress(kNoSocket), "");
}

}  // namespace
