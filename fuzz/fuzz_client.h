#pragma once
// A whole client for the fuzz targets that drive the protocol engine: the settings over a
// folder made once per process, a Status tab and two channel tabs, and one end of a
// socket pair as the server connection. The far end is read and thrown away after every
// chunk, so the client's replies never fill the pair and a send never waits.
//
// The settings live for the whole process but never reach the disk after set-up (one
// batch is left open), so each input's option bits cost no file write. Everything else is
// built anew for every input: stored lines and tabs grow with what a server sends, and a
// context kept across inputs would grow without bound.

#include "client/client_context.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_temp_dir.h"
#include "client/shell.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "views/tab_bar.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <optional>

namespace fuzz {

using namespace Qt::StringLiterals;

inline constexpr QStringView kOwnNick = u"tolv42";
inline constexpr QStringView kServerHost = u"irc.example.net";

// Answers like a user who always says no: a DCC offer is never accepted (no connection,
// no file), and a nick prompt gets `nickAnswer` when there is one.
class FuzzShell : public Shell {
 public:
  std::optional<QString> nickAnswer;
  int calls = 0;

  void ShowMessage(const QString&, const QString&) override { ++calls; }
  bool AskYesNo(const QString&, const QString&) override { return ++calls, false; }
  std::optional<QString> AskText(const QString&, const QString&, const QString&,
                                 EmptyAnswer) override {
    ++calls;
    return nickAnswer;
  }
  std::optional<std::pair<QString, QString>> AskTwoTexts(const QString&, const QString&,
                                                         const QString&) override {
    ++calls;
    if (!nickAnswer) return std::nullopt;
    return std::pair{*nickAnswer, *nickAnswer};
  }
  std::optional<int> PickFromList(const QString&, const QString&, const QStringList& entries,
                                  const QString&) override {
    ++calls;
    return entries.isEmpty() ? std::nullopt : std::optional<int>(0);
  }
  DccChoice AskDccChat(const QString&) override { return ++calls, DccChoice::Cancel; }
  DccChoice AskDccReceive(const QString&, QString&) override { return ++calls, DccChoice::Cancel; }
  DccChoice AskDccExisting(const QString&, bool) override { return ++calls, DccChoice::Cancel; }
  std::optional<DccSendChoice> AskDccSend(const QString&) override { return ++calls, std::nullopt; }
  void PlaySound(const QString&) override { ++calls; }
  void SetBusy(bool) override { ++calls; }
  void ShowConnectionState(bool) override { ++calls; }
};

// The home folder and settings, made on first use and kept until the process ends.
class FuzzHome {
  static constexpr auto kEverything =
      QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;

 public:
  static FuzzHome& Get() {
    static FuzzHome home;
    return home;
  }

  SettingsStore& settings() { return *settings_; }
  QString LogDir() const { return dir_.path() + u"/logs/"_s; }

  // Log files are named after channels and nicks the server sends: each must be a plain
  // file inside the log folder, and nothing may appear beside it. They are removed after
  // each input so the folder stays small.
  void CheckAndClearLogs() const {
    FUZZ_CHECK(QDir(dir_.path()).entryList(kEverything) == homeEntries_,
               "a file appeared outside the log folder");
    QDir logs(LogDir());
    for (const QFileInfo& entry : logs.entryInfoList(kEverything)) {
      FUZZ_CHECK(entry.isFile() && !entry.isSymLink() && entry.fileName().endsWith(u".txt"_s),
                 "a log name made a folder, a link or a file not ending in .txt");
      logs.remove(entry.fileName());
    }
  }

 private:
  FuzzHome() {
    FUZZ_CHECK(dir_.isValid(), "a temporary folder for the settings");
    settings_ = std::make_unique<SettingsStore>(dir_.path());
    InitialiseDefaults(*settings_);
    QDir().mkpath(LogDir());
    settings_->SetString(u"logpath", LogDir(), int(LogDir().size()) + 1);
    settings_->SetString(u"nick", kOwnNick, 7);
    settings_->SetString(u"ignore", u"troll spammer  bad!guy@x", 2002);
    settings_->SetString(u"notify", u"alice bob carol", 2002);
    for (auto event : {u"join", u"part", u"query", u"invite", u"notice", u"highlight", u"quit",
                       u"ping", u"kick", u"op", u"deop", u"voice", u"devoice"})
      settings_->SetString(event, QStringView(event).toString() + u".wav"_s, 250, SettingsKey::Sounds);
    settings_->BeginBatch();  // never ended: from here on the settings stay in memory
    homeEntries_ = QDir(dir_.path()).entryList(kEverything);
  }

  QTemporaryDir dir_{TempDirTemplate()};
  std::unique_ptr<SettingsStore> settings_;
  QStringList homeEntries_;
};

// Bits of one input's first byte and second byte that pick the settings and the
// client's starting state; every input says all of them, so no input depends on another.
struct Profile {
  quint8 options = 0;
  quint8 more = 0;

