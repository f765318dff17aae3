#include "net/identd.h"

#include "net/socket_transport.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "support/test_app.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct NoErrors : SocketErrorSink {
  void ReportSocketError(int error) override { ADD_FAILURE() << "socket error " << error; }
};

// A query over loopback (so the peer address is a real one), in one send, and what comes
// back: the count ServeIdentd read, the answer, and the lines shown when "show requests" is on.
TEST(Identd, AnswersWithThePortPairAndTheSettings) {
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  store.SetString(u"IdSystem"_s, u"UNIX", 5);
  store.SetString(u"IdUser"_s, u"j\u00f6rg", 5);
  const QByteArray fields = " : USERID : UNIX : j\xC3\xB6rg\r\n";
  const QString asked = u"* Identd request from 127.0.0.1"_s;
  const struct {
    QByteArray query;
    bool show;
    int read;
    QByteArray answer;
    QStringList status;
  } cases[] = {
      {"  66 67 ,  1025\r\n", true, 17, "6667, 1025" + fields,
       {asked, u"* Identd replied: 6667, 1025 : USERID : UNIX : j\u00f6rg"_s}},
      {"\t113\t,\t4000\n", false, 12, "113, 4000" + fields, {}},
      {"1,2\n3,4\r\n", false, 9, "1, 2" + fields, {}},  // up to the first line end
      {",", false, 1, ", " + fields, {}},
      {"6667 1025\r\n", true, 11, "", {asked}},
      {QByteArray("1\0,2\r\n", 6), false, 6, "", {}},  // a NUL ends the query
      {"1\xA0,2\r\n", false, 6, "1\xC2\xA0, 2" + fields, {}},  // Latin-1: an NBSP is no blank
      {"1," + QByteArray(125, '2') + "345\r\n", false, 127, "1, " + QByteArray(125, '2') + fields, {}},
  };
  for (const auto& c : cases) {
    store.SetDword(u"Options"_s, c.show ? kOptIdentdShow : 0);
    int port = 0;
    const int listener = OpenListener(0x7F000001, port);
    const int asker = ConnectToServer("127.0.0.1", port, 2s).socket;
    const int served = AcceptOne(listener, 2s);
    NoErrors sink;
    SendBytes(asker, c.query, sink);
    QStringList status;
    EXPECT_EQ(ServeIdentd(served, store, sink, [&](const QString& line) { status << line; }), c.read);
    QByteArray answer;
    PollSocket(asker, sink, [&](QByteArrayView bytes) { answer.append(bytes); }, 200ms, 20ms);
    EXPECT_EQ(answer, c.answer) << c.query.toStdString();
    EXPECT_EQ(status, c.status);
    CloseSocketQuietly(asker);
    CloseSocketQuietly(served);
  }
}

}  // namespace
