// The hand-edited text files of the home folder: the same bytes are read as "servers.txt"
// (ParseServerList, FormatServerList, every port list through PickPort) and as
// "favorites.txt" (FavoriteList::ParseFavorites and FormatFavorites).
//
// What must hold:
//  - each list reads back exactly what it wrote, and writing it again gives the same bytes;
//  - every server field keeps within its capacity and holds no CR, LF or NUL (no TAB
//    either, the password aside);
//  - PickPort draws a port of the list, or -1 exactly when the list yields none;
//  - at most 64 sentences are read, each of at most 64 units, none blank, none holding
//    CR, LF, NUL or half a surrogate pair.

#include "favorites/favorite_list.h"
#include "fuzz/fuzz_check.h"
#include "net/server_list.h"

#include <cstddef>
#include <cstdint>

namespace {

bool FieldFits(const QString& field, int capacity, bool tabAllowed) {
  if (field.size() > capacity - 1) return false;
  for (QChar c : field) {
    if (c == u'\r' || c == u'\n' || c == QChar(0)) return false;
    if (c == u'\t' && !tabAllowed) return false;
  }
  return true;
}

void CheckEntry(const ServerEntry& entry) {
  FUZZ_CHECK(FieldFits(entry.network, ServerEntry::kNetworkCapacity, false), "network fits");
  FUZZ_CHECK(FieldFits(entry.server, ServerEntry::kServerCapacity, false), "server fits");
  FUZZ_CHECK(FieldFits(entry.ports, ServerEntry::kPortsCapacity, false), "ports fit");
  FUZZ_CHECK(FieldFits(entry.password, ServerEntry::kPasswordCapacity, true), "password fits");
}

// The drawn port must be one the list names: a member of one of its ranges.
void CheckPickPort(QStringView ports) {
  const std::vector<PortRange> ranges = ParsePortList(ports);
  const qint64 count = PortCount(ranges);
  FUZZ_CHECK(count >= 0, "a port count is never negative");
  const int port = PickPort(ports);
  if (count == 0) {
    FUZZ_CHECK(port == -1, "no port from a list that yields none");
    return;
  }
  FUZZ_CHECK(port >= 0, "a list with ports yields a port");
  bool member = false;
  for (const PortRange& range : ranges)
    member = member || (port >= range.first && port < range.first + range.count);
  FUZZ_CHECK(member, "the drawn port is in the list");
  FUZZ_CHECK(PortAt(ranges, 0) == int(ranges.front().first), "the first port is the first range's");
  FUZZ_CHECK(PortAt(ranges, count) == -1, "no port past the end");
}

bool SentenceFits(const QString& sentence) {
  if (sentence.size() > kFavoriteUnits || sentence.trimmed().isEmpty()) return false;
  for (qsizetype i = 0; i < sentence.size(); ++i) {
    const QChar c = sentence[i];
    if (c == u'\r' || c == u'\n' || c == QChar(0)) return false;
    const bool pairedHigh = i + 1 < sentence.size() && sentence[i + 1].isLowSurrogate();
    const bool pairedLow = i > 0 && sentence[i - 1].isHighSurrogate();
    if ((c.isHighSurrogate() && !pairedHigh) || (c.isLowSurrogate() && !pairedLow))
      return false;
  }
  return true;
}

void CheckFavorites(const QByteArray& bytes) {
  const QStringList sentences = FavoriteList::ParseFavorites(bytes);
  FUZZ_CHECK(sentences.size() <= kFavoritesRead, "at most 64 sentences are read");
  for (const QString& sentence : sentences)
    FUZZ_CHECK(SentenceFits(sentence), "a sentence fits a menu item");
  const QByteArray written = FavoriteList::FormatFavorites(sentences);
  const QStringList reread = FavoriteList::ParseFavorites(written);
  FUZZ_CHECK(reread == sentences, "the sentences read back what was written");
  FUZZ_CHECK(FavoriteList::FormatFavorites(reread) == written,
             "writing the sentences again gives the same bytes");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  const ServerList list = ParseServerList(bytes);
  const QByteArray written = FormatServerList(list);
  const ServerList reread = ParseServerList(written);
  FUZZ_CHECK(reread.Entries() == list.Entries(), "the list reads back what it wrote");
  FUZZ_CHECK(FormatServerList(reread) == written, "writing it again gives the same bytes");
  for (const ServerEntry& entry : list.Entries()) {
    CheckEntry(entry);
    CheckPickPort(entry.ports);
  }
  // The ports field of a hand-edited file is short; the whole input as one port list
  // also tries long lists, huge numbers and odd signs.
  CheckPickPort(QString::fromLatin1(bytes));
  CheckFavorites(bytes);
  return 0;
}
