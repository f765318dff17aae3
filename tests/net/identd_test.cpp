#include "net/identd.h"

#include "net/socket_transport.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "support/test_app.h"

#include <QObject>

#include <cerrno>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <sys/socket.h>

#include <chrono>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

struct RecordingSink : SocketErrorSink {
  std::vector<int> errors;
  void ReportSocketError(int winsockError) override { errors.push_back(winsockError); }
};

// ---- The reply text --------------------------------------------------------------------

struct ReplyCase {
  const char* name;
  QString query;
  std::optional<QString> reply;
};

void PrintTo(const ReplyCase& c, std::ostream* os) { *os << c.name; }

class IdentdReplyTest : public testing::TestWithParam<ReplyCase> {};

TEST_P(IdentdReplyTest, BuildsThePortPairAndTheFields) {
  EXPECT_EQ(BuildIdentdReply(GetParam().query, u"UNIX", u"pocket"), GetParam().reply);
}

INSTANTIATE_TEST_SUITE_P(
    Identd, IdentdReplyTest,
    testing::Values(
        ReplyCase{"BlanksAndCrLf", u"  6667 ,  1025\r\n"_s,
                  u"6667, 1025 : USERID : UNIX : pocket"_s},
        ReplyCase{"Tabs", u"\t113\t,\t4000\n"_s, u"113, 4000 : USERID : UNIX : pocket"_s},
        ReplyCase{"StopsAtTheFirstLineEnd", u"1,2\n3,4\r\n"_s, u"1, 2 : USERID : UNIX : pocket"_s},
        ReplyCase{"BlanksInsideANumber", u"66 67,10 25"_s,
                  u"6667, 1025 : USERID : UNIX : pocket"_s},
        ReplyCase{"OnlyAComma", u",\r\n"_s, u",  : USERID : UNIX : pocket"_s},
        ReplyCase{"NoComma", u"6667 1025\r\n"_s, std::nullopt},
        ReplyCase{"Empty", u""_s, std::nullopt}),
    [](const testing::TestParamInfo<ReplyCase>& info) { return info.param.name; });

// ---- Serving a query -------------------------------------------------------------------

// A query connection over loopback, so the peer address is a real one: `client` is the
// server asking, `served` our end of it.
struct QueryConnection {
  QueryConnection() {
    int port = 0;
    const int listener = OpenListener(0x7F000001, port);
    client = ConnectToServer("127.0.0.1", port, 2s).socket;
    served = AcceptOne(listener, 2s);
  }
  ~QueryConnection() {
    CloseSocketQuietly(client);
    CloseSocketQuietly(served);
  }
  void Ask(const QByteArray& query) const {
    ASSERT_EQ(send(client, query.constData(), query.size(), MSG_NOSIGNAL), query.size());
  }
  QByteArray Answer() const {
    QByteArray answer;
    RecordingSink sink;
    PollSocket(client, sink, [&](QByteArrayView bytes) { answer.append(bytes); }, 200ms, 20ms);
    return answer;
  }
  int client = kNoSocket;
  int served = kNoSocket;
};

class ServeIdentdTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(connection.client, kNoSocket);
    ASSERT_NE(connection.served, kNoSocket);
    SetOptions(kOptIdentdEnable | kOptIdentdShow);
    store.SetString(u"IdSystem"_s, u"UNIX", 5);
    store.SetString(u"IdUser"_s, u"pocket", 7);
  }
  void SetOptions(quint32 options) { store.SetDword(u"Options"_s, qint32(options)); }
  int Serve() {
    return ServeIdentd(connection.served, store, sink,
                       [this](const QString& line) { status.append(line); });
  }

  QTemporaryDir dir;
  SettingsStore store{dir.path()};
  RecordingSink sink;
  QStringList status;
  QueryConnection connection;
};

TEST_F(ServeIdentdTest, RepliesWithCrLfAndShowsBothLines) {
  connection.Ask("  6667 ,  1025\r\n");
  EXPECT_EQ(Serve(), 16);
  EXPECT_EQ(connection.Answer(), "6667, 1025 : USERID : UNIX : pocket\r\n");
  EXPECT_EQ(status, (QStringList{u"* Identd request from 127.0.0.1"_s,
                                 u"* Identd replied: 6667, 1025 : USERID : UNIX : pocket"_s}));
  EXPECT_TRUE(sink.errors.empty());
}

TEST_F(ServeIdentdTest, RepliesSilentlyWithoutTheShowOption) {
  SetOptions(kOptIdentdEnable);
  connection.Ask("113,4000\r\n");
  Serve();
  EXPECT_EQ(connection.Answer(), "113, 4000 : USERID : UNIX : pocket\r\n");
  EXPECT_TRUE(status.isEmpty());
}

TEST_F(ServeIdentdTest, AQueryWithoutACommaIsShownButNotAnswered) {
  connection.Ask("6667 1025\r\n");
  EXPECT_EQ(Serve(), 11);
  EXPECT_EQ(connection.Answer(), "");
  EXPECT_EQ(status, QStringList{u"* Identd request from 127.0.0.1"_s});
}

TEST_F(ServeIdentdTest, NothingWaitingAndAClosedPeerGetNoReply) {
  EXPECT_EQ(Serve(), -1);
  CloseSocketQuietly(std::exchange(connection.client, kNoSocket));
  EXPECT_EQ(Serve(), 0);
  EXPECT_TRUE(status.isEmpty());
  EXPECT_TRUE(sink.errors.empty());
}

