#pragma once
// The bytes of one file transfer, moved on a thread of its own so that a transfer at the
// speed of the link never delays typing or painting. The thread makes the connection
// (waits for the peer, or connects to it), then sends or receives, and reports how it
// ended. Everything it shares with the window's thread is atomic.
//
// The receiver drains the socket whenever it is readable and acknowledges what it has
// written. The sender keeps the link full and reads the acknowledgements as they come; it
// closes only once the last byte is acknowledged (or after a bounded wait), since a
// close with unread acknowledgements resets the connection and the receiver may lose
// the end of the file. Positions are 64-bit; an acknowledgement carries the low 32 bits
// (big-endian) and is compared modulo 2^32, so files past 4 GiB work.

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

struct PumpPlan {
  bool sending = false;
  int listener = -1;        // wait for the peer on this listening socket (the pump closes it) ...
  quint32 address = 0;      // ... or connect to this address (host order) and port
  int port = 0;
  int file = -1;            // open file, read or written at explicit offsets; the caller closes it
  qint64 start = 0;         // the first byte to move (a sender: see SetStart)
  qint64 size = 0;          // the file's size: the transfer is complete at this position
  int packetSize = 4096;    // bytes per send
  std::chrono::milliseconds linkTimeout{120000};  // for the peer to connect, or to connect
  std::chrono::milliseconds stallTimeout{120000}; // with no byte moving either way
  std::chrono::milliseconds lastAckTimeout{30000};
};

enum class PumpEnd {
  Complete,       // every byte moved (and, sending, acknowledged or the peer closed after it)
  Incomplete,     // the peer closed or reset early, or never acknowledged the end
  Stalled,        // nothing moved for stallTimeout
  NoPeer,         // nobody connected within linkTimeout
  ConnectFailed,  // the connect was refused or timed out
  FileError,      // reading or writing the file failed (error: errno)
  Cancelled,
};

struct PumpResult {
  PumpEnd end = PumpEnd::Complete;
  int error = 0;
};

class DccPump {
 public:
  DccPump();
  ~DccPump();  // stops the thread and waits for it
  DccPump(const DccPump&) = delete;
  DccPump& operator=(const DccPump&) = delete;

  // Runs `plan` on a new thread. `linked` and `finished` are called on that thread.
  void Start(const PumpPlan& plan, std::function<void()> linked,
             std::function<void(PumpResult)> finished);
  // Asks the thread to end (it reports Cancelled) and returns at once.
  void Stop();
  // Waits for the thread (after Stop, or once it has reported).
  void Join() {
    if (thread_.joinable()) thread_.join();
  }
  bool Running() const { return thread_.joinable(); }
  // A sender's starting position, agreed (RESUME) while it still waits for the peer.
  void SetStart(qint64 position) { position_ = acked_ = position; }

  qint64 Position() const { return position_.load(std::memory_order_relaxed); }
  qint64 Acknowledged() const { return acked_.load(std::memory_order_relaxed); }

 private:
  PumpResult Run(const PumpPlan& plan, const std::function<void()>& linked);
  PumpResult Link(const PumpPlan& plan, int& socket);
  PumpResult Send(const PumpPlan& plan, int socket);
  PumpResult Receive(const PumpPlan& plan, int socket);
  // Waits for `events` on `socket` or a Stop(): the socket's events, -1 when stopped,
  // 0 at the deadline.
  int Wait(int socket, short events, std::chrono::steady_clock::time_point deadline) const;
  bool ReadAcknowledgements(int socket, qint64 sent, bool& closed);

  int wake_ = -1;  // an eventfd that Stop() makes readable
  std::atomic<bool> stop_{false};
  std::atomic<qint64> position_{0};
  std::atomic<qint64> acked_{0};
  unsigned char ackCarry_[4] = {};
  int ackCarried_ = 0;
  std::thread thread_;
};
