#pragma once
// TLS on the server connection, with OpenSSL on the connected TCP socket.
//
// The handshake runs on the connect worker thread and always completes when the server
// speaks TLS; whether its certificate is trusted is decided afterwards on the window's
// thread (the system's CAs and the host name, else a pin, else the user), before a single
// byte of IRC goes out. A trusted link is then bridged to one end of a local socket pair,
// so the session reads and writes plain lines on a descriptor as it does without TLS.

#include <QByteArray>
#include <QString>

#include <chrono>
#include <memory>
#include <thread>

struct ssl_st;

// One handshaken (or failed) TLS connection. It owns the TCP socket and the OpenSSL
// connection until a bridge takes them; dropping it closes both.
class TlsLink;
std::shared_ptr<TlsLink> HandshakeTls(int socket, const QByteArray& host,
                                      std::chrono::steady_clock::time_point deadline,
                                      const QByteArray& clientCertificate);

class TlsLink {
 public:
  TlsLink(int socket, ssl_st* ssl) : socket_(socket), ssl_(ssl) {}
  ~TlsLink();
  TlsLink(const TlsLink&) = delete;
  TlsLink& operator=(const TlsLink&) = delete;

  QString failure;      // why the handshake failed; empty after a complete handshake
  bool verified = false;  // the chain reached a system CA and the name matched the host
  QString reason;       // why the certificate was not verified
  QString subject;      // the server certificate's subject, "CN=..., O=..."
  QString fingerprint;  // SHA-256 of the certificate, "AB:CD:..."
  QString protocol;     // "TLSv1.3"
  QString cipher;       // "TLS_AES_256_GCM_SHA384"
  quint32 localAddress = 0;  // the address the TCP connection leaves from, host order

 private:
  friend class TlsBridge;
  friend std::shared_ptr<TlsLink> HandshakeTls(int, const QByteArray&, std::chrono::steady_clock::time_point,
                                               const QByteArray&);
  int socket_;
  ssl_st* ssl_;
};

// Handshakes on the connected `socket` (taken over in every case) with SNI and the
// host-name check for `host`, TLS 1.2 at least, giving up at `deadline`. A non-empty
// `clientCertificate` names a PEM file holding the certificate (and its chain) and the
// private key that the client presents, for a login by certificate.
std::shared_ptr<TlsLink> HandshakeTls(int socket, const QByteArray& host,
                                      std::chrono::steady_clock::time_point deadline,
                                      const QByteArray& clientCertificate = {});

// Moves bytes between a TLS link and the session's end of a local socket pair on a thread
// of its own. Closing the session's end sends the server a close_notify and ends the
// link; the server closing its side delivers what is left and then closes the pair. The
// destructor ends the thread in any case and waits for it.
class TlsBridge {
 public:
  // The session's end in `sessionSocket` (blocking, as the server socket is); nullptr
  // when the pair or the thread could not be made (the link is then closed).
  static std::unique_ptr<TlsBridge> Start(std::shared_ptr<TlsLink> link, int& sessionSocket);
  ~TlsBridge();

 private:
  TlsBridge(std::shared_ptr<TlsLink> link, int pumpSocket, int wake);
  void Pump();

  std::shared_ptr<TlsLink> link_;
  int pumpSocket_;
  int wake_;  // an eventfd: the destructor's "stop now"
  std::thread thread_;
};
