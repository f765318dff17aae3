#pragma once
// A real IRC server for tests: Debian's ngircd on a free loopback port with a generated
// configuration, run in the foreground and stopped by its PID. It has one operator:
// "OPER tolvtest secret".

#include <QProcess>
#include <QTemporaryDir>

#include <memory>

class NgircdServer {
 public:
  // With `tls`, the server also listens with TLS on TlsPort(), showing a self-signed
  // certificate for "irc.test.local" made by NewCertificate.
  explicit NgircdServer(bool tls = false);
  ~NgircdServer() { Stop(); }
  // False when ngircd is missing or not accepting within five seconds. Again after Stop:
  // the same port.
  bool Start();
  void Stop();
  int Port() const { return port_; }
  int TlsPort() const { return tlsPort_; }
  // A fresh key and certificate, shown from the next Start; false when the openssl command
  // failed. CertificatePath() is the PEM certificate.
  bool NewCertificate();
  QString CertificatePath() const { return dir_.path() + QStringLiteral("/cert.pem"); }

 private:
  QTemporaryDir dir_;
  std::unique_ptr<QProcess> process_;
  int port_ = 0;
  int tlsPort_ = 0;
};

// The SHA-256 fingerprint of a PEM certificate as the openssl command prints it
// ("AB:CD:..."), empty when it cannot be read.
QString OpensslFingerprint(const QString& certificatePath);

// A free TCP port on 127.0.0.1 (bound and released at once).
int FreeLoopbackPort();
