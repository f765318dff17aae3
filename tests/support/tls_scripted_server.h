#pragma once
// A scripted IRC server behind TLS, for what ngircd cannot do (SASL): `openssl s_server`
// with the given certificate takes one client, relays what the test writes to it and
// prints what the client sends after its own report of the handshake (with "-Verify 1",
// it demands a client certificate and prints its subject).

#include "support/ngircd_fixture.h"
#include "support/test_app.h"

#include <QProcess>

class TlsScriptedServer {
 public:
  TlsScriptedServer(const QString& cert, const QString& key, const QString& options = {}) : port_(FreeLoopbackPort()) {
    openssl_.start(QStringLiteral("openssl"), QStringLiteral("s_server -naccept 1 -accept 127.0.0.1:%1 -cert %2 -key %3 %4")
                                                   .arg(QString::number(port_), cert, key, options).split(u' ', Qt::SkipEmptyParts));
    RunUntil([&] { return Output().contains("ACCEPT\n"); }, 10000);
  }
  ~TlsScriptedServer() { openssl_.kill(), openssl_.waitForFinished(); }
  int Port() const { return port_; }
  // Everything printed so far: the server's own lines, then the client's bytes.
  const QByteArray& Output() { return output_ += openssl_.readAllStandardOutput(); }
  bool WaitFor(QByteArrayView text) { return RunUntil([&] { return Output().contains(text); }, 10000); }
  void Send(QByteArrayView bytes) { openssl_.write(bytes.data(), bytes.size()); }

 private:
  int port_;
  QProcess openssl_;
  QByteArray output_;
};