  bool Registered() const { return options & 0x80; }
  bool Logging() const { return more & 0x02; }
  bool ChannelInFront() const { return more & 0x08; }
  bool Disconnected() const { return more & 0x80; }

  void Apply(SettingsStore& settings, FuzzShell& shell) const {
    quint32 word = 0x010001C0;  // the default "Options"
    const auto set = [&word](bool on, quint32 bit) { word = on ? word | bit : word & ~bit; };
    set(options & 0x01, kOptShowAddresses);
    set(options & 0x02, kOptRejoinAfterKick);
    set(options & 0x04, kOptRejoinOnConnect);
    set(options & 0x08, kOptShortJoins);
    set(options & 0x10, kOptHidePingPong | kOptSkipMotd);
    set(options & 0x20, kOptKeepChannelsOpen);
    set(!(more & 0x10), kOptInvisible);
    settings.SetDword(u"Options", qint32(word));
    const qint32 lists = (options & 0x40) ? 1 : 0;
    settings.SetDword(u"en_ignore", lists);
    settings.SetDword(u"en_hlights", lists);
    settings.SetDword(u"en_notify", lists);
    settings.SetDword(u"not_whois", lists);
    // Two blanks in a row make an empty word, which highlights everything: only sometimes.
    settings.SetString(u"hlights", (more & 0x40) ? u"tolv  urgent"_s : u"tolv urgent alert"_s,
                       2002);
    settings.SetDword(u"tstamps", (more & 0x01) ? 1 : 0);
    settings.SetDword(u"Files", Logging() ? 0x210F : 0x2100);
    settings.SetDword(u"DCC", (more & 0x04) ? 0x3000 : 0x0011);
    settings.SetDword(u"snd_enable", (more & 0x20) ? 1 : 0);
    settings.SetString(u"LocalHost", u"0.0.0.0", 8);
    shell.nickAnswer = (more & 0x20) ? std::optional<QString>(u"tolv_"_s) : std::nullopt;
  }
};

class FuzzClient {
 public:
  explicit FuzzClient(Profile profile) {
    profile.Apply(settings_, shell);
    ctx.tabs.SetClock([] { return QDateTime(QDate(2024, 2, 29), QTime(23, 59, 30)); });
    ctx.tabs.OpenTab(u"Status", TabKind::Status);
    const int channel = ctx.tabs.OpenTab(u"#tolv", TabKind::Channel);
    ctx.tabs.OpenTab(u"#Test", TabKind::Channel);
    ctx.tabs.OpenTab(u"alice", TabKind::Chat);
    for (auto nick : {u"@op", u"+voiced", u"alice", u"tolv42", u"Bob"})
      ctx.tabs.AddNick(u"#tolv", nick);
    ctx.tabs.ActivateTab(profile.ChannelInFront() ? channel : 0);

    ctx.session.serverHost = kServerHost.toString();
    ctx.session.requestedNick = kOwnNick.toString();
    if (profile.Registered()) ctx.session.currentNick = kOwnNick.toString();
    if (!profile.Disconnected()) Connect();
  }

  ~FuzzClient() {
    // The client may have closed its end itself (an ERROR from the server, say).
    if (ours_ >= 0 && ctx.session.serverSocket == ours_) close(ours_);
    if (peer_ >= 0) close(peer_);
  }
  FuzzClient(const FuzzClient&) = delete;
  FuzzClient& operator=(const FuzzClient&) = delete;

  // Reads and discards what the client sent; returns the byte count.
  size_t Drain() {
    size_t total = 0;
    char buffer[65536];
    if (peer_ < 0) return 0;
    for (ssize_t n; (n = recv(peer_, buffer, sizeof buffer, MSG_DONTWAIT)) > 0;) total += n;
    return total;
  }

  SettingsStore& settings_ = FuzzHome::Get().settings();  // first: the context needs it

 public:
  FuzzShell shell;
  ClientContext ctx{settings_, shell};

 private:
  void Connect() {
    int pair[2];
    FUZZ_CHECK(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) == 0, "a socket pair");
    ours_ = pair[0];
    peer_ = pair[1];
    // Room for everything one chunk can make the client say (SO_SNDBUFFORCE needs root;
    // the ordinary limit is tried when it is refused). Should a chunk still say more, the
    // send fails rather than waiting for a reader that only comes after the chunk.
    const int bytes = 8 << 20;
    if (setsockopt(ours_, SOL_SOCKET, SO_SNDBUFFORCE, &bytes, sizeof bytes) != 0)
      setsockopt(ours_, SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
    fcntl(ours_, F_SETFL, fcntl(ours_, F_GETFL) | O_NONBLOCK);
    ctx.session.serverSocket = ours_;
    ctx.session.connected = true;
  }

  int ours_ = -1;
  int peer_ = -1;
};

}  // namespace fuzz
