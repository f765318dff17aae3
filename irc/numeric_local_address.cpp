// The own address as the server sees it, from the answer to the client's own USERHOST
// ("302 me :me=+~me@192.0.2.7"). DCC offers announce it, so it is stored at once; the
// host name is only shown, and its reverse look-up may take as long as the resolver
// likes, so it runs on a thread of its own while an event loop can take the answer.

#include "irc/numeric_handlers.h"

#include "client/client_context.h"
#include "settings/settings_store.h"
#include "views/tab_bar.h"

#include <QCoreApplication>
#include <QPointer>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <system_error>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

constexpr int kHostCapacity = 1025;
constexpr int kServiceCapacity = 32;

// The address is read as a dotted IPv4 address; a host name reads as 255.255.255.255,
// as it always has. Without NI_NAMEREQD an address without a name comes back numeric.
QString HostNameOf(const QString& address) {
  sockaddr_in socketAddress{};
  socketAddress.sin_family = AF_INET;
  socketAddress.sin_addr.s_addr = inet_addr(address.toLatin1().constData());
  if (socketAddress.sin_addr.s_addr == INADDR_NONE) return address;  // no address to look up
  char host[kHostCapacity] = {};
  char service[kServiceCapacity] = {};
  if (getnameinfo(reinterpret_cast<const sockaddr*>(&socketAddress), sizeof socketAddress, host,
                  sizeof host, service, sizeof service, NI_NUMERICSERV) != 0)
    return address;
  return QString::fromUtf8(host);
}

void ShowLocalHost(ClientContext& ctx, const QString& hostName, const QString& address) {
  ctx.PrintStatus(u"Local host: "_s + hostName + u" ("_s + address + u')', LineStyle::Info2);
}

// The answer is posted to the application object, which outlives the context; whether
// the context still exists is asked on the main thread through its tab bar, a member
// that dies with it.
bool LookUpOnThread(ClientContext& ctx, const QString& address) {
  if (QCoreApplication::instance() == nullptr) return false;
  QPointer<TabBar> alive(&ctx.tabs);
  ClientContext* context = &ctx;
  const auto lookUp = ctx.lookUpHostName ? ctx.lookUpHostName : HostNameOf;
  try {
    std::thread([alive, context, address, lookUp] {
      const QString hostName = lookUp(address);
      QMetaObject::invokeMethod(
          QCoreApplication::instance(),
          [alive, context, hostName, address] {
            if (alive) ShowLocalHost(*context, hostName, address);
          },
          Qt::QueuedConnection);
    }).detach();
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

}  // namespace

void LearnLocalAddress(ClientContext& ctx, const QString& userhostReply) {
  const qsizetype at = userhostReply.indexOf(u'@');
  if (at < 0 || at + 1 >= userhostReply.size()) return;
  const QString address = userhostReply.sliced(at + 1);
  ctx.settings.SetString(u"LocalHost", address, static_cast<int>(address.size()) + 1);
  if (LookUpOnThread(ctx, address)) return;
  ShowLocalHost(ctx, ctx.lookUpHostName ? ctx.lookUpHostName(address) : HostNameOf(address), address);
}
