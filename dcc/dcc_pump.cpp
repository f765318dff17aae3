#include "dcc/dcc_pump.h"

#include "net/socket_errors.h"
#include "net/socket_transport.h"

#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <utility>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono;
using Clock = steady_clock;

namespace {

constexpr qint64 kReadChunk = 1 << 20;     // the sender reads the file a MiB at a time
constexpr qint64 kReceiveChunk = 1 << 18;  // the receiver's buffer
constexpr qint64 kLowBits = 0xFFFFFFFF;

bool Again(ssize_t result) { return result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR); }

// A peer that resets or goes away ends the transfer early; other failures too.
PumpResult Early() { return {PumpEnd::Incomplete, 0}; }

bool WriteAll(int file, const char* bytes, qint64 count, qint64 offset) {
  while (count > 0) {
    const ssize_t written = pwrite(file, bytes, size_t(count), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes += written;
    count -= written;
    offset += written;
  }
  return true;
}

// The receiver's acknowledgement: always the newest position, but one that went out in
// part is finished first, or the sender would read the stream out of step.
class AckWriter {
 public:
  void Post(qint64 position) {
    if (sent_ > 0 && sent_ < 4) return pending_ = position, void();
    qToBigEndian<quint32>(quint32(position & kLowBits), bytes_);
    sent_ = 0;
    pending_ = -1;
  }
  bool Pending() const { return sent_ < 4 || pending_ >= 0; }
  // False when the socket failed.
  bool Flush(int socket) {
    while (sent_ < 4) {
      const ssize_t n = ::send(socket, bytes_ + sent_, size_t(4 - sent_), MSG_DONTWAIT | MSG_NOSIGNAL);
      if (Again(n)) return true;
      if (n < 0) return false;
      sent_ += int(n);
      if (sent_ == 4 && pending_ >= 0) Post(std::exchange(pending_, -1));
    }
    return true;
  }

 private:
  unsigned char bytes_[4] = {};
  int sent_ = 4;
  qint64 pending_ = -1;
};

}  // namespace

DccPump::DccPump() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

DccPump::~DccPump() {
  Stop();
  if (thread_.joinable()) thread_.join();
  if (wake_ >= 0) close(wake_);
}

void DccPump::Start(const PumpPlan& plan, std::function<void()> linked,
                    std::function<void(PumpResult)> finished) {
  position_ = acked_ = plan.start;
  thread_ = std::thread([this, plan, linked = std::move(linked), finished = std::move(finished)] {
    finished(Run(plan, linked));
  });
}

void DccPump::Stop() {
  stop_ = true;
  const quint64 one = 1;
  if (wake_ >= 0) [[maybe_unused]] const ssize_t ignored = write(wake_, &one, sizeof one);
}

int DccPump::Wait(int socket, short events, Clock::time_point deadline) const {
  for (;;) {
    if (stop_) return -1;
    const auto left = duration_cast<milliseconds>(deadline - Clock::now()).count();
    pollfd watched[2] = {{socket, events, 0}, {wake_, POLLIN, 0}};
    const int ready = poll(watched, wake_ >= 0 ? 2 : 1, int(std::clamp<qint64>(left + 1, 0, 1000)));
    if (ready < 0 && errno == EINTR) continue;
    if (stop_ || (watched[1].revents & POLLIN)) return -1;
    if (ready > 0 && watched[0].revents != 0) return watched[0].revents;
    if (Clock::now() >= deadline) return 0;
  }
}

PumpResult DccPump::Run(const PumpPlan& plan, const std::function<void()>& linked) {
  int socket = kNoSocket;
  const PumpResult link = Link(plan, socket);
  if (socket == kNoSocket) return link;
  linked();
  const PumpResult result = plan.sending ? Send(plan, socket) : Receive(plan, socket);
  CloseSocketQuietly(socket);
  return result;
}

