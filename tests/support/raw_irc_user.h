#pragma once
// Another user on a test server, speaking raw IRC from the test itself.

#include "support/test_app.h"

#include <QByteArray>
#include <QByteArrayList>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

class RawIrcUser {
 public:
  // Connects to 127.0.0.1:`port`; with a nick, registers at once.
  explicit RawIrcUser(int port, const QByteArray& nick = {}) : fd_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{AF_INET, htons(static_cast<quint16>(port)), {htonl(INADDR_LOOPBACK)}, {}};
    ::connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    if (!nick.isEmpty()) Send("NICK " + nick + "\r\nUSER " + nick + " 0 * :" + nick + "\r\n");
  }
  ~RawIrcUser() { ::close(fd_); }
  RawIrcUser(const RawIrcUser&) = delete;
  RawIrcUser& operator=(const RawIrcUser&) = delete;

  void Send(const QByteArray& lines) { ::send(fd_, lines.constData(), lines.size(), MSG_NOSIGNAL); }
  // Reads until `text` has arrived or the time is up, keeping the test's event loop going.
  bool WaitFor(const QByteArray& text, int milliseconds = 5000) {
    return RunUntil([&] {
      char buffer[4096];
      const ssize_t n = ::recv(fd_, buffer, sizeof buffer, MSG_DONTWAIT);
      if (n > 0) seen_.append(buffer, n);
      return seen_.contains(text);
    }, milliseconds);
  }

  // The complete lines received so far, without their line ends; reads what has arrived.
  QByteArrayList Lines() {
    char buffer[4096];
    ssize_t n = 0;
    while ((n = ::recv(fd_, buffer, sizeof buffer, MSG_DONTWAIT)) > 0) seen_.append(buffer, n);
    QByteArrayList lines = seen_.split('\n');
    lines.removeLast();  // the part after the last line end is not a line yet
    for (QByteArray& line : lines)
      if (line.endsWith('\r')) line.chop(1);
    return lines;
  }

 private:
  int fd_;
  QByteArray seen_;
};
