#include "gui/desktop_notifier.h"

#include "client/client_context.h"
#include "settings/settings_store.h"
#include "views/formatted_text.h"

#include <QDBusConnection>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {
const QString kService = u"org.freedesktop.Notifications"_s;
const QString kPath = u"/org/freedesktop/Notifications"_s;
const QString kAppName = u"Tolv"_s;
const QString kIcon = u"tolv"_s;  // the name in the icon theme
constexpr int kServiceTimeout = -1;
}  // namespace

QDBusMessage NotifyCall(const QString& title, const QString& line) {
  QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kService, u"Notify"_s);
  // The body is markup to some services: a "<nick>" must stay text.
  const QString body = line.toHtmlEscaped();
  call << kAppName << quint32(0) << kIcon << title << body << QStringList() << QVariantMap()
       << qint32(kServiceTimeout);
  return call;
}

void SendDesktopNotification(const QString& title, const QString& line) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  // send() does not wait for the reply; an absent service only earns an ignored error.
  bus.send(NotifyCall(title, line));
}

void NotifyUnlessActive(const QWidget& window, ClientContext& ctx, int position, const QString& line) {
  if (window.isActiveWindow() || ctx.settings.GetDword(u"desk_notify") == 0) return;
  if (const ConversationTab* tab = ctx.tabs.At(position))
    SendDesktopNotification(tab->name, StripFormatting(line));
}