PumpResult DccPump::Link(const PumpPlan& plan, int& socket) {
  const Clock::time_point deadline = Clock::now() + plan.linkTimeout;
  if (plan.listener != kNoSocket) {
    const int ready = Wait(plan.listener, POLLIN, deadline);
    if (ready > 0) socket = accept4(plan.listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    CloseSocketQuietly(plan.listener);
    if (ready < 0) return {PumpEnd::Cancelled, 0};
    if (socket < 0) socket = kNoSocket;
    return {socket == kNoSocket ? PumpEnd::NoPeer : PumpEnd::Complete, 0};
  }
  const int fd = StartConnect(plan.address, plan.port);
  if (fd == kNoSocket) return {PumpEnd::ConnectFailed, WinsockErrorNumber(errno)};
  const int ready = Wait(fd, POLLOUT, deadline);
  const int error = ready > 0 ? ConnectError(fd) : kWinsockTimedOut;
  if (ready < 0 || error != 0) {
    CloseSocketQuietly(fd);
    return {ready < 0 ? PumpEnd::Cancelled : PumpEnd::ConnectFailed, error};
  }
  socket = fd;
  return {PumpEnd::Complete, 0};
}

// Reads every acknowledgement waiting. Each is the low 32 bits of a position at or below
// `sent`; the newest one at or above the last acknowledged position counts.
bool DccPump::ReadAcknowledgements(int socket, qint64 sent, bool& closed) {
  unsigned char bytes[4096];
  for (;;) {
    const ssize_t n = recv(socket, bytes, sizeof bytes, MSG_DONTWAIT);
    if (Again(n)) return true;
    if (n <= 0) {
      closed = n == 0;
      return n == 0;
    }
    for (ssize_t i = 0; i < n; ++i) {
      ackCarry_[ackCarried_++] = bytes[i];
      if (ackCarried_ < 4) continue;
      ackCarried_ = 0;
      const quint32 low = qFromBigEndian<quint32>(ackCarry_);
      qint64 position = (sent & ~kLowBits) | low;
      if (position > sent) position -= kLowBits + 1;
      if (position >= acked_.load(std::memory_order_relaxed)) acked_.store(position, std::memory_order_relaxed);
    }
  }
}

PumpResult DccPump::Send(const PumpPlan& plan, int socket) {
  const qint64 packet = std::max(plan.packetSize, 1);
  const qint64 capacity = std::max(kReadChunk / packet, qint64(1)) * packet;
  const auto buffer = std::make_unique_for_overwrite<char[]>(size_t(capacity));
  qint64 position = Position(), bufferStart = position, bufferEnd = position;
  Clock::time_point lastMoved = Clock::now();
  std::optional<Clock::time_point> allSentAt;
  for (;;) {
    if (position == plan.size && Acknowledged() == plan.size) return {PumpEnd::Complete, 0};
    if (position == plan.size && !allSentAt) allSentAt = Clock::now();
    const Clock::time_point deadline = allSentAt ? *allSentAt + plan.lastAckTimeout : lastMoved + plan.stallTimeout;
    const int ready = Wait(socket, short(POLLIN | (allSentAt ? 0 : POLLOUT)), deadline);
    if (ready < 0) return {PumpEnd::Cancelled, 0};
    if (ready == 0) return {allSentAt ? PumpEnd::Incomplete : PumpEnd::Stalled, 0};
    if (ready & (POLLIN | POLLHUP | POLLERR)) {
      bool closed = false;
      if (!ReadAcknowledgements(socket, position, closed)) return Early();
      // The receiver knows the size: closing after the last byte is its way of saying so.
      if (closed) return allSentAt ? PumpResult{PumpEnd::Complete, 0} : Early();
    }
    if (allSentAt || !(ready & POLLOUT)) continue;
    for (qint64 burst = 0; burst < capacity && position < plan.size;) {
      if (position == bufferEnd) {
        const ssize_t n = pread(plan.file, buffer.get(), size_t(std::min(capacity, plan.size - position)), position);
        if (n <= 0) return {PumpEnd::FileError, n < 0 ? errno : EIO};  // a file that shrank, too
        bufferStart = position;
        bufferEnd = position + n;
      }
      const qint64 length = std::min(packet, bufferEnd - position);
      const ssize_t sent = ::send(socket, buffer.get() + (position - bufferStart), size_t(length),
                                  MSG_DONTWAIT | MSG_NOSIGNAL);
      if (Again(sent)) break;
      if (sent < 0) return Early();
      position += sent;
      burst += sent;
      position_.store(position, std::memory_order_relaxed);
      lastMoved = Clock::now();
    }
  }
}

PumpResult DccPump::Receive(const PumpPlan& plan, int socket) {
  const auto buffer = std::make_unique_for_overwrite<char[]>(size_t(kReceiveChunk));
  qint64 position = plan.start;
  AckWriter ack;
  Clock::time_point lastMoved = Clock::now();
  while (position < plan.size) {
    const ssize_t n = recv(socket, buffer.get(), size_t(std::min(kReceiveChunk, plan.size - position)), MSG_DONTWAIT);
    if (n > 0) {
      if (!WriteAll(plan.file, buffer.get(), n, position)) return {PumpEnd::FileError, errno};
      position += n;
      position_.store(position, std::memory_order_relaxed);
      ack.Post(position);
      if (!ack.Flush(socket)) return Early();
      lastMoved = Clock::now();
      if (stop_) return {PumpEnd::Cancelled, 0};
      continue;
    }
    if (!Again(n)) return Early();  // closed early, or reset
    const int ready = Wait(socket, short(POLLIN | (ack.Pending() ? POLLOUT : 0)), lastMoved + plan.stallTimeout);
    if (ready < 0) return {PumpEnd::Cancelled, 0};
    if (ready == 0) return {PumpEnd::Stalled, 0};
    if ((ready & POLLOUT) && !ack.Flush(socket)) return Early();
  }
  // The sender waits for this last acknowledgement before it closes.
  const Clock::time_point deadline = Clock::now() + plan.lastAckTimeout;
  while (ack.Pending() && ack.Flush(socket) && ack.Pending()) {
    if (Wait(socket, POLLOUT, deadline) <= 0) break;
  }
  return {PumpEnd::Complete, 0};
}
