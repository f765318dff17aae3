#pragma once
// The identd responder (RFC 1413). While we register, the IRC server asks which user
// owns our connection; the answer comes from the "IdSystem" and "IdUser" settings.
// One query connection is accepted per connect, on a short-lived thread; the query is
// read and answered on the main thread by the poll tick.

#include <QString>
#include <QStringView>

#include <chrono>
#include <functional>
#include <optional>

class QObject;
class SettingsStore;
class SocketErrorSink;

inline constexpr int kIdentdPort = 113;

// Listens on `port` of every address for `wait` and accepts at most one connection.
// The listener is open when this returns, so a server connect started next is
// answered. The accepted socket is handed to `onAccepted` on the application's main
// thread through its event loop; when `receiver` is gone by then the socket is closed
// instead. Returns 0, or the errno of the failure when the port cannot be bound (113
// needs root or cap_net_bind_service on Linux). The client always listens on 113; tests
// pass a free port.
int StartIdentd(QObject* receiver, std::function<void(int socket)> onAccepted,
                int port = kIdentdPort, std::chrono::seconds wait = std::chrono::seconds(10));

// The reply to `query` ("6667 , 1025" gives "6667, 1025 : USERID : <system> : <user>"),
// without its CR LF; nullopt for an empty query or one without ",".
std::optional<QString> BuildIdentdReply(QStringView query, QStringView system, QStringView user);

// Answers a query waiting on `socket` (waits up to 10 ms), echoing the request and the
// reply through `printStatus` when the "show requests" option is on. Returns -1 when
// nothing was waiting or the read failed, 0 when the peer closed, else the bytes read.
// The socket stays open: the caller closes it at disconnect or when a newer one comes.
int ServeIdentd(int socket, const SettingsStore& settings, SocketErrorSink& errors,
                const std::function<void(const QString&)>& printStatus);
