#include "net/server_list.h"

#include "settings/settings_store.h"
#include "support/file_bytes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;

namespace {

ServerEntry Entry(const QString& network, const QString& server, const QString& ports,
                  const QString& password = {}) {
  return {network, server, ports, password};
}

ServerList ListOf(const std::vector<ServerEntry>& entries) {
  ServerList list;
  for (const ServerEntry& entry : entries)
    list.AppendServer(entry);
  return list;
}



// ---- The bytes written ----------------------------------------------------------------

struct FormatCase {
  const char* name;
  std::vector<ServerEntry> entries;
  QByteArray bytes;
};

void PrintTo(const FormatCase& c, std::ostream* os) { *os << c.name; }

class ServerListFormatTest : public testing::TestWithParam<FormatCase> {};

TEST_P(ServerListFormatTest, WritesExactBytes) {
  EXPECT_EQ(FormatServerList(ListOf(GetParam().entries)), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    ServerList, ServerListFormatTest,
    testing::Values(
        FormatCase{"Empty", {}, ""},
        FormatCase{"PasswordAndOrder",
                   {Entry(u"A"_s, u"a.example"_s, u"6667"_s, u"secret"_s),
                    Entry(u"B"_s, u"b.example"_s, u"7000"_s)},
                   "A\ta.example\t6667\tsecret\r\nB\tb.example\t7000\t\r\n"},
        FormatCase{"AllEmpty", {Entry({}, {}, {})}, "\t\t\t\r\n"},
        // A TAB would shift the fields after it; in the password it is read back intact.
        FormatCase{"TabsAndBreaks",
                   {Entry(u"a\tb"_s, u"c\r\nd"_s, u"1"_s, u"p\tq"_s)},
                   "a b\tc  d\t1\tp\tq\r\n"},
        FormatCase{"CutAtNul", {Entry(u"net"_s + QChar(0) + u"junk"_s, u"h"_s, u"1"_s)},
                   "net\th\t1\t\r\n"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ServerListFormat, FitsAnEntryEditedInPlace) {
  ServerList list = ListOf({Entry(u"n"_s, u"h"_s, u"1"_s)});
  list.ServerAt(0)->network = QString(100, u'x');
  EXPECT_EQ(FormatServerList(list), QByteArray(63, 'x') + "\th\t1\t\r\n");
}

// ---- The bytes read -------------------------------------------------------------------

struct ParseCase {
  const char* name;
  QByteArray bytes;
  std::vector<ServerEntry> entries;
};

void PrintTo(const ParseCase& c, std::ostream* os) { *os << c.name; }

class ServerListParseTest : public testing::TestWithParam<ParseCase> {};

TEST_P(ServerListParseTest, ReadsEntries) {
  EXPECT_EQ(ParseServerList(GetParam().bytes).Entries(), GetParam().entries);
}

const QString kLatinCafe = u"Caf\u00e9"_s;

INSTANTIATE_TEST_SUITE_P(
    ServerList, ServerListParseTest,
    testing::Values(
        ParseCase{"Empty", "", {}},
        ParseCase{"WellFormed", "N\ts\t6667\tpw\r\nM\tt\t7000\t\r\n",
                  {Entry(u"N"_s, u"s"_s, u"6667"_s, u"pw"_s), Entry(u"M"_s, u"t"_s, u"7000"_s)}},
        ParseCase{"CrWithoutLf", "N\ts\t6667\tpw\r",
                  {Entry(u"N"_s, u"s"_s, u"6667"_s, u"pw"_s)}},
        ParseCase{"EmptyLinesSkipped", "\r\nN\ts\t1\t\r\n\r\n\nM\tt\t2\t\r\n\r\n",
                  {Entry(u"N"_s, u"s"_s, u"1"_s), Entry(u"M"_s, u"t"_s, u"2"_s)}},
        ParseCase{"NoTabs", "Network only\r\n", {Entry(u"Network only"_s, {}, {})}},
        ParseCase{"PasswordRunsToLineEnd", "N\ts\t1\tp\tq\t\r\n",
                  {Entry(u"N"_s, u"s"_s, u"1"_s, u"p\tq\t"_s)}},
        ParseCase{"Latin1Line", "Caf\xE9\th\t1\t\r\nR\xC3\xA9seau\th\t1\t\r\n",
                  {Entry(kLatinCafe, u"h"_s, u"1"_s), Entry(u"R\u00e9seau"_s, u"h"_s, u"1"_s)}},
        ParseCase{"TruncatedUtf8AtLineEnd", "Caf\xC3\r\n",
                  {Entry(u"Caf\u00c3"_s, {}, {})}},
        ParseCase{"BomAtFileStart", "\xEF\xBB\xBFN\ts\t1\t\r\n", {Entry(u"N"_s, u"s"_s, u"1"_s)}},
        ParseCase{"OverLongFields",
                  QByteArray(70, 'n') + '\t' + QByteArray(200, 's') + '\t' +
                      QByteArray(64, '1') + '\t' + QByteArray(64, 'p') + "\r\n",
                  {Entry(QString(63, u'n'), QString(127, u's'), QString(63, u'1'),
                         QString(63, u'p'))}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ServerListParse, SurrogatePairNotSplitByCapacity) {
  // 62 letters and then a character outside the BMP: the pair would straddle the cut.
  const QByteArray line = QByteArray(62, 'n') + "\xF0\x9F\x98\x80\th\t1\t\r\n";
  const ServerList list = ParseServerList(line);
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.ServerAt(0)->network, QString(62, u'n'));
}

// ---- Files ------------------------------------------------------------------------------

class ServerListFileTest : public testing::Test {
 protected:
  QString PathOf(const QString& name) const { return dir_.filePath(name); }
  QTemporaryDir dir_;
};

TEST_F(ServerListFileTest, MissingFileGivesEmptyListAndIsCreated) {
  const QString path = PathOf(u"servers.txt"_s);
  EXPECT_EQ(LoadServerList(path).Count(), 0);
  ASSERT_TRUE(QFile::exists(path));
  EXPECT_EQ(QFile(path).size(), 0);
}

TEST_F(ServerListFileTest, RoundTripKeepsAccentsAndBytes) {
  const QString path = PathOf(u"servers.txt"_s);
  const ServerList list = ListOf({Entry(u"\u00e9"_s, u"h\u00e9.example"_s, u"6667"_s),
                                  Entry(u"N"_s, u"s"_s, u"1-2"_s, u"p\u00e9"_s)});
  ASSERT_TRUE(SaveServerList(list, path));
  const QByteArray written = ReadBytes(path);
  EXPECT_EQ(written, "\xC3\xA9\th\xC3\xA9.example\t6667\t\r\nN\ts\t1-2\tp\xC3\xA9\r\n");
  const ServerList back = LoadServerList(path);
  EXPECT_EQ(back.Entries(), list.Entries());
  ASSERT_TRUE(SaveServerList(back, path));
  EXPECT_EQ(ReadBytes(path), written);
}

TEST_F(ServerListFileTest, HandMadeFileIsWrittenBackWellFormed) {
  const QString path = PathOf(u"servers.txt"_s);
  WriteBytes(path, "\nN\ts\nCaf\xE9\n\nM\tt\t2\tpw");
  ASSERT_TRUE(SaveServerList(LoadServerList(path), path));
  EXPECT_EQ(ReadBytes(path), "N\ts\t\t\r\nCaf\xC3\xA9\t\t\t\r\nM\tt\t2\tpw\r\n");
}

TEST_F(ServerListFileTest, SaveReplacesWholeFileAndLeavesNoTemporaryFile) {
  const QString path = PathOf(u"servers.txt"_s);
  WriteBytes(path, QByteArray(4096, 'x'));
  ASSERT_TRUE(SaveServerList(ListOf({Entry(u"N"_s, u"s"_s, u"1"_s)}), path));
  EXPECT_EQ(ReadBytes(path), "N\ts\t1\t\r\n");
  EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files), QStringList{u"servers.txt"_s});
}

TEST(ServerListShipped, DefaultListIsWellFormed) {
  const QByteArray bytes = ReadBytes(QStringLiteral(TOLV_DATA_DIR "/servers.txt"));
  const ServerList list = ParseServerList(bytes);
  ASSERT_GE(list.Count(), 2);
  EXPECT_EQ(FormatServerList(list), bytes);  // CR LF endings, every field within bounds
  EXPECT_EQ(list.ServerAt(0)->network, u"Libera.Chat"_s);
  EXPECT_EQ(list.ServerAt(list.Count() - 1)->server, u"127.0.0.1"_s);
  for (const ServerEntry& entry : list.Entries()) {
    EXPECT_TRUE(entry.password.isEmpty()) << entry.network.toStdString();
    const auto ranges = ParsePortList(entry.ports);
    ASSERT_GT(PortCount(ranges), 0) << entry.network.toStdString();
    for (qint64 i = 0; i < PortCount(ranges); ++i) {
      const int port = PortAt(ranges, i);
      EXPECT_TRUE(port > 0 && port < 65536) << entry.network.toStdString();
    }
  }
}

// ---- List operations ------------------------------------------------------------------

TEST(ServerListOps, AppendRemoveAndIndexKeepOrder) {
  ServerList list = ListOf({Entry(u"A"_s, {}, {}), Entry(u"B"_s, {}, {})});
  list.AppendServer(Entry(u"C"_s, {}, {}));
  ASSERT_EQ(list.Count(), 3);
  EXPECT_EQ(list.ServerAt(2)->network, u"C"_s);
  EXPECT_EQ(list.ServerAt(3), nullptr);
  EXPECT_EQ(list.ServerAt(-1), nullptr);
  EXPECT_EQ(list.IndexOfServer(list.ServerAt(1)), 1);

  const ServerEntry stranger = *list.ServerAt(1);  // equal text, not in the list
  EXPECT_EQ(list.IndexOfServer(&stranger), -1);
  EXPECT_EQ(list.IndexOfServer(nullptr), -1);
  EXPECT_FALSE(list.RemoveServer(&stranger));

  EXPECT_TRUE(list.RemoveServer(list.ServerAt(0)));
  EXPECT_EQ(list.ServerAt(0)->network, u"B"_s);
  EXPECT_TRUE(list.RemoveServer(list.ServerAt(1)));
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.ServerAt(0)->network, u"B"_s);
  EXPECT_EQ(list.ServerAt(1), nullptr);
}

// ---- The selected server ----------------------------------------------------------------

class ServerListSelectedTest : public testing::Test {
 protected:
  void SetUp() override {
    WriteBytes(ServerListPath(store_),
               "R\xC3\xA9seau\th\xC3\xA9.example\t6667\tp\xC3\xA9\r\n"
               "Open\topen.example\t7000-7001\t\r\n"
               "Broken\tbroken.example\t6669-6660\t\r\n");
  }
  QTemporaryDir dir_;
  SettingsStore store_{dir_.path()};
};

TEST_F(ServerListSelectedTest, GivesUtf8HostPasswordAndPort) {
  store_.SetDword(u"server", 0);
  QByteArray host, password;
  int port = 0;
  ASSERT_TRUE(GetSelectedServer(store_, host, password, port));
  EXPECT_EQ(host, "h\xC3\xA9.example");
  EXPECT_EQ(password, "p\xC3\xA9");
  EXPECT_EQ(port, 6667);
  EXPECT_EQ(SelectedServerHost(store_), u"h\u00e9.example"_s);

  store_.SetDword(u"server", 1);
  ASSERT_TRUE(GetSelectedServer(store_, host, password, port));
  EXPECT_EQ(host, "open.example");
  EXPECT_EQ(password, "");
  EXPECT_TRUE(port == 7000 || port == 7001) << port;
}

TEST_F(ServerListSelectedTest, FailsWithoutUsableEntryAndLeavesOutputs) {
  struct Case {
    std::optional<qint32> index;  // nullopt: the setting is missing
    bool hasHost;
  };
  for (const Case& c : {Case{3, false}, Case{-1, false}, Case{std::nullopt, false},
                        Case{2, true}}) {
    if (c.index)
      store_.SetDword(u"server", *c.index);
    else
      store_.DeleteValue(u"server");
    QByteArray host = "keep", password = "keep";
    int port = 42;
    EXPECT_FALSE(GetSelectedServer(store_, host, password, port));
    EXPECT_EQ(host, "keep");
    EXPECT_EQ(password, "keep");
    EXPECT_EQ(port, 42);
    // An unusable port list still names a host for lines without a prefix.
    EXPECT_EQ(SelectedServerHost(store_).has_value(), c.hasHost);
  }
}

// ---- Port choice ------------------------------------------------------------------------

struct PortCase {
  const char* name;
  const char16_t* ports;
  std::vector<int> expected;  // every port in list order; empty: no port at all
};

void PrintTo(const PortCase& c, std::ostream* os) { *os << c.name; }

class ServerListPickPortTest : public testing::TestWithParam<PortCase> {};

TEST_P(ServerListPickPortTest, ListsPortsInOrder) {
  const auto ranges = ParsePortList(QStringView(GetParam().ports));
  std::vector<int> ports;
  for (qint64 i = 0; i < PortCount(ranges); ++i)
    ports.push_back(PortAt(ranges, i));
  EXPECT_EQ(ports, GetParam().expected);
}

TEST_P(ServerListPickPortTest, DrawsEveryPortAndNothingElse) {
  const std::vector<int>& expected = GetParam().expected;
  if (expected.empty()) {
    EXPECT_EQ(PickPort(QStringView(GetParam().ports)), -1);
    return;
  }
  std::set<int> seen;
  for (int draw = 0; draw < 2000; ++draw)
    seen.insert(PickPort(QStringView(GetParam().ports)));
  EXPECT_EQ(seen, std::set<int>(expected.begin(), expected.end()));
}

INSTANTIATE_TEST_SUITE_P(
    ServerList, ServerListPickPortTest,
    testing::Values(
        PortCase{"RangeAndSingle", u"6660-6669,7000",
                 {6660, 6661, 6662, 6663, 6664, 6665, 6666, 6667, 6668, 6669, 7000}},
        PortCase{"Descending", u"6669-6660", {}},
        PortCase{"OneWideRange", u"6660-6660", {}},
        PortCase{"EmptyTextIsOnePieceOfZero", u"", {0}},
        PortCase{"EmptyPieces", u",6667,", {0, 6667, 0}},
        PortCase{"NonNumeric", u"abc", {0}},
        PortCase{"BlanksSignAndTrailingText", u" +6667x, 6668 ", {6667, 6668}},
        PortCase{"BlanksAroundDash", u" 7000 - 7002 ", {7000, 7001, 7002}},
        PortCase{"RangeFromNothing", u"-2", {0, 1, 2}},
        PortCase{"SecondDashInTo", u"5--7", {}},
        PortCase{"Saturates", u"99999999999", {2147483647}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ServerListPickPort, HugeRangeIsCountedNotListed) {
  const auto ranges = ParsePortList(u"1-2000000000,0-2147483647");
  EXPECT_EQ(PortCount(ranges), 2000000000LL + 2147483648LL);
  EXPECT_EQ(PortAt(ranges, 0), 1);
  EXPECT_EQ(PortAt(ranges, 1999999999), 2000000000);
  EXPECT_EQ(PortAt(ranges, 2000000000), 0);
  EXPECT_EQ(PortAt(ranges, PortCount(ranges) - 1), 2147483647);
  for (int draw = 0; draw < 100; ++draw)
    EXPECT_GE(PickPort(u"1-2000000000,0-2147483647"), 0);
}

// Found by fuzzing: a network name starting with U+FEFF came back as a byte-order mark.
TEST(ServerListRegression, ALeadingByteOrderMarkInTheFirstFieldDoesNotRoundTripWrong) {
  const ServerList once = ParseServerList("\xEF\xBB\xBF\xEF\xBB\xBFNet\tirc.example\t6667\t\r\n");
  const ServerList twice = ParseServerList(FormatServerList(once));
  ASSERT_EQ(twice.Count(), 1);
  EXPECT_EQ(twice.Entries(), once.Entries());
  EXPECT_EQ(once.ServerAt(0)->network, QStringLiteral("Net"));
}

}  // namespace
