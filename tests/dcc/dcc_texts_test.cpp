// The CTCP texts of DCC both ways, byte for byte, the progress window's texts, and the
// names that files get on their way in and out.

#include "dcc/dcc_text.h"
#include "irc/dcc_ctcp.h"

#include "support/irc_client_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString Describe(const std::optional<DccRequest>& r) {
  if (!r) return u"-"_s;
  static const char* kTypes[] = {"CHAT", "SEND", "RESUME", "ACCEPT"};
  return u"%1|%2|%3|%4|%5|%6|%7"_s.arg(QString::fromLatin1(kTypes[int(r->type)]), r->fileName)
      .arg(r->address).arg(r->port).arg(r->size).arg(r->position).arg(r->token);
}

struct ParseCase {
  const char* name;
  QString argument;
  QString expected;  // Describe() of the result
};

class ParseTest : public ::testing::TestWithParam<ParseCase> {};

// Well-formed requests are read back in WireTest; here the odd and the broken ones.
TEST_P(ParseTest, ReadsTheFieldsOrNothing) {
  EXPECT_EQ(Describe(ParseDccRequest(GetParam().argument)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, ParseTest,
    ::testing::Values(
        ParseCase{"ChatSignedAddress", u"chat CHAT -1062731519 5000"_s, u"CHAT||3232235777|5000|0|0|"_s},
        ParseCase{"NoArguments", u"SEND"_s, u"-"_s},
        ParseCase{"OpenQuote", u"SEND \"open 1 2 3"_s, u"-"_s},
        ParseCase{"AddressTooLarge", u"SEND f 4294967296 2 3"_s, u"-"_s},
        ParseCase{"PortTooLarge", u"SEND f 1 65536 3"_s, u"-"_s},
        ParseCase{"NegativeSize", u"SEND f 1 2 -3"_s, u"-"_s},
        ParseCase{"ResumeWithoutPosition", u"RESUME f 5000"_s, u"-"_s}),
    [](const auto& info) { return std::string(info.param.name); });

struct WireCase {
  const char* name;
  DccRequest request;
  QByteArray sent;
};

class WireTest : public ::testing::TestWithParam<WireCase> {};

// 192.168.1.1 is 3232235777, above 2^31: it goes out signed, as it always did.
TEST_P(WireTest, SendsTheLinesByteForByte) {
  IrcClientFixture f;
  f.settings.SetString(u"LocalHost", u"192.168.1.1"_s, 30);
  SendDccRequest(f.ctx, u"bob"_s, GetParam().request);
  EXPECT_EQ(f.Sent(), GetParam().sent);
  const auto back = ParseDccRequest(DccRequestText(GetParam().request).mid(4));
  DccRequest expected = GetParam().request;
  expected.fileName.replace(u' ', u'_');
  EXPECT_EQ(Describe(back), Describe(expected));
}

INSTANTIATE_TEST_SUITE_P(
    Requests, WireTest,
    ::testing::Values(
        WireCase{"ChatOffer", DccRequest{DccRequestType::Chat, {}, 3232235777u, 5000, 0, 0, {}},
                 "NOTICE bob :DCC Chat (192.168.1.1)\nPRIVMSG bob :\1DCC CHAT chat -1062731519 5000\1\n"},
        WireCase{"FileOfferBlanksBecomeUnderscores",
                 DccRequest{DccRequestType::Send, u"my file.txt"_s, 3232235777u, 5000, 1536, 0, {}},
                 "NOTICE bob :DCC Send my_file.txt (192.168.1.1)\n"
                 "PRIVMSG bob :\1DCC SEND \"my_file.txt\" -1062731519 5000 1536\1\n"},
        WireCase{"PassiveAnswerHasNoNotice",
                 DccRequest{DccRequestType::Send, u"f.txt"_s, 2130706433u, 6000, 7000000000, 0, u"17"_s},
                 "PRIVMSG bob :\1DCC SEND \"f.txt\" 2130706433 6000 7000000000 17\1\n"},
        WireCase{"Resume", DccRequest{DccRequestType::Resume, u"f.txt"_s, 0, 5000, 0, 512, {}},
                 "PRIVMSG bob :\1DCC RESUME \"f.txt\" 5000 512\1\n"},
        WireCase{"PassiveAccept", DccRequest{DccRequestType::Accept, u"f.txt"_s, 0, 0, 0, 512, u"9"_s},
                 "PRIVMSG bob :\1DCC ACCEPT \"f.txt\" 0 512 9\1\n"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(DccTexts, SizesDurationsAndRates) {
  const std::pair<qint64, const char*> sizes[] = {
      {0, "0 B"},           {1023, "1023 B"},         {1024, "1.00 KB"},
      {1536, "1.50 KB"},    {1048575, "1023.99 KB"},  {1048576, "1.00 MB"},
      {3355443, "3.19 MB"}, {1073741824, "1.00 GB"},  {6000000000, "5.58 GB"}};
  for (const auto& [bytes, text] : sizes) EXPECT_EQ(SizeText(bytes), QString::fromLatin1(text)) << bytes;
  const std::pair<qint64, const char*> durations[] = {
      {0, "0 secs"}, {59, "59 secs"}, {60, "1 mins, 0 secs"}, {3600, "1 hrs, 0 mins, 0 secs"},
      {3725, "1 hrs, 2 mins, 5 secs"}, {90061, "25 hrs, 1 mins, 1 secs"}};
  for (const auto& [seconds, text] : durations) EXPECT_EQ(DurationText(seconds), QString::fromLatin1(text));
  EXPECT_EQ(RateText(1536), u"1.50 KB/s"_s);
  EXPECT_EQ(DottedAddress(3232235777u), u"192.168.1.1"_s);
  EXPECT_EQ(ParseDottedAddress(u"192.168.1.1"), 3232235777u);
  EXPECT_EQ(ParseDottedAddress(u"irc.example.net"), std::nullopt);
}

TEST(DccFileNames, OfferedAndReceivedNames) {
  EXPECT_EQ(OfferedFileName(u"/home/me/my file.txt"_s), u"my_file.txt"_s);
  const std::pair<const char16_t*, const char16_t*> received[] = {
      {u"../../etc/passwd", u"passwd"}, {u"C:\\x\\evil.exe", u"evil.exe"}, {u".bashrc", u"%2Ebashrc"},
      {u"dir/", u"dir%2F"}, {u"my file.txt", u"my file.txt"}, {u"-rf", u"%2Drf"}};
  for (const auto& [offered, name] : received)
    EXPECT_EQ(SafeDownloadName(QStringView(offered)), QString::fromUtf16(name));
}

// Whatever a peer calls its file, it lands directly in the download folder, visible, as
// one plain name.
TEST(DccFileNames, HostileNamesStayInsideTheDownloadFolder) {
  QStringList hostile = {u".."_s, u"."_s, u"../x"_s, u"..\\x"_s, u"/etc/passwd"_s, u"/"_s, u"\\"_s,
                       u"C:/x"_s, u"a/../../b"_s, u"x/.."_s, u".bashrc"_s, u"~/x"_s, u""_s, u" "_s,
                       u"%2e%2e%2f"_s, u"\u2215etc\u2215passwd"_s, u"\uFEFF.."_s, u"...."_s,
                       u"../"_s.repeated(100), QString(300, u'a'), QString(1000, QChar(0xE9)),
                       u"\U0001F600"_s.repeated(150)};
  hostile << (u".."_s + QChar(0) + u"/x"_s) << (QString(QChar(0xD800)) + u"/.."_s) << u"a\nb"_s;
  const QString folder = u"/home/me/downloads/"_s;
  for (const QString& offered : hostile) {
    const QString name = SafeDownloadName(offered);
    const QString path = folder + name;
    EXPECT_EQ(QFileInfo(QDir::cleanPath(path)).absolutePath() + u'/', folder) << offered.left(40).toStdString();
    EXPECT_FALSE(name.contains(u'/') || name.contains(u'\\') || name.startsWith(u'.') ||
                 name.contains(u".."_s) || name.isEmpty());
    EXPECT_LE(name.toUtf8().size(), 255);
  }
}

}  // namespace
