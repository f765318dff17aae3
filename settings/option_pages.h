#pragma once
// What the "Settings" dialog's pages show and write back, as plain values. A page loads
// its struct when the dialog opens, lets the user change it, and saves every field on
// OK, changed or not. Check boxes that stand for a bit of a packed word are named by
// their control identifier, which the store translates into the bit.

#include <QString>
#include <QStringList>

#include <array>
#include <map>
#include <span>
#include <vector>

class SettingsStore;
class ServerList;
struct ServerEntry;

// A check box standing for one bit of a packed word.
struct FlagCheck {
  int control;  // the identifier the store maps to the bit
  const char16_t* word;
  const char16_t* label;
};

// Check states by control identifier.
using CheckStates = std::map<int, bool>;

CheckStates LoadChecks(const SettingsStore& store, std::span<const FlagCheck> checks);
void SaveChecks(SettingsStore& store, std::span<const FlagCheck> checks, const CheckStates& states);

// The device's number reader: blanks, a sign, then digits up to the first other
// character; text that starts with no number is 0.
qint32 DecimalPrefix(QStringView text);

// Writes at most capacity - 1 units, so that a reader with the same capacity reads it.
void SaveText(SettingsStore& store, QStringView name, QStringView text);
// The most a field of the named setting may hold.
int TextLimit(QStringView name);

// "Connection": the selected server and the user's names.
inline constexpr FlagCheck kInvisibleCheck{1113, u"Options", u"Invisible"};

struct ConnectionOptions {
  int server = -1;  // index into the server list; -1 selects none
  QString nick, alterNick, fullName, email;
  bool invisible = false;
};
ConnectionOptions LoadConnectionOptions(const SettingsStore& store);
void SaveConnectionOptions(SettingsStore& store, const ConnectionOptions& options);

// The network names of the list, each once, in the order they first appear.
QStringList NetworksOf(const ServerList& list);
// The list positions of the servers of `network`.
std::vector<int> ServersOfNetwork(const ServerList& list, const QString& network);
// The Server dialog takes an entry only with network, server and port(s) filled in.
bool ServerEntryComplete(const ServerEntry& entry);

// "Options": channel, identd and IRC behaviour.
inline constexpr std::array<FlagCheck, 5> kChannelChecks{{
    {1201, u"Options", u"Short Joins/Parts"},
    {1202, u"Options", u"Show addresses"},
    {1203, u"Options", u"Rejoin after kick"},
    {1204, u"Options", u"Rejoin on connect"},
    {1205, u"Options", u"Keep chan. open"},
}};
inline constexpr FlagCheck kIdentdEnableCheck{1208, u"Options", u"Enable"};
inline constexpr FlagCheck kIdentdShowCheck{1215, u"Options", u"Show requests"};
inline constexpr std::array<FlagCheck, 4> kIrcChecks{{
    {1219, u"Options", u"Hide Ping?Pong!"},
    {1221, u"Options", u"Splash at startup"},
    {1220, u"Options", u"Skip MOTD"},
    {1218, u"Options", u"Reconnect"},
}};

struct GeneralOptions {
  CheckStates checks;  // every check of the page
  QString idUser, idSystem, idPort;
};
GeneralOptions LoadGeneralOptions(const SettingsStore& store);
void SaveGeneralOptions(SettingsStore& store, const GeneralOptions& options);

// "DCC": answering offers, the download folder, the own address.
enum class DccPolicy { Ask = 0, Auto = 1, Ignore = 2 };
inline constexpr FlagCheck kDccAutoAddressCheck{1616, u"DCC", u"Auto"};

struct DccOptions {
  DccPolicy chat = DccPolicy::Ask, send = DccPolicy::Ask;
  QString downloadsPath, localHost;
  bool autoAddress = true;
  bool serverLookup = true;  // "Server"; off is "Normal"
};
DccOptions LoadDccOptions(const SettingsStore& store);
void SaveDccOptions(SettingsStore& store, const DccOptions& options);

// "Info": messages and the three word lists.
struct InfoList {
  const char16_t* tab;         // the inner tab's label
  const char16_t* listValue;   // "ignore"
  const char16_t* enableValue; // "en_ignore"
  const char16_t* promptTitle; // the Add prompt's title
};
inline constexpr std::array<InfoList, 3> kInfoLists{{
    {u"Ignores", u"ignore", u"en_ignore", u"Add to ignore list"},
    {u"Highlights", u"hlights", u"en_hlights", u"Add to highlight list"},
    {u"Notify", u"notify", u"en_notify", u"Add to notify list"},
}};

struct InfoOptions {
  bool timestamps = false;
  QString partMsg, quitMsg;
  std::array<QStringList, 3> entries;  // in the order of kInfoLists
  std::array<bool, 3> enabled{};
  bool notifyWhois = false;
};
InfoOptions LoadInfoOptions(const SettingsStore& store);
void SaveInfoOptions(SettingsStore& store, const InfoOptions& options);

// The words of a stored list; blanks in a row give no empty entry.
QStringList WordListEntries(QStringView listText);
// Each entry followed by one blank, the entries up to the first that would take the
// text past the list's 2000 units.
QString WordListText(const QStringList& entries);
// "Add": the position of `text` among `entries`, appended when no entry equals it
// without regard to case; -1 (nothing added) for a text without a word.
int AddListEntry(QStringList& entries, const QString& text);

// "Files": logs and whispers.
inline constexpr std::array<FlagCheck, 4> kLogChecks{{
    {1801, u"Files", u"Channels"},
    {1802, u"Files", u"Priv"},
    {1803, u"Files", u"Status"},
    {1818, u"Files", u"DCC Chat"},
}};
inline constexpr FlagCheck kWhispersEnableCheck{1809, u"Files", u"Enable whispers"};
inline constexpr std::array<FlagCheck, 2> kWhisperChecks{{
    {1810, u"Files", u"Self-teaching"},
    {1811, u"Files", u"Backup on startup"},
}};
inline constexpr int kMaxWhispers = 15;

struct FilesOptions {
  CheckStates checks;
  QString logPath;
  int whisperCount = 2;  // 1..15; 0 when the stored nibble holds none
};
FilesOptions LoadFilesOptions(const SettingsStore& store);
void SaveFilesOptions(SettingsStore& store, const FilesOptions& options);
