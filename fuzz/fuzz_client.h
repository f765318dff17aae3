#pragma once
// A whole client for the targets that drive the protocol engine: settings in a folder made
// once per process (kept in memory after set-up: one batch is never ended), and per input a
// fresh context with a Status tab, two channels and a chat, whose server connection is one
// end of a socket pair. The far end is drained after every chunk, so a send never waits.

#include "client/client_context.h"
#include "fuzz/fuzz_check.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fuzz {

using namespace Qt::StringLiterals;

// A user who declines every offer; a prompt gets `nickAnswer` when there is one.
struct FuzzShell : Shell {
  std::optional<QString> nickAnswer;
  void ShowMessage(const QString&, const QString&) override {}
  bool AskYesNo(const QString&, const QString&) override { return false; }
  std::optional<QString> AskText(const QString&, const QString&, const QString&, EmptyAnswer) override { return nickAnswer; }
  std::optional<std::pair<QString, QString>> AskTwoTexts(const QString&, const QString&, const QString&) override {
    return nickAnswer ? std::optional(std::pair{*nickAnswer, *nickAnswer}) : std::nullopt;
  }
  std::optional<int> PickFromList(const QString&, const QString&, const QStringList& entries, const QString&) override {
    return entries.isEmpty() ? std::nullopt : std::optional<int>(0);
  }
  DccChoice AskDccChat(const QString&) override { return DccChoice::Cancel; }
  DccChoice AskDccReceive(const QString&, QString&) override { return DccChoice::Cancel; }
  DccChoice AskDccExisting(const QString&, bool) override { return DccChoice::Cancel; }
  std::optional<DccSendChoice> AskDccSend(const QString&) override { return std::nullopt; }
  void PlaySound(const QString&) override {}
  void SetBusy(bool) override {}
  void ShowConnectionState(bool) override {}
};

inline constexpr auto kEverything = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;

inline const QTemporaryDir& Home() {
  static const QTemporaryDir home(TempDirTemplate());
  return home;
}

// What the home folder holds once set up: nothing may be added beside the logs.
inline QStringList& HomeEntries() {
  static QStringList entries;
  return entries;
}

inline SettingsStore& Settings() {
  static SettingsStore* const settings = [] {
    FUZZ_CHECK(Home().isValid(), "a temporary folder for the settings");
    auto* store = new SettingsStore(Home().path());
    InitialiseDefaults(*store);
    const QString logs = Home().path() + u"/logs/"_s;
    QDir().mkpath(logs);
    store->SetString(u"logpath", logs, int(logs.size()) + 1);
    store->SetString(u"nick", u"tolv42", 7);
    store->SetString(u"ignore", u"troll spammer  bad!guy@x", 2002);
    store->SetString(u"notify", u"alice bob carol", 2002);
    store->BeginBatch();
    HomeEntries() = QDir(Home().path()).entryList(kEverything);
    return store;
  }();
  return *settings;
}

// Log files are named after channels and nicks the server sends: each must be a plain .txt
// file inside the log folder, and nothing may appear beside it. Removed after each input.
inline void CheckAndClearLogs() {
  FUZZ_CHECK(QDir(Home().path()).entryList(kEverything) == HomeEntries(), "a file appeared outside the log folder");
  QDir logs(Home().path() + u"/logs/"_s);
  for (const QFileInfo& entry : logs.entryInfoList(kEverything)) {
    FUZZ_CHECK(entry.isFile() && !entry.isSymLink() && entry.fileName().endsWith(u".txt"_s),
               "a log name made a folder, a link or a file not ending in .txt");
    logs.remove(entry.fileName());
  }
}

// The first two bytes of an input pick the settings and the starting state, so no input
// depends on another.
class FuzzClient {
 public:
  FuzzClient(quint8 options, quint8 more) : logging(more & 0x02) {
    quint32 word = 0x010001C0;  // the default "Options"
    const auto set = [&word](bool on, quint32 bit) { word = on ? word | bit : word & ~bit; };
    set(options & 0x01, kOptShowAddresses);
    set(options & 0x02, kOptRejoinAfterKick);
    set(options & 0x04, kOptRejoinOnConnect);
    set(options & 0x08, kOptShortJoins);
    set(options & 0x10, kOptHidePingPong | kOptSkipMotd);
    set(options & 0x20, kOptKeepChannelsOpen);
    set(!(more & 0x10), kOptInvisible);
    SettingsStore& settings = ctx.settings;
    settings.SetDword(u"Options", qint32(word));
    for (auto list : {u"en_ignore", u"en_hlights", u"en_notify", u"not_whois"}) settings.SetDword(list, (options & 0x40) ? 1 : 0);
    // Two blanks in a row make an empty word, which highlights everything: only sometimes.
    settings.SetString(u"hlights", (more & 0x40) ? u"tolv  urgent"_s : u"tolv urgent alert"_s, 2002);
    settings.SetDword(u"tstamps", more & 0x01);
    settings.SetDword(u"Files", logging ? 0x210F : 0x2100);
    settings.SetDword(u"DCC", (more & 0x04) ? 0x3000 : 0x0011);
    settings.SetDword(u"snd_enable", (more & 0x20) ? 1 : 0);
    settings.SetString(u"LocalHost", u"0.0.0.0", 8);
    if (more & 0x20) shell.nickAnswer = u"tolv_"_s;

    ctx.tabs.SetClock([] { return QDateTime(QDate(2024, 2, 29), QTime(23, 59, 30)); });
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    const int channel = ctx.tabs.OpenTab(u"#tolv", TabKind::Channel);
    ctx.tabs.OpenTab(u"#Test", TabKind::Channel);
    ctx.tabs.OpenTab(u"alice", TabKind::Chat);
    for (auto nick : {u"@op", u"+voiced", u"alice", u"tolv42", u"Bob"}) ctx.tabs.AddNick(u"#tolv", nick);
    ctx.tabs.ActivateTab((more & 0x08) ? channel : 0);
    ctx.session.serverHost = u"irc.example.net"_s;
    ctx.session.requestedNick = u"tolv42"_s;
    if (options & 0x80) ctx.session.currentNick = u"tolv42"_s;
    if (more & 0x80) return;  // not connected
    int pair[2];
    FUZZ_CHECK(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) == 0, "a socket pair");
    // Room for all one chunk can make the client say (SO_SNDBUFFORCE needs root); should it
    // say more, the send fails rather than waiting for a reader.
    const int bytes = 8 << 20;
    if (setsockopt(pair[0], SOL_SOCKET, SO_SNDBUFFORCE, &bytes, sizeof bytes) != 0)
      setsockopt(pair[0], SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
    fcntl(pair[0], F_SETFL, fcntl(pair[0], F_GETFL) | O_NONBLOCK);
    ctx.session.serverSocket = ours_ = pair[0];
    ctx.session.connected = true;
    peer_ = pair[1];
  }
  ~FuzzClient() {
    if (ours_ >= 0 && ctx.session.serverSocket == ours_) close(ours_);  // unless the client closed it
    if (peer_ >= 0) close(peer_);
  }

  // Reads and discards what the client sent.
  void Drain() {
    char buffer[65536];
    while (peer_ >= 0 && recv(peer_, buffer, sizeof buffer, MSG_DONTWAIT) > 0) {
    }
  }

  const bool logging;
  FuzzShell shell;
  ClientContext ctx{Settings(), shell};

 private:
  int ours_ = -1;
  int peer_ = -1;
};

}  // namespace fuzz
