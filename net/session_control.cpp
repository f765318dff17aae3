#include "net/session_control.h"

#include "client/client_context.h"
#include "irc/line_assembly.h"
#include "irc/notify_list.h"
#include "irc/sasl_negotiation.h"
#include "net/identd.h"
#include "net/server_list.h"
#include "net/socket_errors.h"
#include "net/tls_link.h"
#include "net/tls_pins.h"
#include "settings/settings_flags.h"
#include "settings/settings_paths.h"
#include "settings/settings_store.h"
#include "views/output_path.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QSocketNotifier>

#include <thread>
#include <time.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto kNoServerText = "Select the IRC server first!~";
constexpr auto kUserOptionsText = "First fill in the user options!";
constexpr auto kTlsFailedText = "* TLS: handshake failed: ";
constexpr auto kNotTrustedText = "* TLS: certificate not trusted: ";
constexpr auto kTrustTitle = "Trust this certificate for %1?";
constexpr auto kTrustText = "It could not be verified: %1. Subject: %2. SHA-256 fingerprint: %3";
constexpr auto kPinNotSavedText = "* TLS: the trusted certificate could not be saved in %1";
constexpr auto kNoBridgeText = "* TLS: the connection could not be set up";
constexpr auto kConnectedText = "* Connected with TLS (%1, %2)";
constexpr auto kSaslUnreadableText = "* SASL: %1 of %2 could not be read; kept as it is, not used";
// Linux's boot-time clock: unlike the monotonic one it keeps running while suspended.
std::chrono::milliseconds SinceBoot() {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return std::chrono::milliseconds(qint64(now.tv_sec) * 1000 + now.tv_nsec / 1000000);
}

constexpr int kNotifyEvery = 20;  // the poll goes out when the count passes this: every 21 ticks

}  // namespace

SessionControl::SessionControl(ClientContext& ctx, QObject* parent) : QObject(parent), ctx_(ctx) {
  pollTimer_.setInterval(1000);
  reconnectTimer_.setInterval(5000);
  connect(&pollTimer_, &QTimer::timeout, this, &SessionControl::PollTick);
  connect(&reconnectTimer_, &QTimer::timeout, this, &SessionControl::ReconnectTick);
}

SessionControl::~SessionControl() {
  StopWatching();
  CloseSocketQuietly(ctx_.session.serverSocket);
  tlsBridge_.reset();
  CloseSocketQuietly(ctx_.session.identdSocket);
  ctx_.session.serverSocket = ctx_.session.identdSocket = kNoSocket;
}

void SessionControl::ToggleConnection() {
  if (ctx_.session.serverSocket != kNoSocket) {
    RequestDisconnect();
  } else if (connecting_) {
    ++attempt_;  // the pending result will be thrown away
    connecting_ = false;
    ctx_.shell.SetBusy(false);
    Disconnect();
  } else if (reconnectTimer_.isActive()) {
    reconnectTimer_.stop();
    Disconnect();
  } else {
    Connect();
  }
}

void SessionControl::RequestDisconnect() {
  ctx_.session.connected = false;
  ctx_.session.userQuit = true;
}

