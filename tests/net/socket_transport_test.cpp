#include "net/socket_transport.h"

#include "net/socket_errors.h"
#include "support/scripted_server.h"

#include <QString>
#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct RecordingSink : SocketErrorSink {
  std::vector<int> errors;
  void ReportSocketError(int winsockError) override { errors.push_back(winsockError); }
};

// A SOCK_SEQPACKET pair keeps the boundary of every send, so a test sees how a line was cut.
std::vector<QByteArray> Sends(QStringView text) {
  int pair[2];
  socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair);
  RecordingSink sink;
  std::vector<QByteArray> sends{QByteArray::number(SendLine(pair[0], text, sink))};
  QByteArray buffer(8192, '\0');
  for (ssize_t n; (n = recv(pair[1], buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0;) sends.push_back(buffer.first(n));
  close(pair[0]), close(pair[1]);
  return sink.errors.empty() ? sends : std::vector<QByteArray>{};
}

// A line goes out in pieces of 1024 UTF-16 units (never cutting a surrogate pair) and then
// the rest with one LF; SendLine returns the last send's count.
TEST(SocketTransport, SendLineCutsAt1024UnitsAndEndsWithOneLf) {
  const QString emoji = u"\U0001F600"_s;
  const std::pair<QString, std::vector<QByteArray>> cases[] = {
      {u""_s, {"1", "\n"}},
      {u"caf\u00e9 "_s + emoji, {"11", "caf\xC3\xA9 \xF0\x9F\x98\x80\n"}},
      {QString(1024, u'a'), {"1", QByteArray(1024, 'a'), "\n"}},
      {QString(2050, u'b'), {"3", QByteArray(1024, 'b'), QByteArray(1024, 'b'), "bb\n"}},
      {QString(1024, QChar(0xE9)), {"1", QByteArray("\xC3\xA9").repeated(1024), "\n"}},
      {QString(1023, u'c') + emoji + u"d"_s, {"6", QByteArray(1023, 'c'), "\xF0\x9F\x98\x80" "d\n"}},
  };
  for (const auto& [text, sends] : cases) EXPECT_EQ(Sends(text), sends) << text.size();
}

// Without MSG_NOSIGNAL this test dies of SIGPIPE. The first failing piece ends the line.
TEST(SocketTransport, FailuresAreReportedWithTheirWinsockNumbers) {
  int pair[2];
  socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair);
  RecordingSink sink;
  EXPECT_EQ(SendLineIfAny(pair[0], u"", sink) + SendBytes(pair[0], "", sink), 1);  // nothing sent
  close(pair[1]);
  EXPECT_EQ(SendLine(pair[0], QString(2050, u'x'), sink), -1);
  EXPECT_EQ(SendBytes(pair[0], "reply\r\n", sink), -1);
  close(pair[0]);
  const int unconnected = socket(AF_INET, SOCK_STREAM, 0);
  EXPECT_EQ(ReadChunk(unconnected, sink, [](QByteArrayView) {}), -1);
  CloseSocket(unconnected, sink);
  CloseSocket(kNoSocket, sink);
  CloseSocket(1 << 20, sink);  // far above any open descriptor
  EXPECT_EQ(sink.errors, (std::vector<int>{10058, 10058, 10057, 10009}));
  EXPECT_EQ(WinsockErrorNumber(EADDRINUSE), 10048);
  EXPECT_EQ(WinsockErrorNumber(ENOENT), 10000 + ENOENT);  // no Winsock twin
}

// A poll returns -1 when nothing came; it reads what follows within the drain wait and
// returns the last read's count; 0 once the peer has closed. A read takes its capacity.
TEST(SocketTransport, PollDrainsWhatFollowsAndSeesTheClose) {
  int pair[2];
  socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair);
  RecordingSink sink;
  QByteArray got;
  const auto collect = [&](QByteArrayView bytes) { got.append(bytes); };
  EXPECT_EQ(PollSocket(pair[0], sink, collect), -1);
  write(pair[1], "one\n", 4);
  std::thread later([&] { std::this_thread::sleep_for(20ms), write(pair[1], "two!\n", 5); });
  EXPECT_EQ(PollSocket(pair[0], sink, collect, 10ms, 300ms), 5);
  later.join();
  write(pair[1], "abcdefgh", 8);
  EXPECT_EQ(ReadChunk(pair[0], sink, collect, 5), 5);
  close(pair[1]);
  EXPECT_EQ(PollSocket(pair[0], sink, collect), 0);
  EXPECT_EQ(got, "one\ntwo!\nabcdefgh");
  EXPECT_TRUE(sink.errors.empty());
  close(pair[0]);
}

TEST(SocketTransport, ConnectsWithinItsDeadlineOrSaysWhy) {
  ScriptedServer server;
  const ConnectResult connection = ConnectToServer("localhost", server.Port() + 0x10000, 2s);
  ASSERT_EQ(connection.error, 0);  // the low sixteen bits of the port
  EXPECT_TRUE(server.Send("PING :x\r\n"));
  server.CloseClient(/*reset=*/true);
  RecordingSink sink;
  EXPECT_EQ(PollSocket(connection.socket, sink, [](QByteArrayView) {}, 1s), -1);
  EXPECT_EQ(sink.errors, std::vector<int>{10054});
  CloseSocketQuietly(connection.socket);

  int port = 0;
  CloseSocketQuietly(OpenListener(0x7F000001, port));
  EXPECT_EQ(ConnectToServer("127.0.0.1", port, 2s).error, 10061);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ConnectToServer("no-such-host.invalid", 6667, 3s).error, 11001);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 3500ms);
}

}  // namespace
