#include "gui/single_instance_window.h"

#include <QCryptographicHash>
#include <QLocalServer>
#include <QLocalSocket>
#include <QWidget>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kAnswerMilliseconds = 1000;

void BringToFront(QWidget* window) {
  window->setWindowState((window->windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
  window->show();
  window->raise();
  window->activateWindow();
}

}  // namespace

SingleInstance::SingleInstance(const QString& homeDir, QObject* parent) : QObject(parent) {
  const QByteArray home = QCryptographicHash::hash(homeDir.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
  name_ = u"tolv-%1-%2"_s.arg(::getuid()).arg(QString::fromLatin1(home));
}

bool SingleInstance::RaiseRunningInstance() const {
  QLocalSocket socket;
  socket.connectToServer(name_);
  if (!socket.waitForConnected(kAnswerMilliseconds)) return false;
  socket.write("raise\n");
  socket.waitForBytesWritten(kAnswerMilliseconds);
  return true;
}

// A socket file left by a crashed instance answers nobody: it is removed and taken over.
bool SingleInstance::Listen(QWidget* window) {
  server_ = new QLocalServer(this);
  server_->setSocketOptions(QLocalServer::UserAccessOption);
  if (!server_->listen(name_)) {
    QLocalServer::removeServer(name_);
    if (!server_->listen(name_)) return false;
  }
  connect(server_, &QLocalServer::newConnection, this, [this, window] {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
      connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
      BringToFront(window);
    }
  });
  return true;
}