void SessionControl::Connect() {
  if (connecting_) return;
  Session& session = ctx_.session;
  session.currentNick.clear();
  session.ownUserHost.clear();
  session.receiveBuffer.clear();
  session.discardingLongLine = false;
  if (!TestOption(ctx_.settings, kOptRejoinOnConnect) &&
      !TestOption(ctx_.settings, kOptKeepChannelsOpen))
    ctx_.tabs.CloseChannelTabs();

  QByteArray host, password;
  int port = -1;
  bool tls = false;
  if (!GetSelectedServer(ctx_.settings, host, password, port, &tls)) {
    ctx_.shell.ShowMessage(u"Error!"_s, QString::fromLatin1(kNoServerText));
    return;
  }
  session.serverHost = QString::fromUtf8(host);
  session.sasl = {};
  sasl_ = SaslAccountFor(session.serverHost);
  const QString certificate =
      sasl_ && sasl_->External() ? QDir(GetInstallDir(ctx_.settings)).absoluteFilePath(sasl_->certificate) : QString();
  if (const QString why = sasl_ ? SaslUnusableText(*sasl_, tls, certificate) : QString(); !why.isEmpty()) {
    ctx_.PrintStatus(why, LineStyle::Info);
    if (sasl_->disconnectOnFailure) return;  // nothing has gone out yet
    sasl_.reset();
  }
  const QByteArray clientCertificate = sasl_ ? QFile::encodeName(certificate) : QByteArray();
  ctx_.shell.ShowConnectionState(true);
  if (TestOption(ctx_.settings, kOptIdentdEnable)) StartIdentd();  // listening before the server asks

  connecting_ = true;
  ctx_.shell.SetBusy(true);
  const quint64 attempt = ++attempt_;
  QPointer<SessionControl> self(this);
  const QString hostText = session.serverHost, passwordText = QString::fromUtf8(password);
  std::thread([self, attempt, host, port, tls, hostText, passwordText, clientCertificate, timeout = connectTimeout] {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    ConnectResult result = ConnectToServer(host, port, timeout);
    std::shared_ptr<TlsLink> link;
    if (tls && result.socket != kNoSocket) link = HandshakeTls(std::exchange(result.socket, kNoSocket), host, deadline, clientCertificate);
    // Posted to the application object, which outlives this control: a control that is
    // gone by then is noticed on the main thread, where the pointer can be trusted.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [self, attempt, result, link, hostText, port, passwordText] {
          if (!self || self->attempt_ != attempt) {
            CloseSocketQuietly(result.socket);
            return;
          }
          self->FinishConnect(attempt, result.socket, result.error, hostText, port, passwordText, link);
        },
        Qt::QueuedConnection);
  }).detach();
}

void SessionControl::FinishConnect(quint64 attempt, int socket, int error, const QString& host, int port,
                                   const QString& password, const std::shared_ptr<TlsLink>& tls) {
  ctx_.shell.SetBusy(false);
  if (tls) {
    QPointer<SessionControl> alive(this);
    const QString refusal = TlsRefusal(*tls, host);
    if (!alive || attempt_ != attempt) return;  // closed or cancelled while the user was asked
    if (!refusal.isEmpty()) {
      ctx_.PrintStatus(refusal, LineStyle::Info);
      return FailConnect();
    }
    tlsBridge_ = TlsBridge::Start(tls, socket);
    if (!tlsBridge_) {
      ctx_.PrintStatus(QString::fromLatin1(kNoBridgeText), LineStyle::Info);
      return FailConnect();
    }
    ctx_.session.tlsLocalAddress = tls->localAddress;
  }
  connecting_ = false;
  if (socket == kNoSocket) {
    ctx_.shell.ShowConnectionState(false);
    ctx_.ReportSocketError(error);
    emit connectFinished(false);
    return;
  }
  ctx_.session.serverSocket = socket;
  if (!SendRegistration(host, port, password)) {
    Disconnect();
    AfterRegistrationFailure();
    emit connectFinished(false);
    return;
  }
  if (tls)
    ctx_.PrintStatus(QString::fromLatin1(kConnectedText).arg(tls->protocol, tls->cipher), LineStyle::Info);
  reconnectTimer_.stop();
  pollTimer_.start();
  ctx_.session.connected = true;
  ctx_.session.keepAliveToken.clear();
  lastHeard_ = SinceBoot();
  keepAliveSent_ = {};
  WatchSocket(socket);
  emit connectFinished(true);
}

void SessionControl::FailConnect() {
  connecting_ = false;
  ctx_.shell.ShowConnectionState(false);
  emit connectFinished(false);
}

// Empty when the link may carry the session: a verified certificate, the one pinned for
// this host, or one the user trusts now (and which is pinned from then on). Else the
// Status line that says why not.
QString SessionControl::TlsRefusal(const TlsLink& tls, const QString& host) {
  if (!tls.failure.isEmpty()) return QString::fromLatin1(kTlsFailedText) + tls.failure;
  const QString pins = TlsPinsPath(ctx_.settings);
  if (tls.verified || IsPinned(pins, host, tls.fingerprint)) return {};
  const QString question = QString::fromLatin1(kTrustText).arg(tls.reason, tls.subject, tls.fingerprint);
  QPointer<SessionControl> alive(this);
  const bool trusted = !tls.fingerprint.isEmpty() &&
                       ctx_.shell.AskYesNo(QString::fromLatin1(kTrustTitle).arg(host), question);
  if (!alive) return {};
  if (!trusted) return QString::fromLatin1(kNotTrustedText) + tls.reason;
  if (!Pin(pins, host, tls.fingerprint))
    ctx_.PrintStatus(QString::fromLatin1(kPinNotSavedText).arg(pins), LineStyle::Info);
  return {};
}

