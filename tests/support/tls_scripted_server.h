#pragma once
// A ScriptedServer that speaks TLS with a given certificate and key: one client, every
// byte it sends recorded, served on the test's thread while a wait keeps the event loop
// going. For what real servers here cannot do (ngircd has no SASL).

#include "support/test_app.h"

#include <QByteArray>
#include <QString>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

class TlsScriptedServer {
 public:
  TlsScriptedServer(const QString& certFile, const QString& keyFile)
      : context_(SSL_CTX_new(TLS_server_method())),
        listener_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t size = sizeof address;
    if (SSL_CTX_use_certificate_file(context_, certFile.toUtf8().constData(), SSL_FILETYPE_PEM) == 1 &&
        SSL_CTX_use_PrivateKey_file(context_, keyFile.toUtf8().constData(), SSL_FILETYPE_PEM) == 1 &&
        ::bind(listener_, reinterpret_cast<sockaddr*>(&address), size) == 0 && ::listen(listener_, 4) == 0 &&
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) == 0)
      port_ = ntohs(address.sin_port);
  }
  ~TlsScriptedServer() {
    if (ssl_) SSL_free(ssl_);
    SSL_CTX_free(context_);
    ::close(listener_), ::close(client_);
  }
  TlsScriptedServer(const TlsScriptedServer&) = delete;
  TlsScriptedServer& operator=(const TlsScriptedServer&) = delete;

  int Port() const { return port_; }
  const QByteArray& Received() { return Poll(), received_; }
  bool WaitFor(QByteArrayView text, int ms = 5000) {
    return RunUntil([&] { return Poll(), received_.contains(text); }, ms);
  }
  // Waits for the handshake, then writes (small scripts fit the socket's buffer at once).
  bool Send(QByteArrayView bytes) {
    return RunUntil([&] { return Poll(), ssl_ && SSL_is_init_finished(ssl_); }) &&
           SSL_write(ssl_, bytes.data(), int(bytes.size())) == bytes.size();
  }

 private:
  void Poll() {
    if (!ssl_ && listener_ >= 0) {
      client_ = ::accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
      if (client_ < 0) return;
      ::close(std::exchange(listener_, -1));
      ssl_ = SSL_new(context_);
      SSL_set_fd(ssl_, client_);
      SSL_set_accept_state(ssl_);
    }
    char buffer[4096];
    for (int n = 1; ssl_ && !ended_ && n > 0;) {
      n = SSL_read(ssl_, buffer, sizeof buffer);
      if (n > 0) received_.append(buffer, n);
      const int error = n > 0 ? SSL_ERROR_NONE : SSL_get_error(ssl_, n);
      ended_ = error != SSL_ERROR_NONE && error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE;
    }
  }

  SSL_CTX* context_;
  SSL* ssl_ = nullptr;
  int listener_ = -1, client_ = -1, port_ = 0;
  bool ended_ = false;
  QByteArray received_;
};
