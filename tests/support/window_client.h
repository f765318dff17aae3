#pragma once
// The main window over a client whose server is one end of a socket pair: what a widget
// test needs to feed server lines in and read what the window sent.

#include "client/client_context.h"
#include "gui/main_window.h"
#include "irc/line_assembly.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

#include <QTemporaryDir>

#include <memory>

#include <sys/socket.h>
#include <unistd.h>

class WindowClient {
 protected:
  WindowClient() {
    InitialiseDefaults(settings);
    settings.SetDword(u"tstamps", 0);
    settings.SetDword(u"Options", settings.GetDword(u"Options") & ~0x40);  // no splash to tap away
    window = std::make_unique<MainWindow>(settings);
    window->FinishStart(false);
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, pair) == 0) {
      window->Context().session.serverSocket = pair[0];
      peer_ = pair[1];
    }
    window->Context().session.currentNick = QStringLiteral("me");
  }
  ~WindowClient() {
    window.reset();
    if (peer_ >= 0) close(peer_);
  }
  void Receive(const QString& lines) { SplitAndDispatch(window->Context(), lines.toUtf8()); }
  QByteArray Sent() {
    QByteArray out;
    char chunk[4096];
    for (ssize_t n; (n = recv(peer_, chunk, sizeof chunk, MSG_DONTWAIT)) > 0;) out.append(chunk, n);
    return out;
  }

  QTemporaryDir home;
  SettingsStore settings{home.path()};
  std::unique_ptr<MainWindow> window;

 private:
  int peer_ = -1;
};
