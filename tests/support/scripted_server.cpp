#include "support/scripted_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

int ListenOnLoopback(int& port) {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return -1;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(fd, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(fd, 4) != 0 ||
      getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    close(fd);
    return -1;
  }
  port = ntohs(address.sin_port);
  return fd;
}

// Waits for the first of two descriptors; -1 ignores one. False when polling failed.
bool WaitForEither(pollfd (&fds)[2]) {
  for (;;) {
    if (poll(fds, 2, -1) >= 0) return true;
    if (errno != EINTR) return false;
  }
}

}  // namespace

ScriptedServer::ScriptedServer() {
  int wake[2];
  if (pipe2(wake, O_CLOEXEC) != 0) return;
  wakeRead_ = wake[0];
  wakeWrite_ = wake[1];
  listener_ = ListenOnLoopback(port_);
  if (listener_ >= 0) thread_ = std::thread(&ScriptedServer::Run, this);
}

ScriptedServer::~ScriptedServer() {
  Tell('q');
  if (thread_.joinable()) thread_.join();
  if (client_ >= 0) close(client_);
  if (wakeRead_ >= 0) close(wakeRead_);
  if (wakeWrite_ >= 0) close(wakeWrite_);
}

void ScriptedServer::Tell(char command) {
  if (wakeWrite_ >= 0) (void)!write(wakeWrite_, &command, 1);
}

void ScriptedServer::Run() {
  const int client = AcceptClient();
  close(listener_);
  if (client >= 0) ServeClient(client);
}

int ScriptedServer::AcceptClient() {
  pollfd fds[2] = {{listener_, POLLIN, 0}, {wakeRead_, POLLIN, 0}};
  while (WaitForEither(fds)) {
    if (fds[1].revents) return -1;  // told to quit before anyone came
    if (!(fds[0].revents & POLLIN)) continue;
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) continue;
    std::lock_guard lock(mutex_);
    client_ = client;
    clientCame_ = true;
    changed_.notify_all();
    return client;
  }
  return -1;
}

void ScriptedServer::ServeClient(int client) {
  bool reading = true;
  pollfd fds[2] = {{client, POLLIN, 0}, {wakeRead_, POLLIN, 0}};
  while (WaitForEither(fds)) {
    if (fds[1].revents & POLLIN) {
      char command = 'q';
      (void)!read(wakeRead_, &command, 1);
      if (command != 'q') CloseClientNow(client, command == 'r');
      return;
    }
    if (fds[0].revents) reading = ReadFromClient(client);
    fds[0].fd = reading ? client : -1;
  }
}

bool ScriptedServer::ReadFromClient(int client) {
  char buffer[4096];
  const ssize_t count = recv(client, buffer, sizeof buffer, 0);
  if (count < 0 && errno == EINTR) return true;
  std::lock_guard lock(mutex_);
  if (count > 0)
    received_.append(buffer, count);
  else
    clientEnded_ = true;
  changed_.notify_all();
  return count > 0;
}

void ScriptedServer::CloseClientNow(int client, bool reset) {
  std::lock_guard sending(sendMutex_);
  if (reset) {
    const linger abort{1, 0};  // a zero linger makes close send a reset
    setsockopt(client, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
  }
  close(client);
  std::lock_guard lock(mutex_);
  client_ = -1;
  clientEnded_ = true;
  changed_.notify_all();
}

bool ScriptedServer::WaitForClient(std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, timeout, [this] { return clientCame_; });
}

bool ScriptedServer::Send(QByteArrayView bytes, std::chrono::milliseconds timeout) {
  if (!WaitForClient(timeout)) return false;
  std::lock_guard sending(sendMutex_);
  int client;
  {
    std::lock_guard lock(mutex_);
    client = client_;
  }
  if (client < 0) return false;
  for (qsizetype sent = 0; sent < bytes.size();) {
    const ssize_t count = send(client, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    sent += count;
  }
  return true;
}

bool ScriptedServer::CloseClient(bool reset, std::chrono::milliseconds timeout) {
  if (!WaitForClient(timeout)) return false;
  Tell(reset ? 'r' : 'c');
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, timeout, [this] { return client_ < 0; });
}

QByteArray ScriptedServer::Received() const {
  std::lock_guard lock(mutex_);
  return received_;
}

QByteArray ScriptedServer::TakeReceived() {
  std::lock_guard lock(mutex_);
  return std::exchange(received_, {});
}

bool ScriptedServer::WaitForBytes(const std::function<bool(const QByteArray&)>& done,
                                  std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, timeout, [&] { return done(received_); });
}

bool ScriptedServer::WaitForBytes(QByteArrayView expected, std::chrono::milliseconds timeout) {
  return WaitForBytes([expected](const QByteArray& bytes) { return bytes.contains(expected); },
                      timeout);
}

bool ScriptedServer::WaitForClientClose(std::chrono::milliseconds timeout) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, timeout, [this] { return clientEnded_; });
}
