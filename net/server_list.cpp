#include "net/server_list.h"

#include "settings/atomic_file.h"
#include "settings/settings_paths.h"
#include "settings/settings_store.h"

#include <QByteArrayView>
#include <QFile>
#include <QRandomGenerator>
#include <QStringConverter>
#include <QStringList>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr QChar kTab = u'\t';
constexpr QByteArrayView kLineEnd = "\r\n";
constexpr QByteArrayView kUtf8Bom = "\xEF\xBB\xBF";
// The device's long was 32 bits; its number reader saturates there.
constexpr qint64 kLongMin = std::numeric_limits<qint32>::min();
constexpr qint64 kLongMax = std::numeric_limits<qint32>::max();

// Keeps what a fixed buffer of `capacity` units held: the text up to a NUL, at most
// capacity - 1 units, never half a surrogate pair. CR and LF would end the line early,
// a TAB would shift the fields after it, so they become blanks.
QString FittedField(QString text, int capacity, bool keepTabs) {
  const qsizetype nul = text.indexOf(QChar(0));
  if (nul >= 0)
    text.truncate(nul);
  qsizetype keep = std::min<qsizetype>(text.size(), capacity - 1);
  if (keep > 0 && keep < text.size() && text[keep - 1].isHighSurrogate())
    --keep;
  text.truncate(keep);
  for (QChar& c : text) {
    if (c == u'\r' || c == u'\n' || (c == kTab && !keepTabs))
      c = u' ';
  }
  return text;
}

// Hand-edited files may hold Latin-1; reading such a line as Latin-1 keeps it instead
// of turning its accented letters into replacement characters. Each line is decoded on
// its own and a U+FEFF starting a field is kept as text.
QString DecodeLine(QByteArrayView line) {
  QStringDecoder utf8(QStringConverter::Utf8,
                      QStringConverter::Flag::Stateless |
                          QStringConverter::Flag::ConvertInitialBom);
  QString text = utf8.decode(line);
  return utf8.hasError() ? QString::fromLatin1(line) : text;
}

// Fields 1 to 3 end at a TAB; the password runs from the third TAB to the line end. A
// line lacking tabs leaves the later fields empty.
ServerEntry ParseServerLine(const QString& line) {
  ServerEntry entry;
  QString* const tabbedFields[] = {&entry.network, &entry.server, &entry.ports};
  qsizetype start = 0;
  for (QString* field : tabbedFields) {
    const qsizetype tab = line.indexOf(kTab, start);
    if (tab < 0) {
      *field = line.mid(start);
      return entry;
    }
    *field = line.sliced(start, tab - start);
    start = tab + 1;
  }
  entry.password = line.mid(start);
  return entry;
}

// The next line of `rest` without its ending (CR LF, LF alone, or the end of the data).
QByteArrayView TakeLine(QByteArrayView& rest) {
  const qsizetype lf = rest.indexOf('\n');
  QByteArrayView line = lf < 0 ? rest : rest.first(lf);
  rest = lf < 0 ? QByteArrayView() : rest.sliced(lf + 1);
  if (line.endsWith('\r'))
    line.chop(1);
  return line;
}

bool IsCBlank(QChar c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

// Reads a number as the C library's wcstol with base 10 does: leading blanks, an
// optional sign, the digits up to the first non-digit; 0 when there are none.
qint64 ReadNumber(QStringView text) {
  qsizetype i = 0;
  while (i < text.size() && IsCBlank(text[i]))
    ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
    negative = text[i++] == u'-';
  qint64 value = 0;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i)
    value = std::min(value * 10 + (text[i].unicode() - u'0'), kLongMax + 1);
  return std::clamp(negative ? -value : value, kLongMin, kLongMax);
}

const ServerEntry* SelectedEntry(const ServerList& list, const SettingsStore& store) {
  return list.ServerAt(store.GetDword(u"server"));
}

}  // namespace

ServerEntry FittedServerEntry(ServerEntry entry) {
  // Written first in the file, a leading U+FEFF would read back as a byte-order mark.
  while (entry.network.startsWith(QChar(0xFEFF))) entry.network.remove(0, 1);
  entry.network = FittedField(std::move(entry.network), ServerEntry::kNetworkCapacity, false);
  entry.server = FittedField(std::move(entry.server), ServerEntry::kServerCapacity, false);
  entry.ports = FittedField(std::move(entry.ports), ServerEntry::kPortsCapacity, false);
  entry.password =
      FittedField(std::move(entry.password), ServerEntry::kPasswordCapacity, true);
  return entry;
}

ServerEntry* ServerList::ServerAt(int index) {
  return index >= 0 && index < Count() ? &entries_[index] : nullptr;
}

const ServerEntry* ServerList::ServerAt(int index) const {
  return index >= 0 && index < Count() ? &entries_[index] : nullptr;
}

int ServerList::IndexOfServer(const ServerEntry* entry) const {
  for (int i = 0; i < Count(); ++i) {
    if (&entries_[i] == entry)
      return i;
  }
  return -1;
}

