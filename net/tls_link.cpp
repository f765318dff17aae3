#include "net/tls_link.h"

#include "net/no_sigpipe.h"
#include "net/socket_transport.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

using namespace Qt::StringLiterals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto kTimedOut = "no answer from the server in time";
constexpr auto kClosed = "the server closed the connection";

// A context per connection: the system's CAs are read at each connect (on the worker
// thread), so a renewed CA bundle counts without a restart. The SSL object keeps it.
SSL* NewConnection() {
  SSL_CTX* context = SSL_CTX_new(TLS_client_method());
  if (!context) return nullptr;
  SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
  SSL_CTX_set_default_verify_paths(context);
  // The chain is still checked and its result kept; the decision comes later.
  SSL_CTX_set_verify(context, SSL_VERIFY_NONE, nullptr);
  SSL* ssl = SSL_new(context);
  SSL_CTX_free(context);
  return ssl;
}

// OpenSSL's reason for the last failure, without its code prefix.
QString LastSslError(const char* otherwise) {
  const unsigned long code = ERR_get_error();
  ERR_clear_error();
  const char* reason = code ? ERR_reason_error_string(code) : nullptr;
  return QString::fromUtf8(reason ? reason : otherwise);
}

// A server gone during the handshake is told one way, whichever side noticed it first (a
// read at end of file, a write after its close, a reset).
QString HandshakeFailure(int sslError) {
  if (sslError == SSL_ERROR_SYSCALL || sslError == SSL_ERROR_ZERO_RETURN ||
      ERR_GET_REASON(ERR_peek_last_error()) == SSL_R_UNEXPECTED_EOF_WHILE_READING) {
    ERR_clear_error();
    return QString::fromLatin1(kClosed);
  }
  return LastSslError(kClosed);
}

// A name gets SNI and a name check; a dotted address gets an address check and no SNI.
bool ExpectHost(SSL* ssl, const QByteArray& host) {
  in_addr address{};
  if (inet_pton(AF_INET, host.constData(), &address) == 1)
    return X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(ssl), host.constData()) == 1;
  return SSL_set_tlsext_host_name(ssl, host.constData()) == 1 && SSL_set1_host(ssl, host.constData()) == 1;
}

// The certificate, its chain and its key, all from the one PEM file.
bool UseClientCertificate(SSL* ssl, const QByteArray& file) {
  return SSL_use_certificate_chain_file(ssl, file.constData()) == 1 &&
         SSL_use_PrivateKey_file(ssl, file.constData(), SSL_FILETYPE_PEM) == 1 && SSL_check_private_key(ssl) == 1;
}

// Waits for what the last call wanted; false at the deadline.
bool WaitFor(int socket, int sslError, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    pollfd watched{socket, short(sslError == SSL_ERROR_WANT_WRITE ? POLLOUT : POLLIN), 0};
    const int ready = ::poll(&watched, 1, int(std::min<long long>(left.count(), 1000)));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) return false;
  }
}

QString Fingerprint(X509* certificate) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int size = 0;
  if (X509_digest(certificate, EVP_sha256(), digest, &size) != 1) return {};
  return QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(digest), size).toHex(':').toUpper());
}

QString Subject(X509* certificate) {
  BIO* text = BIO_new(BIO_s_mem());
  X509_NAME_print_ex(text, X509_get_subject_name(certificate), 0, XN_FLAG_RFC2253 & ~ASN1_STRFLGS_ESC_MSB);
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(text, &bytes);
  const QString subject = QString::fromUtf8(bytes, size);
  BIO_free(text);
  return subject;
}

void DescribePeer(TlsLink& link, SSL* ssl) {
  link.protocol = QString::fromLatin1(SSL_get_version(ssl));
  link.cipher = QString::fromLatin1(SSL_get_cipher_name(ssl));
  X509* certificate = SSL_get1_peer_certificate(ssl);
  const long result = certificate ? SSL_get_verify_result(ssl) : X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT;
  link.verified = result == X509_V_OK;
  link.reason = certificate ? QString::fromUtf8(X509_verify_cert_error_string(result))
                            : u"the server sent no certificate"_s;
  if (!certificate) return;
  link.subject = Subject(certificate);
  link.fingerprint = Fingerprint(certificate);
  X509_free(certificate);
}

}  // namespace

TlsLink::~TlsLink() {
  if (ssl_) SSL_free(ssl_);
  CloseSocketQuietly(socket_);
}

std::shared_ptr<TlsLink> HandshakeTls(int socket, const QByteArray& host, Clock::time_point deadline,
                                      const QByteArray& clientCertificate) {
  const NoSigpipe noSigpipe;
  auto link = std::make_shared<TlsLink>(socket, NewConnection());
  link->localAddress = LocalAddress(socket);
  SSL* ssl = link->ssl_;
  const int flags = fcntl(socket, F_GETFL);
  if (!ssl || flags < 0 || fcntl(socket, F_SETFL, flags | O_NONBLOCK) != 0 || !ExpectHost(ssl, host) ||
      SSL_set_fd(ssl, socket) != 1) {
    link->failure = LastSslError("TLS could not be set up");
    return link;
  }
  if (!clientCertificate.isEmpty() && !UseClientCertificate(ssl, clientCertificate)) {
    link->failure = u"the client certificate %1 cannot be used: %2"_s.arg(QString::fromLocal8Bit(clientCertificate),
                                                                            LastSslError("not a PEM certificate and key"));
    return link;
  }
  SSL_set_mode(ssl, SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
  for (;;) {
    ERR_clear_error();
    const int done = SSL_connect(ssl);
    if (done == 1) break;
    const int error = SSL_get_error(ssl, done);
    if (error != SSL_ERROR_WANT_READ && error != SSL_ERROR_WANT_WRITE) {
      link->failure = HandshakeFailure(error);
      return link;
    }
    if (!WaitFor(socket, error, deadline)) {
      link->failure = QString::fromLatin1(kTimedOut);
      return link;
    }
  }
  DescribePeer(*link, ssl);
  return link;
}
