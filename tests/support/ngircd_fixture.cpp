#include "support/ngircd_fixture.h"

#include "net/socket_transport.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStandardPaths>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// ngircd drops to an unprivileged user when started as root: it must read its files.
void WriteFile(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (file.open(QIODevice::WriteOnly)) file.write(bytes);
  file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
}

bool Accepts(int port) {
  const int socket = ConnectToServer("127.0.0.1", port, 1s).socket;
  CloseSocketQuietly(socket);
  return socket != kNoSocket;
}

}  // namespace

int FreeLoopbackPort() {
  int port = 0;
  CloseSocketQuietly(OpenListener(0x7F000001, port));
  return port;
}

NgircdServer::NgircdServer(bool tls) : port_(FreeLoopbackPort()), tlsPort_(tls ? FreeLoopbackPort() : 0) {
  QFile::setPermissions(dir_.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                         QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                         QFile::ExeOther);
  WriteFile(dir_.path() + u"/motd"_s, "Welcome to the Tolv test server.\n");
  WriteFile(dir_.path() + u"/ngircd.conf"_s,
            u"[Global]\nName = irc.test.local\nInfo = Tolv test server\nListen = 127.0.0.1\n"
            u"Ports = %1\nMotdFile = %2/motd\n[Limits]\nMaxConnectionsIP = 0\nPingTimeout = 3\n"
            u"PongTimeout = 5\n[Options]\nDNS = no\nIdent = no\nPAM = no\n"
            u"[Operator]\nName = tolvtest\nPassword = secret\n"_s.arg(port_).arg(dir_.path()).toUtf8() +
                (tls ? u"[SSL]\nCertFile = %1/cert.pem\nKeyFile = %1/key.pem\nDHFile = %1/dh.pem\nPorts = %2\n"_s.arg(dir_.path())
                           .arg(tlsPort_).toUtf8()
                     : QByteArray()));
  if (tls) NewCertificate();
}

// The openssl command's output, empty when it failed. (The temporary folder has no blanks.)
static QByteArray RunOpenssl(const QString& arguments) {
  QProcess openssl;
  openssl.start(u"openssl"_s, arguments.split(u' '));
  if (!openssl.waitForFinished(20000) || openssl.exitCode() != 0) return {};
  return openssl.readAllStandardOutput();
}

bool NgircdServer::NewCertificate(const QString& altName) {
  const QString dir = dir_.path(), ec = u"req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "_s;
  if (!altName.isEmpty() && !QFile::exists(CaPath())) RunOpenssl(ec + u"-subj /CN=Tolv-CA -keyout %1/ca-key.pem -out %2"_s.arg(dir, CaPath()));
  // A named group: without it ngircd spends seconds generating parameters at each start.
  RunOpenssl(u"genpkey -genparam -algorithm DH -pkeyopt group:ffdhe2048 -out %1/dh.pem"_s.arg(dir));
  RunOpenssl(ec + u"-subj /CN=irc.test.local -keyout %1/key.pem -out %1/cert.pem"_s.arg(dir) +
             (altName.isEmpty() ? QString() : u" -CA %1 -CAkey %2/ca-key.pem -addext subjectAltName=%3"_s.arg(CaPath(), dir, altName)));
  for (const QString& file : {u"dh.pem"_s, u"key.pem"_s, u"cert.pem"_s})  // read by ngircd after it dropped root
    QFile::setPermissions(dir + u'/' + file, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
  return !CertificateFingerprint().isEmpty();
}

QString NgircdServer::CertificateFingerprint() const {
  const QByteArray out = RunOpenssl(u"x509 -noout -fingerprint -sha256 -in %1/cert.pem"_s.arg(dir_.path()));
  return QString::fromLatin1(out.mid(out.indexOf('=') + 1).trimmed());  // "sha256 Fingerprint=AB:..."
}

bool NgircdServer::Start() {
  const QString binary = QStandardPaths::findExecutable(u"ngircd"_s, {u"/usr/sbin"_s, u"/usr/bin"_s});
  if (binary.isEmpty() || port_ == 0) return false;
  process_ = std::make_unique<QProcess>();
  process_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process_->setStandardOutputFile(QProcess::nullDevice());
  process_->start(binary, {u"-n"_s, u"-f"_s, dir_.path() + u"/ngircd.conf"_s});
  if (!process_->waitForStarted(5000)) return false;
  for (const QDeadlineTimer deadline(5000); !deadline.hasExpired(); QThread::msleep(20)) {
    if (Accepts(port_) && (tlsPort_ == 0 || Accepts(tlsPort_))) return true;
    if (process_->state() == QProcess::NotRunning) return false;
  }
  return false;
}

// Only the server this fixture started, by its own process handle (its PID).
void NgircdServer::Stop() {
  if (process_ && process_->state() != QProcess::NotRunning) {
    process_->terminate();
    if (!process_->waitForFinished(3000)) process_->kill(), process_->waitForFinished(3000);
  }
  process_.reset();
}
