#pragma once
// A real IRC server for tests: Debian's ngircd on a free loopback port with a generated
// configuration, run in the foreground and stopped by its PID.

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <memory>

class NgircdServer {
 public:
  // Picks a free port; Start() may be called again after Stop() on the same port.
  NgircdServer();
  ~NgircdServer();

  // False when ngircd is missing or did not accept connections within a few seconds.
  bool Start();
  void Stop();
  int Port() const { return port_; }
  // An operator the tests may use: OPER tolvtest secret.
  static constexpr const char* kOperName = "tolvtest";
  static constexpr const char* kOperPassword = "secret";

 private:
  bool WriteConfig();
  QTemporaryDir dir_;
  std::unique_ptr<QProcess> process_;
  int port_ = 0;
};

// A free TCP port on 127.0.0.1 (bound and released at once).
int FreeLoopbackPort();
