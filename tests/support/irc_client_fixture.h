#pragma once
// A whole client context for protocol tests: default settings in a fresh folder, a fake
// shell, a Status tab, and a socket pair so a test reads back byte for byte what was sent.

#include "client/client_context.h"
#include "irc/line_assembly.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/fake_shell.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

#include <QTemporaryDir>

#include <sys/socket.h>
#include <unistd.h>

class IrcClientFixture {
 public:
  IrcClientFixture() {
    InitialiseDefaults(settings);
    settings.SetDword(u"tstamps", 0);
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    ctx.tabs.ActivateTab(0);
    ctx.session.serverHost = QStringLiteral("irc.test");  // the prefix of lines without one
    ctx.lookUpHostName = [](const QString& address) { return QStringLiteral("host-of-") + address; };
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, pair) == 0) {
      ctx.session.serverSocket = pair[0];
      peer_ = pair[1];
    }
  }
  ~IrcClientFixture() {
    if (ctx.session.serverSocket >= 0) close(ctx.session.serverSocket);
    if (peer_ >= 0) close(peer_);
  }
  IrcClientFixture(const IrcClientFixture&) = delete;
  IrcClientFixture& operator=(const IrcClientFixture&) = delete;

  // One server line down the real road: line assembly, parsing, registration, dispatch.
  void Receive(const QString& line) { SplitAndDispatch(ctx, line.toUtf8() + "\r\n"); }

  QByteArray Sent() {
    QByteArray out;
    char chunk[4096];
    for (ssize_t n; (n = recv(peer_, chunk, sizeof chunk, MSG_DONTWAIT)) > 0;) out.append(chunk, n);
    return out;
  }

  QStringList StatusLines() const {
    QStringList out;
    for (qsizetype i = 0; i < ctx.tabs.At(0)->lines->LineCount(); ++i) out << ctx.tabs.At(0)->lines->Line(i).text;
    return out;
  }

  QStringList SoundEvents() const {  // "join" for ".../join.wav"
    QStringList events;
    for (const QString& path : shell.sounds) events << path.section(u'/', -1).chopped(4);
    return events;
  }

  // Switches the ignore and highlight lists on with these words; "" leaves a list off.
  void SetWordLists(const QString& ignore, const QString& hlights) {
    if (!ignore.isEmpty()) {
      settings.SetDword(u"en_ignore", 1);
      settings.SetString(u"ignore", ignore, 2002);
    }
    if (!hlights.isEmpty()) {
      settings.SetDword(u"en_hlights", 1);
      settings.SetString(u"hlights", hlights, 2002);
    }
  }

  void SetOptions(quint32 options) { settings.SetDword(u"Options", static_cast<qint32>(options)); }

  QTemporaryDir dir;
  SettingsStore settings{dir.path()};
  FakeShell shell;
  ClientContext ctx{settings, shell};

 private:
  int peer_ = -1;
};
