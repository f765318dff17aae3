#include "net/socket_transport.h"

#include "net/socket_errors.h"

#include <QString>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

using namespace std::chrono;
using Clock = steady_clock;

namespace {

// A line goes out in pieces of this many UTF-16 units, then the rest with its LF.
constexpr qsizetype kSendChunkUnits = 1024;
constexpr int kListenBacklog = 4;

// ---- Waiting ---------------------------------------------------------------------------

// Waits for `events` on `fd` until `deadline`: 1 when ready (or hung up, or failed:
// the next call tells which), 0 at the deadline, -1 with errno set when the wait
// itself fails. A closed descriptor counts as a failed wait, as select said on Winsock.
int WaitUntil(int fd, short events, Clock::time_point deadline) {
  for (;;) {
    const nanoseconds left = std::max(deadline - Clock::now(), Clock::duration::zero());
    const timespec limit{static_cast<time_t>(left.count() / 1'000'000'000),
                         static_cast<long>(left.count() % 1'000'000'000)};
    pollfd watched{fd, events, 0};
    const int ready = ppoll(&watched, 1, &limit, nullptr);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return ready;
    if (watched.revents & POLLNVAL) {
      errno = EBADF;
      return -1;
    }
    return 1;
  }
}

bool SetNonBlocking(int fd, bool on) {
  const int flags = fcntl(fd, F_GETFL);
  if (flags < 0) return false;
  return fcntl(fd, F_SETFL, on ? flags | O_NONBLOCK : flags & ~O_NONBLOCK) == 0;
}

sockaddr_in Ipv4(in_addr address, int port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_addr = address;
  result.sin_port = htons(static_cast<quint16>(port & 0xFFFF));
  return result;
}

// ---- Name resolution -------------------------------------------------------------------

struct Resolved {
  in_addr address{};
  int error = 0;  // Winsock number, 0 when resolved
};

Resolved LookUpNow(const std::string& host) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_protocol = IPPROTO_TCP;
  addrinfo* found = nullptr;
  // Whatever the resolver's reason (no such name, no DNS at all), the user learns that
  // the host was not found, as on the device.
  if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0 || found == nullptr)
    return {{}, kWinsockHostNotFound};
  Resolved result{reinterpret_cast<const sockaddr_in*>(found->ai_addr)->sin_addr, 0};
  freeaddrinfo(found);
  return result;
}

// What a look-up thread and its waiter share; the last of the two to leave frees it.
struct Lookup {
  std::mutex mutex;
  std::condition_variable done;
  std::optional<Resolved> result;
};

// getaddrinfo takes no time-out, so it runs on a thread of its own that is abandoned
// at the deadline; it finishes alone later. A dotted address needs no thread.
Resolved Resolve(const QByteArray& host, Clock::time_point deadline) {
  in_addr dotted{};
  if (inet_pton(AF_INET, host.constData(), &dotted) == 1) return {dotted, 0};
  auto lookup = std::make_shared<Lookup>();
  try {
    std::thread([lookup, name = host.toStdString()] {
      const Resolved result = LookUpNow(name);
      std::lock_guard lock(lookup->mutex);
      lookup->result = result;
      lookup->done.notify_one();
    }).detach();
  } catch (const std::system_error&) {
    return LookUpNow(host.toStdString());
  }
  std::unique_lock lock(lookup->mutex);
  if (!lookup->done.wait_until(lock, deadline, [&] { return lookup->result.has_value(); }))
    return {{}, kWinsockTimedOut};
  return *lookup->result;
}

// ---- Connecting ------------------------------------------------------------------------

// Connects `fd` by `deadline` and leaves it blocking. 0, or the Winsock number.
int ConnectBy(int fd, const sockaddr_in& address, Clock::time_point deadline) {
  if (!SetNonBlocking(fd, true)) return WinsockErrorNumber(errno);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
      errno != EINPROGRESS && errno != EINTR)
    return WinsockErrorNumber(errno);
  const int ready = WaitUntil(fd, POLLOUT, deadline);
  if (ready < 0) return WinsockErrorNumber(errno);
  if (ready == 0) return kWinsockTimedOut;
  int failure = 0;
  socklen_t size = sizeof failure;
  if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &failure, &size) != 0) failure = errno;
  if (failure != 0) return WinsockErrorNumber(failure);
  return SetNonBlocking(fd, false) ? 0 : WinsockErrorNumber(errno);
}

// Sends everything, resuming after partial sends. MSG_NOSIGNAL: a peer that has gone
// gives EPIPE here instead of a SIGPIPE that would end the program.
int SendAll(int fd, QByteArrayView bytes) {
  qsizetype sent = 0;
  while (sent < bytes.size()) {
    const ssize_t count = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return -1;
    sent += count;
  }
  return static_cast<int>(sent);
}

// The port the system chose when `port` was 0.
bool ReadBackPort(int fd, int& port) {
  if (port != 0) return true;
  sockaddr_in bound{};
  socklen_t size = sizeof bound;
  if (getsockname(fd, reinterpret_cast<sockaddr*>(&bound), &size) != 0) return false;
  port = ntohs(bound.sin_port);
  return true;
}

}  // namespace

ConnectResult ConnectToServer(const QByteArray& host, int port, milliseconds timeout) {
  const Clock::time_point deadline = Clock::now() + timeout;
  const Resolved target = Resolve(host, deadline);
  if (target.error != 0) return {kNoSocket, target.error};
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
  if (fd < 0) return {kNoSocket, WinsockErrorNumber(errno)};
  if (const int error = ConnectBy(fd, Ipv4(target.address, port), deadline)) {
    close(fd);
    return {kNoSocket, error};
  }
  return {fd, 0};
}

