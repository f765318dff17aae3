#include "support/ngircd_fixture.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStandardPaths>
#include <QThread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

int FreeLoopbackPort() {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  int port = 0;
  if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
    port = ntohs(address.sin_port);
  ::close(fd);
  return port;
}

namespace {

bool Accepts(int port) {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<quint16>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool ok = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  ::close(fd);
  return ok;
}

}  // namespace

NgircdServer::NgircdServer() : port_(FreeLoopbackPort()) {
  // ngircd drops to an unprivileged user when started as root: its files must be readable.
  QFile::setPermissions(dir_.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                         QFile::ReadOther | QFile::ExeOther | QFile::ReadGroup |
                                         QFile::ExeGroup);
}

NgircdServer::~NgircdServer() { Stop(); }

bool NgircdServer::WriteConfig() {
  QFile motd(dir_.path() + u"/motd"_s);
  if (!motd.open(QIODevice::WriteOnly)) return false;
  motd.write("Welcome to the Tolv test server.\n");
  motd.close();
  QFile config(dir_.path() + u"/ngircd.conf"_s);
  if (!config.open(QIODevice::WriteOnly)) return false;
  config.write(QStringLiteral(
                   "[Global]\nName = irc.test.local\nInfo = Tolv test server\n"
                   "Listen = 127.0.0.1\nPorts = %1\nMotdFile = %2/motd\n"
                   "[Limits]\nMaxConnectionsIP = 0\nPingTimeout = 3\nPongTimeout = 5\n"
                   "[Options]\nDNS = no\nIdent = no\nPAM = no\n"
                   "[Operator]\nName = tolvtest\nPassword = secret\n")
                   .arg(port_)
                   .arg(dir_.path())
                   .toUtf8());
  config.close();
  for (const char* name : {"/motd", "/ngircd.conf"})
    QFile::setPermissions(dir_.path() + QString::fromLatin1(name),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther | QFile::ReadGroup);
  return true;
}

bool NgircdServer::Start() {
  const QString binary = QStandardPaths::findExecutable(u"ngircd"_s, {u"/usr/sbin"_s, u"/usr/bin"_s});
  if (binary.isEmpty() || port_ == 0 || !WriteConfig()) return false;
  process_ = std::make_unique<QProcess>();
  process_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process_->setStandardOutputFile(QProcess::nullDevice());
  process_->start(binary, {u"-n"_s, u"-f"_s, dir_.path() + u"/ngircd.conf"_s});
  if (!process_->waitForStarted(5000)) return false;
  const QDeadlineTimer deadline(5000);
  while (!deadline.hasExpired()) {
    if (Accepts(port_)) return true;
    if (process_->state() == QProcess::NotRunning) return false;
    QThread::msleep(20);
  }
  return false;
}

// Only the server this fixture started, by its own process handle (its PID).
void NgircdServer::Stop() {
  if (!process_) return;
  if (process_->state() != QProcess::NotRunning) {
    process_->terminate();
    if (!process_->waitForFinished(3000)) {
      process_->kill();
      process_->waitForFinished(3000);
    }
  }
  process_.reset();
}
