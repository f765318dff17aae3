// The hand-edited text files of the home folder: the same bytes read as "servers.txt" and
// as "favorites.txt". Each list reads back exactly what it wrote, and writing it again gives
// the same bytes; every server field keeps within its capacity without CR, LF, NUL (or TAB
// but in the password); PickPort draws a port of the list, or -1 exactly when it names
// none; at most 64 sentences of at most 64 units are read, none blank, none holding CR,
// LF, NUL or half a surrogate pair.

#include "favorites/favorite_list.h"
#include "fuzz/fuzz_check.h"
#include "net/server_list.h"

namespace {

bool Fits(const QString& text, int units, bool tabAllowed) {
  for (QChar c : text)
    if (c == u'\r' || c == u'\n' || c == QChar(0) || (c == u'\t' && !tabAllowed)) return false;
  return text.size() <= units;
}

void CheckPickPort(QStringView ports) {
  const std::vector<PortRange> ranges = ParsePortList(ports);
  const qint64 count = PortCount(ranges);
  const int port = PickPort(ports);
  FUZZ_CHECK(count >= 0 && (count > 0 || port == -1), "no port from a list that names none");
  bool member = false;
  for (const PortRange& range : ranges) member = member || (port >= range.first && port < range.first + range.count);
  FUZZ_CHECK(count == 0 || (member && PortAt(ranges, 0) == int(ranges.front().first) && PortAt(ranges, count) == -1),
             "the drawn port is in the list, which begins with its first range and ends with its count");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  const ServerList list = ParseServerList(bytes);
  const QByteArray written = FormatServerList(list);
  FUZZ_CHECK(ParseServerList(written).Entries() == list.Entries(), "the list reads back what it wrote");
  FUZZ_CHECK(FormatServerList(ParseServerList(written)) == written, "writing it again gives the same bytes");
  for (const ServerEntry& entry : list.Entries()) {
    FUZZ_CHECK(Fits(entry.network, ServerEntry::kNetworkCapacity - 1, false) &&
                   Fits(entry.server, ServerEntry::kServerCapacity - 1, false) &&
                   Fits(entry.ports, ServerEntry::kPortsCapacity - 1, false) &&
                   Fits(entry.password, ServerEntry::kPasswordCapacity - 1, true),
               "every field fits");
    CheckPickPort(entry.ports);
  }
  CheckPickPort(QString::fromLatin1(bytes));  // long lists, huge numbers, odd signs

  const QStringList sentences = FavoriteList::ParseFavorites(bytes);
  FUZZ_CHECK(sentences.size() <= kFavoritesRead, "at most 64 sentences are read");
  for (const QString& sentence : sentences)
    FUZZ_CHECK(Fits(sentence, kFavoriteUnits, true) && !sentence.trimmed().isEmpty() && sentence.isValidUtf16(),
               "a sentence fits a menu item");
  const QByteArray saved = FavoriteList::FormatFavorites(sentences);
  FUZZ_CHECK(FavoriteList::ParseFavorites(saved) == sentences, "the sentences read back what was written");
  FUZZ_CHECK(FavoriteList::FormatFavorites(FavoriteList::ParseFavorites(saved)) == saved,
             "writing the sentences again gives the same bytes");
  return 0;
}
