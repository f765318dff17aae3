#pragma once
// The user's IRC servers, kept in "servers.txt" in the installation folder, and the
// choice of host, password and port for the connect sequence.
//
// File format: one line per server, network TAB server TAB ports TAB password CR LF,
// every line (the last included) ending in CR LF, UTF-8 without BOM. The list reads back
// exactly what it wrote.

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <optional>
#include <vector>

class SettingsStore;

struct ServerEntry {
  // Capacities in UTF-16 units including the terminator the device's buffers had, so a
  // field keeps at most capacity - 1 units.
  static constexpr int kNetworkCapacity = 64;
  static constexpr int kServerCapacity = 128;
  static constexpr int kPortsCapacity = 64;
  static constexpr int kPasswordCapacity = 64;

  QString network;
  QString server;  // host name or dotted address
  QString ports;   // port list, see PickPort
  QString password;  // empty for none

  friend bool operator==(const ServerEntry&, const ServerEntry&) = default;
};

// Cuts every field to its capacity (and at a NUL) and replaces the characters that would
// break the line format (CR, LF, and TAB outside the last field) with blanks.
ServerEntry FittedServerEntry(ServerEntry entry);

class ServerList {
 public:
  int Count() const { return static_cast<int>(entries_.size()); }
  const std::vector<ServerEntry>& Entries() const { return entries_; }

  // nullptr for any index that is not a real entry: "no server selected". Pointers stay
  // valid until the next AppendServer or RemoveServer.
  ServerEntry* ServerAt(int index);
  const ServerEntry* ServerAt(int index) const;
  // The position of the entry the pointer designates, -1 when it is not in this list.
  int IndexOfServer(const ServerEntry* entry) const;

  // New servers go to the end; the fields are fitted to their capacities.
  ServerEntry& AppendServer(ServerEntry entry);
  // False, changing nothing, when the entry is not in this list.
  bool RemoveServer(const ServerEntry* entry);

 private:
  std::vector<ServerEntry> entries_;
};

// The bytes of the file for `list` and back. Parsing is lenient with hand-edited files:
// missing tabs leave fields empty, LF alone or no final CR LF end a line as well, an
// empty line is skipped, and a line that is not UTF-8 is read as Latin-1.
QByteArray FormatServerList(const ServerList& list);
ServerList ParseServerList(const QByteArray& bytes);

// "servers.txt" in the installation folder.
QString ServerListPath(const SettingsStore& store);
// A missing file gives an empty list and is created empty; an unreadable one gives an
// empty list.
ServerList LoadServerList(const QString& path);
// Replaces the file atomically (temporary file in the same folder, synced, renamed), so
// a crash leaves either the old list or the new one. False when it could not be written.
bool SaveServerList(const ServerList& list, const QString& path);

// The selected server (setting "server", a zero-based index): host and password as UTF-8
// and one port drawn from its list. False when the index is no entry, and also when the
// port list yields no port: the connect then refuses with the same error as for no
// server selected instead of connecting to port -1.
// `tls` (when asked for) tells whether the drawn port was written with a leading "+".
bool GetSelectedServer(const SettingsStore& store, QByteArray& host, QByteArray& password,
                       int& port, bool* tls = nullptr);
// The selected entry's server text, used as the prefix of server lines that have none.
std::optional<QString> SelectedServerHost(const SettingsStore& store);

// A port list is pieces separated by ",": "a-b" adds a..b when a < b (nothing
// otherwise), any other piece adds its number (0 when it has none). Ranges are kept as
// ranges so that "1-2000000000" costs no memory. A piece starting with "+" ("+6697",
// "+6697-6699") names ports that speak TLS.
struct PortRange {
  qint64 first = 0;
  qint64 count = 0;
  bool tls = false;
};
std::vector<PortRange> ParsePortList(QStringView ports);
qint64 PortCount(const std::vector<PortRange>& ranges);
// The port at `index` (0 <= index < PortCount) in list order.
int PortAt(const std::vector<PortRange>& ranges, qint64 index);
// One port of the list drawn uniformly, -1 when the list yields none.
struct PortChoice {
  int port = -1;
  bool tls = false;
};
PortChoice PickServerPort(QStringView ports);
int PickPort(QStringView ports);
