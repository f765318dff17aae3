// The pump between a TLS link and the session's local socket. Both sockets are used
// without blocking and one poll waits for whatever the pump is waiting for, so neither
// direction holds the other up and an idle link costs no CPU.

#include "net/no_sigpipe.h"
#include "net/socket_transport.h"
#include "net/tls_link.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace {

// Bytes held for one direction before the pump stops reading that direction's source:
// a session that stops reading holds the server back instead of filling memory.
constexpr qsizetype kHighWater = 64 * 1024;
constexpr int kChunk = 16 * 1024;

bool TryAgain() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

// What one SSL call left behind.
struct SslWants {
  bool read = false;
  bool write = false;
};

// False when the connection is over (close_notify, a closed socket, a TLS error).
bool Continues(SSL* ssl, int result, SslWants& wants) {
  switch (SSL_get_error(ssl, result)) {
    case SSL_ERROR_WANT_READ: wants.read = true; return true;
    case SSL_ERROR_WANT_WRITE: wants.write = true; return true;
    default: ERR_clear_error(); return false;
  }
}

}  // namespace

std::unique_ptr<TlsBridge> TlsBridge::Start(std::shared_ptr<TlsLink> link, int& sessionSocket) {
  sessionSocket = kNoSocket;
  int pair[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0) return nullptr;
  const int wake = ::eventfd(0, EFD_CLOEXEC);
  if (wake < 0) {
    ::close(pair[0]), ::close(pair[1]);
    return nullptr;
  }
  std::unique_ptr<TlsBridge> bridge(new TlsBridge(std::move(link), pair[1], wake));
  try {
    bridge->thread_ = std::thread(&TlsBridge::Pump, bridge.get());
  } catch (const std::system_error&) {
    ::close(pair[0]);
    return nullptr;  // the destructor closes the rest
  }
  sessionSocket = pair[0];
  return bridge;
}

TlsBridge::TlsBridge(std::shared_ptr<TlsLink> link, int pumpSocket, int wake)
    : link_(std::move(link)), pumpSocket_(pumpSocket), wake_(wake) {}

TlsBridge::~TlsBridge() {
  if (thread_.joinable()) {
    const eventfd_t stop = 1;
    ::eventfd_write(wake_, stop);
    thread_.join();
  } else {
    ::close(pumpSocket_);
    link_.reset();
  }
  ::close(wake_);
}

// Runs until either side ends; then the session's socket reads end of file and the TLS
// connection is gone.
void TlsBridge::Pump() {
  const NoSigpipe noSigpipe;
  SSL* ssl = link_->ssl_;
  const int server = link_->socket_;
  QByteArray toSession, toServer;
  char buffer[kChunk];
  bool serverOver = false, sessionOver = false;
  for (;;) {
    SslWants readWants, writeWants;
    while (!serverOver && toSession.size() < kHighWater) {
      const int count = SSL_read(ssl, buffer, kChunk);
      if (count > 0) toSession.append(buffer, count);
      else if (!Continues(ssl, count, readWants)) serverOver = true;
      else break;
    }
    while (!toSession.isEmpty()) {
      const ssize_t sent = ::send(pumpSocket_, toSession.constData(), size_t(toSession.size()),
                                  MSG_NOSIGNAL | MSG_DONTWAIT);
      if (sent > 0) toSession.remove(0, sent);
      else if (sent < 0 && TryAgain()) break;
      else serverOver = sessionOver = true, toSession.clear();
    }
    while (!sessionOver && toServer.size() < kHighWater) {
      const ssize_t got = ::recv(pumpSocket_, buffer, kChunk, MSG_DONTWAIT);
      if (got > 0) toServer.append(buffer, got);
      else if (got < 0 && TryAgain()) break;
      else sessionOver = true;
    }
    while (!serverOver && !toServer.isEmpty()) {
      const int count = SSL_write(ssl, toServer.constData(), int(toServer.size()));
      if (count > 0) toServer.remove(0, count);
      else if (!Continues(ssl, count, writeWants)) serverOver = true;
      else break;
    }
    if (serverOver && toSession.isEmpty()) break;
    if (sessionOver && toServer.isEmpty()) {
      if (!serverOver) SSL_shutdown(ssl);  // one try: the close_notify, without waiting
      break;
    }

    short serverEvents = 0;
    if (!serverOver) {
      if (toSession.size() < kHighWater || writeWants.read) serverEvents |= POLLIN;
      if (readWants.write || writeWants.write) serverEvents |= POLLOUT;
    }
    short sessionEvents = 0;
    if (!sessionOver && toServer.size() < kHighWater) sessionEvents |= POLLIN;
    if (!toSession.isEmpty()) sessionEvents |= POLLOUT;
    pollfd watched[] = {{serverEvents ? server : -1, serverEvents, 0},
                        {sessionEvents ? pumpSocket_ : -1, sessionEvents, 0},
                        {wake_, POLLIN, 0}};
    if (::poll(watched, 3, -1) < 0 && errno != EINTR) break;
    if (watched[2].revents) break;
    // A hang-up the pump was not reading for would wake it again and again.
    if (!(sessionEvents & POLLIN) && (watched[1].revents & (POLLHUP | POLLERR))) break;
  }
  ::close(pumpSocket_);
  link_.reset();
}
