#include "dcc/dcc_chat.h"

#include "dcc/dcc_engine.h"
#include "dcc/dcc_link.h"
#include "net/socket_transport.h"
#include "views/text_decoding.h"

#include <QSocketNotifier>

#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kReadChunk = 64 * 1024;
// One readiness reads at most this much, so a flood cannot hold the window's thread;
// the notifier calls again for the rest.
constexpr qsizetype kReadBudget = 256 * 1024;
// A peer that sends no line end: what it sent is shown in lines of this many bytes
// rather than kept without bound.
constexpr qsizetype kMaxLineBytes = 16 * 1024;

// A chat send that cannot go out at once means a peer that reads nothing: the session
// ends, as after any failed send.
class FailureFlag : public SocketErrorSink {
 public:
  void ReportSocketError(int) override { failed = true; }
  bool failed = false;
};

}  // namespace

DccChat::DccChat(DccEngine& engine, TabId tab, const QString& nick)
    : engine_(engine), tab_(tab), nick_(nick) {
  timeout_.setSingleShot(true);
}

DccChat::~DccChat() {
  StopWatching();
  CloseSocketQuietly(socket_);
}

void DccChat::StopWatching() {
  timeout_.disconnect();
  timeout_.stop();
  if (!notifier_) return;
  notifier_->setEnabled(false);
  notifier_.release()->deleteLater();  // this may run inside its own signal
}

void DccChat::Listen(int listener, std::chrono::milliseconds timeout) {
  state_ = State::Waiting;
  socket_ = listener;
  notifier_ = std::make_unique<QSocketNotifier>(listener, QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
    const int peer = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (peer < 0) return;  // gone again before we took it: keep waiting
    CloseSocketQuietly(socket_);
    socket_ = kNoSocket;
    Established(peer);
  });
  connect(&timeout_, &QTimer::timeout, this, [this] {
    StopWatching();
    CloseSocketQuietly(std::exchange(socket_, kNoSocket));
    state_ = State::Closed;
    engine_.PrintStatus(u"Chat DCC Timeout..."_s, LineStyle::Ping);
  });
  timeout_.start(timeout);
}

void DccChat::Connect(quint32 address, int port, std::chrono::milliseconds timeout) {
  socket_ = StartConnect(address, port);
  if (socket_ == kNoSocket) return End();
  state_ = State::Connecting;
  notifier_ = std::make_unique<QSocketNotifier>(socket_, QSocketNotifier::Write);
  connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
    if (ConnectError(socket_) != 0) return End();
    Established(std::exchange(socket_, kNoSocket));
  });
  connect(&timeout_, &QTimer::timeout, this, &DccChat::End);
  timeout_.start(timeout);
}

void DccChat::Established(int socket) {
  StopWatching();
  fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK);
  socket_ = socket;
  state_ = State::Connected;
  engine_.Print(tab_, u"DCC Chat connection established"_s, LineStyle::Ping);
  notifier_ = std::make_unique<QSocketNotifier>(socket_, QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, &DccChat::ReadPeer);
}

void DccChat::ReadPeer() {
  char buffer[kReadChunk];
  for (qsizetype read = 0; read < kReadBudget;) {
    const ssize_t n = recv(socket_, buffer, sizeof buffer, MSG_DONTWAIT);
    if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) return;
    if (n <= 0) return End();
    read += n;
    pending_.append(buffer, n);
    qsizetype end;
    while ((end = pending_.indexOf('\n')) >= 0) {
      QByteArrayView line(pending_.constData(), end);
      if (line.endsWith('\r')) line.chop(1);
      ShowLine(line);
      pending_.remove(0, end + 1);
    }
    while (pending_.size() > kMaxLineBytes) {
      qsizetype cut = kMaxLineBytes;
      while (cut > 0 && (uchar(pending_[cut]) & 0xC0) == 0x80) --cut;  // not inside a character
      ShowLine(QByteArrayView(pending_.constData(), cut));
      pending_.remove(0, cut);
    }
  }
}

void DccChat::ShowLine(QByteArrayView bytes) {
  if (engine_.Link().IsIgnoredNick(nick_)) return;
  engine_.Print(tab_, u'<' + nick_ + u"> "_s + DecodeReceivedLine(bytes), LineStyle::Normal);
}

void DccChat::Say(const QString& text) {
  if (state_ != State::Connected) return;
  engine_.Print(tab_, u'<' + engine_.Link().OwnNick() + u"> "_s + text, LineStyle::Normal);
  FailureFlag failure;
  SendLine(socket_, text, failure);
  if (failure.failed) End();
}

void DccChat::End() {
  StopWatching();
  CloseSocketQuietly(std::exchange(socket_, kNoSocket));
  state_ = State::Closed;
  engine_.Print(tab_, u"DCC session closed"_s, LineStyle::Ping);
}
