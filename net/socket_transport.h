#pragma once
// The socket operations every network part shares: the server connection, identd and
// DCC. Plain POSIX descriptors; -1 means "no socket" and every owner stores -1 after
// closing. IRC lines go out as UTF-8 ending in a single LF.

#include <QByteArray>
#include <QStringView>

#include <chrono>
#include <functional>

inline constexpr int kNoSocket = -1;

// Where a failed socket call is reported: the session shows
// "* [N] Software caused connection abort" and ends the connection.
class SocketErrorSink {
 public:
  virtual ~SocketErrorSink() = default;
  virtual void ReportSocketError(int winsockError) = 0;
};

struct ConnectResult {
  int socket = kNoSocket;  // connected, or kNoSocket
  int error = 0;           // the Winsock number of the failure, 0 on success
};

// Resolves `host` (a name or a dotted address) and connects to `port` (low 16 bits),
// giving up after `timeout`. Blocks: run it off the user-interface thread. On failure
// nothing stays open.
ConnectResult ConnectToServer(const QByteArray& host, int port, std::chrono::milliseconds timeout);

// Sends `text` in 1024-unit pieces and then the rest with one LF. Returns the byte count
// of the last send, or -1 after reporting a failure (the rest of the line is not sent).
int SendLine(int socket, QStringView text, SocketErrorSink& errors);
// Nothing for an empty text, else SendLine; always 1.
int SendLineIfAny(int socket, QStringView text, SocketErrorSink& errors);
// Sends all of `bytes` as they are (identd replies, DCC). Returns the count, or -1
// after reporting a failure.
int SendBytes(int socket, QByteArrayView bytes, SocketErrorSink& errors);

// Whether a read would not block within `timeout`: data waiting, the peer closed, or
// the socket failed (the read then tells which).
bool WaitReadable(int socket, std::chrono::microseconds timeout);

// One read of at most `capacity` bytes handed to `onBytes`. Returns the count, 0 when the
// peer closed (nothing handed over), -1 after reporting a failure.
int ReadChunk(int socket, SocketErrorSink& errors,
              const std::function<void(QByteArrayView)>& onBytes, int capacity = 16384);
// Reads everything waiting: waits up to `firstWait` for the socket to become readable,
// then reads until nothing more arrives within `drainWait` of the last read. Returns -1
// when there was nothing to read (or after a reported failure), 0 when the peer closed,
// else the last read's count. `onBytes` runs for each chunk, so replies to the lines in
// it go out while the socket is still being drained.
int PollSocket(int socket, SocketErrorSink& errors,
               const std::function<void(QByteArrayView)>& onBytes,
               std::chrono::microseconds firstWait = std::chrono::milliseconds(10),
               std::chrono::microseconds drainWait = std::chrono::milliseconds(10));

// Shut down and close; nothing for -1. CloseSocket reports a failing close.
void CloseSocketQuietly(int socket);
void CloseSocket(int socket, SocketErrorSink& errors);

// A listening socket on `address` (host order, 0 for any) and `port`; port 0 lets the
// system choose, and the chosen port is written back. -1 on failure (nothing left open;
// errno tells why).
int OpenListener(quint32 address, int& port);
// Waits up to the time-out for one connection; the listener is closed in every case.
int AcceptOne(int listener, std::chrono::microseconds timeout);
int ListenAndAccept(quint32 address, int& port, std::chrono::microseconds timeout);

// The peer's IPv4 address in dotted form, empty when unknown.
QByteArray PeerAddress(int socket);
// The IPv4 address this end of a connected socket has, host order; 0 when unknown.
quint32 LocalAddress(int socket);

// Starts connecting a non-blocking socket to `address` (host order) and `port` without
// waiting: the socket turns writable when the connect is over, and ConnectError then
// tells how it went. -1 when it failed at once (errno tells why).
int StartConnect(quint32 address, int port);
// 0 once connected, else the Winsock number of the failure.
int ConnectError(int socket);
