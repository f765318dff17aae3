#pragma once
// A real IRC server for tests: Debian's ngircd on a free loopback port with a generated
// configuration, run in the foreground and stopped by its PID. It has one operator:
// "OPER tolvtest secret".

#include <QProcess>
#include <QTemporaryDir>

#include <memory>

class NgircdServer {
 public:
  // With `tls`, also TLS on TlsPort() with a self-signed certificate for "irc.test.local".
  explicit NgircdServer(bool tls = false);
  ~NgircdServer() { Stop(); }
  // False when ngircd is missing or not accepting within five seconds. Again after Stop:
  // the same port.
  bool Start();
  void Stop();
  int Port() const { return port_; }
  int TlsPort() const { return tlsPort_; }
  // A fresh key and certificate for the next Start; false when openssl failed. With a
  // subject alternative name ("IP:127.0.0.1") it is signed by a CA of its own (CaPath()).
  bool NewCertificate(const QString& altName = {});
  QString CaPath() const { return dir_.path() + QStringLiteral("/ca.pem"); }
  QString CertPath() const { return dir_.path() + QStringLiteral("/cert.pem"); }
  QString KeyPath() const { return dir_.path() + QStringLiteral("/key.pem"); }
  // Its SHA-256 fingerprint as openssl prints it ("AB:CD:..."); empty when unreadable.
  QString CertificateFingerprint() const;

 private:
  QTemporaryDir dir_;
  std::unique_ptr<QProcess> process_;
  int port_ = 0;
  int tlsPort_ = 0;
};

// A free TCP port on 127.0.0.1 (bound and released at once).
int FreeLoopbackPort();