ServerEntry& ServerList::AppendServer(ServerEntry entry) {
  return entries_.emplace_back(FittedServerEntry(std::move(entry)));
}

bool ServerList::RemoveServer(const ServerEntry* entry) {
  const int index = IndexOfServer(entry);
  if (index < 0)
    return false;
  entries_.erase(entries_.begin() + index);
  return true;
}

QByteArray FormatServerList(const ServerList& list) {
  QByteArray bytes;
  for (const ServerEntry& entry : list.Entries()) {
    // Callers may have edited an entry in place through ServerAt.
    const ServerEntry fitted = FittedServerEntry(entry);
    const QStringList fields{fitted.network, fitted.server, fitted.ports, fitted.password};
    bytes += fields.join(kTab).toUtf8();
    bytes += kLineEnd;
  }
  return bytes;
}

ServerList ParseServerList(const QByteArray& bytes) {
  QByteArrayView rest(bytes);
  if (rest.startsWith(kUtf8Bom))
    rest = rest.sliced(kUtf8Bom.size());
  ServerList list;
  while (!rest.isEmpty()) {
    const QByteArrayView line = TakeLine(rest);
    if (!line.isEmpty())
      list.AppendServer(ParseServerLine(DecodeLine(line)));
  }
  return list;
}

QString ServerListPath(const SettingsStore& store) {
  return GetInstallDir(store) + u"servers.txt"_s;
}

ServerList LoadServerList(const QString& path) {
  QFile file(path);
  if (!file.exists()) {
    // NewOnly: never truncate a list that appeared in the meantime.
    file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
    return {};
  }
  if (!file.open(QIODevice::ReadOnly))
    return {};
  return ParseServerList(file.readAll());
}

bool SaveServerList(const ServerList& list, const QString& path) {
  return WriteFileAtomically(path, FormatServerList(list), 0600);  // it holds passwords
}

bool GetSelectedServer(const SettingsStore& store, QByteArray& host, QByteArray& password,
                       int& port, bool* tls) {
  const ServerList list = LoadServerList(ServerListPath(store));
  const ServerEntry* entry = SelectedEntry(list, store);
  if (!entry)
    return false;
  // The device went on to connect to port -1 (65535 once cut to 16 bits); a list that
  // yields no port is treated like no server at all, and the caller shows the same
  // "select the server" error.
  const PortChoice drawn = PickServerPort(entry->ports);
  if (drawn.port < 0)
    return false;
  host = entry->server.toUtf8();
  password = entry->password.toUtf8();
  port = drawn.port;
  if (tls)
    *tls = drawn.tls;
  return true;
}

std::optional<QString> SelectedServerHost(const SettingsStore& store) {
  const ServerList list = LoadServerList(ServerListPath(store));
  const ServerEntry* entry = SelectedEntry(list, store);
  if (!entry)
    return std::nullopt;
  return entry->server;
}

std::vector<PortRange> ParsePortList(QStringView ports) {
  std::vector<PortRange> ranges;
  for (QStringView piece : ports.split(u',')) {
    // The number reader takes the "+" as a sign, so the ports themselves are unchanged.
    const bool tls = piece.trimmed().startsWith(u'+');
    const qsizetype dash = piece.indexOf(u'-');
    if (dash < 0) {
      ranges.push_back({ReadNumber(piece), 1, tls});
      continue;
    }
    const qint64 first = ReadNumber(piece.first(dash));
    const qint64 last = ReadNumber(piece.sliced(dash + 1));
    if (first < last)
      ranges.push_back({first, last - first + 1, tls});
  }
  return ranges;
}

qint64 PortCount(const std::vector<PortRange>& ranges) {
  qint64 count = 0;
  for (const PortRange& range : ranges)
    count += range.count;
  return count;
}

namespace {

// The range holding the port at `index`, and the index within it; nullptr past the end.
const PortRange* RangeOf(const std::vector<PortRange>& ranges, qint64& index) {
  for (const PortRange& range : ranges) {
    if (index < range.count)
      return &range;
    index -= range.count;
  }
  return nullptr;
}

}  // namespace

int PortAt(const std::vector<PortRange>& ranges, qint64 index) {
  const PortRange* range = RangeOf(ranges, index);
  return range ? static_cast<int>(range->first + index) : -1;
}

// Every port read is 0 or more: a piece holding a minus sign is a range, and the text
// before its first "-" cannot hold another. So -1 never stands for a real port.
PortChoice PickServerPort(QStringView ports) {
  const std::vector<PortRange> ranges = ParsePortList(ports);
  const qint64 count = PortCount(ranges);
  if (count == 0)
    return {};
  qint64 index = static_cast<qint64>(QRandomGenerator::global()->bounded(static_cast<quint64>(count)));
  const PortRange* range = RangeOf(ranges, index);
  return {static_cast<int>(range->first + index), range->tls};
}

int PickPort(QStringView ports) { return PickServerPort(ports).port; }