// One read takes at most 127 bytes; the rest is the next tick's query.
TEST_F(ServeIdentdTest, ReadsAtMost127BytesPerTick) {
  connection.Ask("1," + QByteArray(125, '2') + "345\r\n");
  EXPECT_EQ(Serve(), 127);
  EXPECT_EQ(connection.Answer(), "1, " + QByteArray(125, '2') + " : USERID : UNIX : pocket\r\n");
  EXPECT_EQ(Serve(), 5);
  EXPECT_EQ(connection.Answer(), "");
}

TEST_F(ServeIdentdTest, RepliesInUtf8AndReadsLatin1Queries) {
  store.SetString(u"IdUser"_s, u"j\u00f6rg", 5);
  connection.Ask("1\xA0,2\r\n");  // not UTF-8: the NBSP is kept as Latin-1, not a blank
  Serve();
  EXPECT_EQ(connection.Answer(), "1\xC2\xA0, 2 : USERID : UNIX : j\xC3\xB6rg\r\n");
}

// ---- The listening thread --------------------------------------------------------------

int FreePort() {
  int port = 0;
  CloseSocketQuietly(OpenListener(0x7F000001, port));
  return port;
}

struct HandOver {
  int socket = kNoSocket;
  bool onMainThread = false;
  std::function<void(int)> Callback() {
    return [this](int accepted) {
      socket = accepted;
      onMainThread = QThread::currentThread() == TestApp().thread();
    };
  }
};

TEST(IdentdThread, HandsTheAcceptedSocketToTheMainThread) {
  TestApp();
  QObject receiver;
  HandOver handOver;
  const int port = FreePort();
  ASSERT_EQ(0, StartIdentd(&receiver, handOver.Callback(), port, 2s));
  const ConnectResult asker = ConnectToServer("127.0.0.1", port, 2s);
  ASSERT_NE(asker.socket, kNoSocket);
  ASSERT_TRUE(RunUntil([&] { return handOver.socket != kNoSocket; }, 2000));
  EXPECT_TRUE(handOver.onMainThread);
  EXPECT_EQ(PeerAddress(handOver.socket), "127.0.0.1");
  EXPECT_EQ(ConnectToServer("127.0.0.1", port, 2s).error, 10061);  // one query per connect
  CloseSocketQuietly(handOver.socket);
  CloseSocketQuietly(asker.socket);
}

TEST(IdentdThread, ClosesTheSocketWhenTheReceiverIsGone) {
  TestApp();
  auto receiver = std::make_unique<QObject>();
  HandOver handOver;
  const int port = FreePort();
  ASSERT_EQ(0, StartIdentd(receiver.get(), handOver.Callback(), port, 2s));
  receiver.reset();
  const ConnectResult asker = ConnectToServer("127.0.0.1", port, 2s);
  ASSERT_NE(asker.socket, kNoSocket);
  RecordingSink sink;
  const bool closed = RunUntil(
      [&] { return PollSocket(asker.socket, sink, [](QByteArrayView) {}, 0us) == 0; }, 2000);
  EXPECT_TRUE(closed);
  EXPECT_EQ(handOver.socket, kNoSocket);
  CloseSocketQuietly(asker.socket);
}

TEST(IdentdThread, EndsSilentlyWhenNoQueryComes) {
  TestApp();
  QObject receiver;
  HandOver handOver;
  const int port = FreePort();
  const auto start = Clock::now();
  ASSERT_EQ(0, StartIdentd(&receiver, handOver.Callback(), port, 1s));
  // The port can be bound again once the identd thread has let it go.
  const auto released = [port] {
    int probe = port;
    const int listener = OpenListener(0, probe);
    CloseSocketQuietly(listener);
    return listener != kNoSocket;
  };
  EXPECT_TRUE(RunUntil(released, 2000));
  EXPECT_GE(Clock::now() - start, 1s);
  EXPECT_EQ(handOver.socket, kNoSocket);
}

TEST(IdentdThread, SaysWhyWhenThePortIsTaken) {
  TestApp();
  QObject receiver;
  HandOver handOver;
  int port = 0;
  const int taken = OpenListener(0, port);
  ASSERT_NE(taken, kNoSocket);
  EXPECT_EQ(StartIdentd(&receiver, handOver.Callback(), port, 1s), EADDRINUSE);
  CloseSocketQuietly(taken);
}

// The real port needs root or cap_net_bind_service; without either the test skips.
TEST(IdentdThread, AnswersOnPort113WhenItCanBeBound) {
  TestApp();
  QObject receiver;
  HandOver handOver;
  if (StartIdentd(&receiver, handOver.Callback(), kIdentdPort, 2s) != 0)
    GTEST_SKIP() << "port 113 cannot be bound here";
  const ConnectResult asker = ConnectToServer("127.0.0.1", kIdentdPort, 2s);
  ASSERT_NE(asker.socket, kNoSocket);
  ASSERT_TRUE(RunUntil([&] { return handOver.socket != kNoSocket; }, 2000));
  ASSERT_EQ(send(asker.socket, "6667, 1025\r\n", 12, MSG_NOSIGNAL), 12);

  QTemporaryDir dir;
  SettingsStore store(dir.path());
  store.SetDword(u"Options"_s, 0);
  store.SetString(u"IdSystem"_s, u"UNIX", 5);
  store.SetString(u"IdUser"_s, u"pocket", 7);
  RecordingSink sink;
  ServeIdentd(handOver.socket, store, sink, [](const QString&) {});
  QByteArray answer;
  PollSocket(asker.socket, sink, [&](QByteArrayView bytes) { answer.append(bytes); }, 1s);
  EXPECT_EQ(answer, "6667, 1025 : USERID : UNIX : pocket\r\n");
  CloseSocketQuietly(handOver.socket);
  CloseSocketQuietly(asker.socket);
}

}  // namespace
