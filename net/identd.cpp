#include "net/identd.h"

#include "net/socket_transport.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"

#include <QCoreApplication>
#include <QPointer>
#include <QStringDecoder>

#include <cerrno>
#include <system_error>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

constexpr int kQueryCapacity = 127;  // bytes read per query
constexpr int kSystemCapacity = 15;  // units, terminator included
constexpr int kUserCapacity = 60;

// Posted to the application object rather than to `receiver`, which this thread may
// not touch: it could be destroyed meanwhile. Whether it still exists is asked on the
// main thread, where it lives; copying the guard here is safe, its count is atomic.
void HandOver(int socket, QPointer<QObject> receiver, std::function<void(int)> onAccepted) {
  QCoreApplication* app = QCoreApplication::instance();
  if (app == nullptr) {
    CloseSocketQuietly(socket);
    return;
  }
  QMetaObject::invokeMethod(
      app,
      [socket, receiver, onAccepted = std::move(onAccepted)] {
        if (receiver.isNull())
          CloseSocketQuietly(socket);
        else
          onAccepted(socket);
      },
      Qt::QueuedConnection);
}

bool IsBlank(QChar c) { return c == u' ' || c == u'\t'; }

QString WithoutBlanks(QStringView text) {
  QString result;
  result.reserve(text.size());
  for (QChar c : text)
    if (!IsBlank(c)) result.append(c);
  return result;
}

qsizetype LineEnd(QStringView text) {
  for (qsizetype i = 0; i < text.size(); ++i)
    if (text[i] == u'\r' || text[i] == u'\n') return i;
  return text.size();
}

// UTF-8 as every peer sends today; Latin-1 when the bytes are not UTF-8. The query
// ends at a NUL, as it did when it was read as a C string.
QString DecodeQuery(QByteArrayView bytes) {
  const qsizetype nul = bytes.indexOf('\0');
  if (nul >= 0) bytes = bytes.first(nul);
  QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  QString text = utf8.decode(bytes);
  return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

QString ReadSetting(const SettingsStore& settings, QStringView name, int capacityUnits) {
  QString value;
  settings.GetString(name, value, capacityUnits);
  return value;
}

}  // namespace

int StartIdentd(QObject* receiver, std::function<void(int socket)> onAccepted, int port,
                std::chrono::seconds wait) {
  const int listener = OpenListener(0, port);
  if (listener == kNoSocket) return errno;
  try {
    std::thread([listener, wait, receiver = QPointer<QObject>(receiver),
                 onAccepted = std::move(onAccepted)]() mutable {
      const int socket = AcceptOne(listener, wait);
      if (socket != kNoSocket) HandOver(socket, std::move(receiver), std::move(onAccepted));
    }).detach();
  } catch (const std::system_error& failure) {
    CloseSocketQuietly(listener);
    return failure.code().value();
  }
  return 0;
}

std::optional<QString> BuildIdentdReply(QStringView query, QStringView system, QStringView user) {
  const qsizetype comma = query.indexOf(u',');
  if (comma < 0) return std::nullopt;
  const QStringView after = query.sliced(comma + 1);
  QString reply = WithoutBlanks(query.first(comma)) + u", "_s +
                  WithoutBlanks(after.first(LineEnd(after))) + u" : USERID : "_s;
  reply.append(system).append(u" : "_s).append(user);
  return reply;
}

int ServeIdentd(int socket, const SettingsStore& settings, SocketErrorSink& errors,
                const std::function<void(const QString&)>& printStatus) {
  const QByteArray peer = PeerAddress(socket);
  if (!WaitReadable(socket, std::chrono::milliseconds(10))) return -1;
  QByteArray query;
  const int count = ReadChunk(
      socket, errors, [&](QByteArrayView bytes) { query = bytes.toByteArray(); }, kQueryCapacity);
  if (count <= 0) return count;
  const bool show = TestOption(settings, kOptIdentdShow);
  if (show) printStatus(u"* Identd request from "_s + QString::fromLatin1(peer));
  const std::optional<QString> reply =
      BuildIdentdReply(DecodeQuery(query), ReadSetting(settings, u"IdSystem", kSystemCapacity),
                       ReadSetting(settings, u"IdUser", kUserCapacity));
  if (!reply) return count;
  if (show) printStatus(u"* Identd replied: "_s + *reply);
  SendBytes(socket, reply->toUtf8() + "\r\n", errors);
  return count;
}