void SessionControl::AfterRegistrationFailure() {
  if (TestOption(ctx_.settings, kOptReconnect)) {
    if (!reconnectTimer_.isActive()) reconnectTimer_.start();
  } else {
    reconnectTimer_.stop();
  }
}

bool SessionControl::SendRegistration(const QString& host, int port, const QString& password) {
  Session& session = ctx_.session;
  QString email, fullname;
  session.requestedNick.clear();
  ctx_.settings.GetString(u"nick", session.requestedNick, 120);
  ctx_.settings.GetString(u"email", email, 240);
  ctx_.settings.GetString(u"fullname", fullname, 500);
  const qsizetype at = email.indexOf(u'@');
  const QString user = at < 0 ? QString() : email.left(at);
  const QString mailHost = at < 0 ? QString() : email.mid(at + 1);
  if (session.requestedNick.isEmpty() || user.isEmpty() || mailHost.isEmpty() ||
      fullname.isEmpty()) {
    ctx_.shell.ShowMessage(u"Error!"_s, QString::fromLatin1(kUserOptionsText));
    return false;
  }
  ctx_.PrintStatus(u"* Connecting to "_s + host + u" ("_s + QString::number(port) + u')',
                   LineStyle::Info);
  if (sasl_) {
    BeginSasl(ctx_, *sasl_);
    saslStarted_ = SinceBoot();
  }
  if (!password.isEmpty()) ctx_.SendToServer(u"PASS "_s + password);
  ctx_.SendToServer(u"nick "_s + session.requestedNick);
  ctx_.SendToServer(u"user "_s + user + u' ' + mailHost + u" tolv :"_s + fullname);
  return true;
}

void SessionControl::Disconnect() {
  ctx_.shell.ShowConnectionState(false);
  StopWatching();
  if (ctx_.session.serverSocket != kNoSocket) CloseSocket(ctx_.session.serverSocket, ctx_);
  ctx_.session.serverSocket = kNoSocket;
  tlsBridge_.reset();  // the closed socket has ended its thread, or this ends it
  ctx_.session.tlsLocalAddress = 0;
  if (ctx_.session.identdSocket != kNoSocket) CloseSocket(ctx_.session.identdSocket, ctx_);
  ctx_.session.identdSocket = kNoSocket;
  const quint32 colour = ctx_.Colour(LineStyle::Info);
  for (int i = 0; i < ctx_.tabs.Count(); ++i)
    if (IsIrcConversation(ctx_.tabs.At(i)->kind)) PrintToTab(ctx_.tabs, i, u"* Disconnected", colour);
}

// A port that cannot be bound is said once: the same failure at every connect is noise.
void SessionControl::StartIdentd() {
  QPointer<SessionControl> self(this);
  const int error = ::StartIdentd(
      this,
      [self](int socket) {
        if (!self) return CloseSocketQuietly(socket);
        CloseSocketQuietly(self->ctx_.session.identdSocket);  // a newer query replaces it
        self->ctx_.session.identdSocket = socket;
      },
      identdPort);
  if (error == 0 || identdFailureShown_) return;
  identdFailureShown_ = true;
  ctx_.PrintStatus(u"* Identd can't listen on port %1: %2"_s.arg(identdPort).arg(qt_error_string(error)),
                   LineStyle::Info);
}

