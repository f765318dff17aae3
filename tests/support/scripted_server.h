#pragma once
// A loopback IRC server that says only what the test tells it: it listens on 127.0.0.1 on a
// port of the system's choice, takes one client (a second connect is refused) and records
// every byte the client sends. It runs on the test's thread; every wait is bounded and keeps
// the event loop going, so a client in the same process is served meanwhile.

#include "support/test_app.h"

#include <QByteArray>

#include <arpa/inet.h>
#include <cerrno>
#include <utility>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

class ScriptedServer {
 public:
  ScriptedServer() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t size = sizeof address;
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&address), size) == 0 && ::listen(listener_, 4) == 0 &&
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) == 0)
      port_ = ntohs(address.sin_port);
  }
  ~ScriptedServer() { ::close(listener_), ::close(client_); }
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  int Port() const { return port_; }
  const QByteArray& Received() { return Poll(), received_; }
  bool WaitFor(QByteArrayView text, int ms = 3000) {
    return RunUntil([&] { return Poll(), received_.contains(text); }, ms);
  }
  // True once the client has closed its end (or we did).
  bool WaitForClose(int ms = 3000) { return RunUntil([&] { return Poll(), ended_; }, ms); }
  bool Send(QByteArrayView bytes) {
    return RunUntil([&] { return Poll(), client_ >= 0; }) &&
           ::send(client_, bytes.data(), bytes.size(), MSG_NOSIGNAL) == bytes.size();
  }
  // An orderly close (the client reads 0), or with `reset` an abort (its next read fails).
  void CloseClient(bool reset = false) {
    RunUntil([&] { return Poll(), client_ >= 0; });
    const linger abort{1, 0};  // a zero linger makes close send a reset
    if (reset) ::setsockopt(client_, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
    ::close(std::exchange(client_, -1));
    ended_ = true;
  }

 private:
  void Poll() {
    if (client_ < 0 && !ended_ && listener_ >= 0) {
      client_ = ::accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
      if (client_ >= 0) ::close(std::exchange(listener_, -1));
    }
    char buffer[4096];
    for (ssize_t n = 1; client_ >= 0 && !ended_ && n > 0;) {
      n = ::recv(client_, buffer, sizeof buffer, 0);
      if (n > 0) received_.append(buffer, n);
      ended_ = n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR);
    }
  }

  int listener_ = -1, client_ = -1, port_ = 0;
  bool ended_ = false;
  QByteArray received_;
};