int SendBytes(int socket, QByteArrayView bytes, SocketErrorSink& errors) {
  const int sent = SendAll(socket, bytes);
  if (sent < 0) errors.ReportSocketError(WinsockErrorNumber(errno));
  return sent;
}

int SendLine(int socket, QStringView text, SocketErrorSink& errors) {
  while (text.size() >= kSendChunkUnits) {
    // A surrogate pair is never cut: its UTF-8 form needs both halves.
    const qsizetype units =
        text[kSendChunkUnits - 1].isHighSurrogate() ? kSendChunkUnits - 1 : kSendChunkUnits;
    if (SendBytes(socket, text.first(units).toUtf8(), errors) < 0) return -1;
    text = text.sliced(units);
  }
  QByteArray last = text.toUtf8();
  last.append('\n');
  return SendBytes(socket, last, errors);
}

int SendLineIfAny(int socket, QStringView text, SocketErrorSink& errors) {
  if (!text.isEmpty()) SendLine(socket, text, errors);
  return 1;
}

bool WaitReadable(int socket, microseconds timeout) {
  return WaitUntil(socket, POLLIN, Clock::now() + timeout) != 0;
}

int ReadChunk(int socket, SocketErrorSink& errors,
              const std::function<void(QByteArrayView)>& onBytes, int capacity) {
  const size_t size = static_cast<size_t>(std::max(capacity, 1));
  const auto buffer = std::make_unique_for_overwrite<char[]>(size);
  ssize_t count = 0;
  do {
    count = recv(socket, buffer.get(), size, 0);
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    errors.ReportSocketError(WinsockErrorNumber(errno));
    return -1;
  }
  if (count > 0) onBytes(QByteArrayView(buffer.get(), count));
  return static_cast<int>(count);
}

int PollSocket(int socket, SocketErrorSink& errors,
               const std::function<void(QByteArrayView)>& onBytes, microseconds firstWait,
               microseconds drainWait) {
  int ready = WaitUntil(socket, POLLIN, Clock::now() + firstWait);
  // A failed wait is reported and the socket read anyway, so the read tells the rest.
  if (ready < 0) errors.ReportSocketError(WinsockErrorNumber(errno));
  if (ready == 0) return -1;
  for (;;) {
    const int count = ReadChunk(socket, errors, onBytes);
    if (count <= 0) return count;
    ready = WaitUntil(socket, POLLIN, Clock::now() + drainWait);
    if (ready < 0) errors.ReportSocketError(WinsockErrorNumber(errno));
    if (ready <= 0) return count;
  }
}

void CloseSocketQuietly(int socket) {
  if (socket == kNoSocket) return;
  shutdown(socket, SHUT_RDWR);
  close(socket);
}

void CloseSocket(int socket, SocketErrorSink& errors) {
  if (socket == kNoSocket) return;
  shutdown(socket, SHUT_RDWR);
  if (close(socket) != 0) errors.ReportSocketError(WinsockErrorNumber(errno));
}

int OpenListener(quint32 address, int& port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
  if (fd < 0) return kNoSocket;
  const int on = 1;
  const sockaddr_in local = Ipv4(in_addr{htonl(address)}, port);
  const bool listening =
      setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) == 0 &&
      bind(fd, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0 &&
      ReadBackPort(fd, port) && listen(fd, kListenBacklog) == 0;
  if (listening) return fd;
  const int failure = errno;  // the caller may tell the user why
  CloseSocketQuietly(fd);
  errno = failure;
  return kNoSocket;
}

int AcceptOne(int listener, microseconds timeout) {
  if (listener == kNoSocket) return kNoSocket;
  int accepted = -1;
  // Non-blocking, so a caller that hung up between the wait and the accept cannot
  // leave us stuck in accept.
  if (WaitUntil(listener, POLLIN, Clock::now() + timeout) > 0 && SetNonBlocking(listener, true)) {
    do {
      accepted = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    } while (accepted < 0 && errno == EINTR);
  }
  CloseSocketQuietly(listener);
  return accepted < 0 ? kNoSocket : accepted;
}

int ListenAndAccept(quint32 address, int& port, microseconds timeout) {
  const int listener = OpenListener(address, port);
  return listener == kNoSocket ? kNoSocket : AcceptOne(listener, timeout);
}

QByteArray PeerAddress(int socket) {
  sockaddr_in peer{};
  socklen_t size = sizeof peer;
  if (socket == kNoSocket || getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) != 0 ||
      peer.sin_family != AF_INET)
    return {};
  char dotted[INET_ADDRSTRLEN] = {};
  if (inet_ntop(AF_INET, &peer.sin_addr, dotted, sizeof dotted) == nullptr) return {};
  return QByteArray(dotted);
}

quint32 LocalAddress(int socket) {
  sockaddr_in local{};
  socklen_t size = sizeof local;
  if (socket == kNoSocket || getsockname(socket, reinterpret_cast<sockaddr*>(&local), &size) != 0 ||
      local.sin_family != AF_INET)
    return 0;
  return ntohl(local.sin_addr.s_addr);
}

int StartConnect(quint32 address, int port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP);
  if (fd < 0) return kNoSocket;
  const sockaddr_in target = Ipv4(in_addr{htonl(address)}, port);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0 ||
      errno == EINPROGRESS || errno == EINTR)
    return fd;
  const int failure = errno;
  close(fd);
  errno = failure;
  return kNoSocket;
}

int ConnectError(int socket) {
  int failure = 0;
  socklen_t size = sizeof failure;
  if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &failure, &size) != 0) failure = errno;
  if (failure == 0) {
    sockaddr_in peer{};
    socklen_t peerSize = sizeof peer;  // writable but not connected: the connect failed
    if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &peerSize) != 0) failure = ENOTCONN;
  }
  return failure == 0 ? 0 : WinsockErrorNumber(failure);
}
