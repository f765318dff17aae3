#pragma once
// Desktop notifications through the freedesktop notification service on the session
// bus. Fire and forget: without a bus or a service nothing happens and nobody waits.

#include <QDBusMessage>
#include <QString>

class ClientContext;
class QWidget;

// The Notify call for a line of `title` (the tab's name): the program's name and icon,
// the line as the body, the service's own time-out.
QDBusMessage NotifyCall(const QString& title, const QString& line);

// Sends NotifyCall(title, line) on the session bus, when there is one.
void SendDesktopNotification(const QString& title, const QString& line);

// Tells the desktop of `line` in the tab at `position`, without its formatting codes,
// unless `window` is the active one or the user switched it off ("desk_notify" 0).
void NotifyUnlessActive(const QWidget& window, ClientContext& ctx, int position, const QString& line);