void SessionControl::PollTick() {
  Session& session = ctx_.session;
  if (session.identdSocket != kNoSocket)
    ServeIdentd(session.identdSocket, ctx_.settings, ctx_,
                [this](const QString& line) { ctx_.PrintStatus(line, LineStyle::Info); });
  if (session.serverSocket == kNoSocket) return;
  // The notify count only runs once the server has given us a nick.
  if (session.connected && !session.currentNick.isEmpty() && ++session.notifyTicks > kNotifyEvery) {
    session.notifyTicks = 0;
    if (ctx_.settings.GetDword(u"en_notify") != 0 && !ctx_.isonRequested &&
        !ctx_.optionsDialogOpen)
      SendNotifyPoll(ctx_);
  }
  CheckSasl();
  ReadServer(10ms, 10ms);
  CheckSilence();
}

// Told once per run: the same damaged file at every connect is noise.
std::optional<SaslAccount> SessionControl::SaslAccountFor(const QString& host) {
  const QString path = SaslAccountsPath(ctx_.settings);
  QList<int> damaged;
  std::optional<SaslAccount> account = FindSaslAccount(path, host, &damaged);
  if (!damaged.isEmpty() && !saslFileWarned_) {
    saslFileWarned_ = true;
    QStringList numbers;
    for (int line : damaged) numbers << QString::number(line);
    const QString lines = (damaged.size() == 1 ? u"line "_s : u"lines "_s) + numbers.join(u", "_s);
    ctx_.PrintStatus(QString::fromLatin1(kSaslUnreadableText).arg(lines, path), LineStyle::Info);
  }
  return account;
}

// A server that never finishes the negotiation would hold registration for ever, while
// its notices keep the silence watch from noticing.
void SessionControl::CheckSasl() {
  if (!SaslInProgress(ctx_.session.sasl) || SinceBoot() - saslStarted_ < saslTimeout) return;
  SaslOverdue(ctx_, int(std::chrono::duration_cast<std::chrono::seconds>(saslTimeout).count()));
}

void SessionControl::CheckSilence() {
  Session& session = ctx_.session;
  if (!session.connected || session.serverSocket == kNoSocket) return;
  const std::chrono::milliseconds now = SinceBoot();
  if (keepAliveSent_ == std::chrono::milliseconds{0}) {
    if (now - lastHeard_ < silenceBeforePing) return;
    keepAliveSent_ = now;
    session.keepAliveToken = u"tolv-"_s + QString::number(++keepAlives_);
    ctx_.SendToServer(u"PING :"_s + session.keepAliveToken);
  } else if (now - keepAliveSent_ >= silenceAfterPing) {
    const auto silent = std::chrono::duration_cast<std::chrono::seconds>(now - lastHeard_);
    ctx_.PrintStatus(u"* No answer from the server for %1 seconds: the connection is lost"_s.arg(silent.count()),
                     LineStyle::Info);
    EndConnection();
  }
}

// Reads what is waiting and, when the connection turns out to be over (peer closed, a
// socket error, ERROR from the server, the user's disconnect), ends it.
void SessionControl::ReadServer(std::chrono::microseconds firstWait,
                                std::chrono::microseconds drainWait) {
  Session& session = ctx_.session;
  if (session.serverSocket == kNoSocket) return;
  const int result =
      PollSocket(session.serverSocket, ctx_,
                 [this](QByteArrayView bytes) {
                   lastHeard_ = SinceBoot();
                   keepAliveSent_ = {};
                   SplitAndDispatch(ctx_, bytes);
                 },
                 firstWait,
                 drainWait);
  if (session.connected && result != 0) return;
  EndConnection();
}

void SessionControl::EndConnection() {
  pollTimer_.stop();
  Disconnect();
  MarkNotifyOffline(ctx_.notify);
  emit connectionEnded();
  if (ctx_.session.userQuit) {
    ctx_.session.userQuit = false;
    return;
  }
  if (!TestOption(ctx_.settings, kOptReconnect)) return;
  Connect();  // at once: a dropped line should cost the user as little as possible
}

void SessionControl::ReconnectTick() {
  reconnectTimer_.stop();
  Connect();
}

void SessionControl::WatchSocket(int socket) {
  StopWatching();
  notifier_ = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, [this] { ReadServer(0us, 0us); });
}

void SessionControl::StopWatching() {
  if (!notifier_) return;
  notifier_->setEnabled(false);
  // This may run inside the notifier's own signal: let the event loop delete it.
  notifier_.release()->deleteLater();
}
