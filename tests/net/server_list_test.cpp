#include "net/server_list.h"

#include "settings/settings_store.h"
#include "support/file_bytes.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;

namespace {

// A hand-edited file and what the program saves of it: a missing tab leaves fields empty,
// LF alone or no final CR LF end a line too, empty lines go, a line that is not UTF-8 is
// Latin-1, a leading BOM goes (a second one would read back as one), a field keeps at most
// its capacity less one (never half a surrogate pair), and the password runs to the end.
TEST(ServerList, ReadsAHandEditedFileAndSavesItWellFormed) {
  const std::pair<QByteArray, QByteArray> cases[] = {
      {"\nN\ts\r\n\r\nM\tt\t2\tpw\r", "N\ts\t\t\r\nM\tt\t2\tpw\r\n"},
      {"Caf\xE9\th\t1\t\r\nR\xC3\xA9seau\tp\xC3\xA9\nCaf\xC3", "Caf\xC3\xA9\th\t1\t\r\nR\xC3\xA9seau\tp\xC3\xA9\t\t\r\nCaf\xC3\x83\t\t\t\r\n"},
      {"\xEF\xBB\xBF\xEF\xBB\xBFN\ts\t1\tp\tq\t\n", "N\ts\t1\tp\tq\t\r\n"},
      {QByteArray(70, 'n') + '\t' + QByteArray(200, 's') + '\t' + QByteArray(64, '1') + '\t' + QByteArray(64, 'p'),
       QByteArray(63, 'n') + '\t' + QByteArray(127, 's') + '\t' + QByteArray(63, '1') + '\t' + QByteArray(63, 'p') + "\r\n"},
      {QByteArray(62, 'n') + "\xF0\x9F\x98\x80\th\t1\t\r\n", QByteArray(62, 'n') + "\th\t1\t\r\n"},
  };
  QTemporaryDir dir;
  const QString path = dir.filePath(u"servers.txt"_s);
  EXPECT_EQ(LoadServerList(path).Count(), 0);
  EXPECT_EQ(ReadBytes(path), "");  // a missing list is created empty
  for (const auto& [read, saved] : cases) {
    WriteBytes(path, read);
    const ServerList list = LoadServerList(path);
    ASSERT_TRUE(SaveServerList(list, path));
    EXPECT_EQ(ReadBytes(path), saved) << read.toStdString();
    EXPECT_EQ(LoadServerList(path).Entries(), list.Entries());
  }
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{u"servers.txt"_s});
  ASSERT_TRUE(QDir(dir.path()).mkdir(u"sub"_s));
  EXPECT_FALSE(SaveServerList(ServerList(), dir.filePath(u"sub"_s)));  // a folder is in the way
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{u"servers.txt"_s});
}

// Entries made or edited in the program are fitted when written: no TAB but in the
// password, no line break, nothing past a NUL or the field's capacity; removing one
// removes that entry, not an equal one.
TEST(ServerList, EntriesAreFittedToTheLineFormat) {
  ServerList list;
  list.AppendServer({u"a\tb"_s, u"c\r\nd"_s, u"1"_s, u"p\tq"_s});
  list.AppendServer({u"net"_s + QChar(0) + u"junk"_s, u"h"_s, u"1"_s, {}});
  list.AppendServer({u"n"_s, u"h"_s, u"1"_s, {}}).network = QString(100, u'x');
  EXPECT_EQ(FormatServerList(list), "a b\tc  d\t1\tp\tq\r\nnet\th\t1\t\r\n" + QByteArray(63, 'x') + "\th\t1\t\r\n");
  const ServerEntry stranger = *list.ServerAt(1);  // equal text, not in the list
  EXPECT_FALSE(list.RemoveServer(&stranger));
  EXPECT_TRUE(list.RemoveServer(list.ServerAt(1)));
  EXPECT_EQ(FormatServerList(list), "a b\tc  d\t1\tp\tq\r\n" + QByteArray(63, 'x') + "\th\t1\t\r\n");
}

// The "server" setting selects an entry: host and password go out as UTF-8 with one port of
// its list; no entry, or no port, gives nothing and leaves the outputs.
TEST(ServerList, SelectedServerGivesUtf8HostPasswordAndPort) {
  QTemporaryDir dir;
  SettingsStore store(dir.path());
  WriteBytes(ServerListPath(store), "R\xC3\xA9seau\th\xC3\xA9.example\t7000-7001\tp\xC3\xA9\r\nB\tbroken\t6669-6660\t\r\n");
  QByteArray host = "keep", password = "keep";
  int port = 42;
  for (const qint32 index : {2, -1, 1}) {
    store.SetDword(u"server", index);
    EXPECT_FALSE(GetSelectedServer(store, host, password, port));
  }
  store.DeleteValue(u"server");
  EXPECT_FALSE(GetSelectedServer(store, host, password, port));
  EXPECT_EQ(host + password + QByteArray::number(port), "keepkeep42");
  store.SetDword(u"server", 1);
  EXPECT_EQ(SelectedServerHost(store), u"broken"_s);  // the prefix of lines without one
  store.SetDword(u"server", 0);
  ASSERT_TRUE(GetSelectedServer(store, host, password, port));
  EXPECT_EQ(host + ' ' + password, "h\xC3\xA9.example p\xC3\xA9");
  EXPECT_TRUE(port == 7000 || port == 7001) << port;
}

// Every port of a list in order (none: PickPort gives -1), and PickPort draws each of them.
// Ranges are counted, not listed, so no list can cost memory.
TEST(ServerList, PortListsAreReadAsTheCLibraryReadsNumbers) {
  const std::pair<const char16_t*, std::vector<int>> cases[] = {
      {u"6660-6662,7000", {6660, 6661, 6662, 7000}}, {u"6669-6660", {}},       {u"6660-6660", {}},
      {u" +6667x,, 6668 ,abc", {6667, 0, 6668, 0}},  {u" 7000 - 7002 ", {7000, 7001, 7002}},
      {u"-2", {0, 1, 2}},                            {u"5--7", {}},            {u"99999999999", {2147483647}},
  };
  for (const auto& [text, expected] : cases) {
    const auto ranges = ParsePortList(text);
    std::vector<int> ports;
    for (qint64 i = 0; i < PortCount(ranges); ++i) ports.push_back(PortAt(ranges, i));
    EXPECT_EQ(ports, expected);
    std::set<int> drawn;
    for (int draw = 0; draw < 300; ++draw) drawn.insert(PickPort(text));
    EXPECT_EQ(drawn, ports.empty() ? std::set<int>{-1} : std::set<int>(ports.begin(), ports.end()));
  }
  const auto huge = ParsePortList(u"1-2000000000,0-2147483647");
  EXPECT_EQ(PortCount(huge), 2000000000LL + 2147483648LL);
  EXPECT_EQ(PortAt(huge, 2000000000), 0);
  EXPECT_EQ(PortAt(huge, PortCount(huge) - 1), 2147483647);
  EXPECT_GE(PickPort(u"1-2000000000,0-2147483647"), 0);
}

}  // namespace
