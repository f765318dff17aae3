#pragma once
// A loopback TCP server for tests that need a real peer: it listens on 127.0.0.1 on a
// port of the system's choice, accepts one client on a thread of its own, records every
// byte that client sends, and says only what the test tells it to (so by default it is
// a server that accepts and never speaks).
//
//   ScriptedServer server;
//   ConnectResult c = ConnectToServer("127.0.0.1", server.Port(), 2s);
//   server.Send("PING :irc.test\r\n");
//   EXPECT_TRUE(server.WaitForBytes("PONG :irc.test\n"));
//
// Every wait is bounded, so a client that misbehaves fails the test instead of hanging
// it. Once a client is accepted the listener is closed: a second connect is refused.
// Call Send and CloseClient from one thread (the test's).

#include <QByteArray>
#include <QByteArrayView>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

class ScriptedServer {
 public:
  static constexpr std::chrono::milliseconds kDefaultWait{2000};

  ScriptedServer();
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  // The listening port; 0 when listening failed.
  int Port() const { return port_; }

  bool WaitForClient(std::chrono::milliseconds timeout = kDefaultWait);
  // Sends `bytes` to the client, waiting for it to connect first. False when no client
  // came within `timeout` or the send failed.
  bool Send(QByteArrayView bytes, std::chrono::milliseconds timeout = kDefaultWait);
  // Closes our end of the connection: an orderly close (the client reads 0), or with
  // `reset` an abort (the client's next read or send fails). Waits for the client first.
  bool CloseClient(bool reset = false, std::chrono::milliseconds timeout = kDefaultWait);

  // Everything received so far; Take also forgets it, so the next wait sees only what
  // comes after.
  QByteArray Received() const;
  QByteArray TakeReceived();
  // True as soon as `done` holds for what was received, false after `timeout`.
  bool WaitForBytes(const std::function<bool(const QByteArray&)>& done,
                    std::chrono::milliseconds timeout = kDefaultWait);
  // True as soon as `expected` occurs in what was received.
  bool WaitForBytes(QByteArrayView expected, std::chrono::milliseconds timeout = kDefaultWait);
  // True once the client has closed its end (or the connection failed).
  bool WaitForClientClose(std::chrono::milliseconds timeout = kDefaultWait);

 private:
  void Run();
  int AcceptClient();
  void ServeClient(int client);
  bool ReadFromClient(int client);
  void CloseClientNow(int client, bool reset);
  void Tell(char command);

  int listener_ = -1;
  int wakeRead_ = -1;   // the thread's pipe: 'c' close, 'r' reset, 'q' quit
  int wakeWrite_ = -1;
  int port_ = 0;

  mutable std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  int client_ = -1;
  bool clientCame_ = false;
  bool clientEnded_ = false;  // the client closed, or we did
  QByteArray received_;

  std::mutex sendMutex_;  // a send and the closing of the client never overlap
  std::thread thread_;
};
