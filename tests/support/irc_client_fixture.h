#pragma once
// A whole client context for protocol tests: default settings over a fresh folder, a
// fake shell, a Status tab, and a server connection that is one end of a socket pair,
// so a test reads back byte for byte what the client sent.
//
//   IrcClientFixture f;
//   SplitAndDispatch(f.ctx, "PING :x\r\n");
//   EXPECT_EQ(f.Sent(), "PONG :x\n");

#include "client/client_context.h"
#include "irc/line_assembly.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"
#include "support/fake_shell.h"
#include "views/output_path.h"
#include "views/tab_bar.h"

#include <QByteArray>
#include <QStringList>
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
    // Tests never ask a name server: the own address "resolves" to "host-of-" + itself.
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

  // One server line down the real road: line assembly, parsing, the registration gate
  // and the dispatch table.
  void Receive(const QString& line) { SplitAndDispatch(ctx, (line + QStringLiteral("\r\n")).toUtf8()); }

  // Everything the client has sent since the last call.
  QByteArray Sent() {
    QByteArray out;
    char chunk[4096];
    for (ssize_t n; (n = recv(peer_, chunk, sizeof chunk, MSG_DONTWAIT)) > 0;)
      out.append(chunk, n);
    return out;
  }

  QStringList Lines(int position) const {
    QStringList out;
    const ConversationTab* tab = ctx.tabs.At(position);
    if (!tab) return out;
    for (qsizetype i = 0; i < tab->lines->LineCount(); ++i) out << tab->lines->Line(i).text;
    return out;
  }
  QStringList StatusLines() const { return Lines(0); }
  quint32 StatusColour(qsizetype line) const { return ctx.tabs.At(0)->lines->Line(line).colour; }

  // The sounds asked for, as file names ("join.wav") or as events ("join").
  QStringList SoundFiles() const {
    QStringList names;
    for (const QString& path : shell.sounds) names << path.section(u'/', -1);
    return names;
  }
  QStringList SoundEvents() const {
    QStringList events = SoundFiles();
    for (QString& event : events)
      if (event.endsWith(u".wav")) event.chop(4);
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
