#pragma once
// Connecting, registering, polling and ending the server connection, with the two
// timers that drive it: the one-second poll tick (identd, notify count, reading) and the
// five-second retry after a registration that could not be sent.
//
// A link that dies without a word (a phone changing networks, a computer that slept) is
// noticed: after two minutes without a line from the server a PING goes out, and one
// more minute without any line ends the connection as a lost one. The clock counts the
// time the computer slept.
//
// Resolving and connecting run on a worker thread with a time-out, so the window never
// freezes; the server socket is read as soon as it is readable, and the tick still polls.
//
// A port written with a leading "+" speaks TLS: the handshake runs on the same worker
// thread within the same time-out, the certificate is judged on this thread (asking the
// user when it cannot be verified and is not pinned), and a bridge thread carries the
// bytes, so everything above the socket is the same with and without TLS.
//
// A server with an account in "sasl_accounts.txt" is logged in to while registering
// (irc/sasl_negotiation.h); the password never goes over a plain link unless the account
// allows it, and a negotiation the server does not finish in time is given up.

#include "net/sasl_accounts.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class ClientContext;
class QSocketNotifier;
class TlsBridge;
class TlsLink;

class SessionControl : public QObject {
  Q_OBJECT

 public:
  explicit SessionControl(ClientContext& ctx, QObject* parent = nullptr);
  ~SessionControl() override;

  // The Connect/Disconnect command (40008).
  void ToggleConnection();
  // The connect sequence. The outcome arrives later on this thread (connectFinished).
  void Connect();
  // Ends the connection now: no QUIT line, "* Disconnected" in every conversation tab.
  void Disconnect();
  // The lines that register the client; false (after telling the user) when the user
  // options are incomplete.
  bool SendRegistration(const QString& host, int port, const QString& password);
  // The Disconnect command: the next tick ends the connection without a QUIT line and
  // without reconnecting. (A typed /quit only marks the session: the server closes.)
  void RequestDisconnect();

  // Timer handlers, public so that tests drive them directly.
  void PollTick();
  void ReconnectTick();

  bool IsConnecting() const { return connecting_; }
  bool PollTimerRunning() const { return pollTimer_.isActive(); }
  bool ReconnectTimerRunning() const { return reconnectTimer_.isActive(); }

  // The identd port: 113 for the client; tests move it to run in parallel.
  int identdPort = 113;
  std::chrono::milliseconds connectTimeout{30000};
  std::chrono::milliseconds silenceBeforePing{120000};
  std::chrono::milliseconds silenceAfterPing{60000};
  std::chrono::milliseconds saslTimeout{30000};

 signals:
  void connectFinished(bool registered);
  void connectionEnded();

 private:
  void FinishConnect(quint64 attempt, int socket, int error, const QString& host, int port,
                     const QString& password, const std::shared_ptr<TlsLink>& tls);
  QString TlsRefusal(const TlsLink& tls, const QString& host);
  void FailConnect();
  void ReadServer(std::chrono::microseconds firstWait, std::chrono::microseconds drainWait);
  void EndConnection();
  void WatchSocket(int socket);
  void StopWatching();
  void AfterRegistrationFailure();
  void StartIdentd();
  void CheckSilence();
  std::optional<SaslAccount> SaslAccountFor(const QString& host);
  void CheckSasl();

  ClientContext& ctx_;
  QTimer pollTimer_;
  QTimer reconnectTimer_;
  std::unique_ptr<QSocketNotifier> notifier_;
  std::unique_ptr<TlsBridge> tlsBridge_;  // over TLS: carries the server socket's bytes
  bool connecting_ = false;
  bool identdFailureShown_ = false;
  quint64 attempt_ = 0;  // a late connect result of a cancelled attempt is discarded
  // On the clock that runs through sleep: when the server was last heard, and when our
  // keep-alive PING went out (zero: none outstanding).
  std::chrono::milliseconds lastHeard_{0};
  std::chrono::milliseconds keepAliveSent_{0};
  quint64 keepAlives_ = 0;
  std::optional<SaslAccount> sasl_;  // the account of the attempt under way
  std::chrono::milliseconds saslStarted_{0};
  bool saslFileWarned_ = false;
};
