#include "irc/line_assembly.h"

#include "support/irc_client_fixture.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

// Chunks as they come from successive reads, then the Status lines and the kept tail.
struct AssemblyCase {
  const char* name;
  std::vector<QByteArray> chunks;
  QStringList status;
  QByteArray kept;
};

class LineAssemblyTest : public ::testing::TestWithParam<AssemblyCase> {};

TEST_P(LineAssemblyTest, ShowsEachCompleteLineOnce) {
  const AssemblyCase& c = GetParam();
  IrcClientFixture f;
  for (const QByteArray& chunk : c.chunks) SplitAndDispatch(f.ctx, chunk);
  EXPECT_EQ(f.StatusLines(), c.status);
  EXPECT_EQ(f.ctx.session.receiveBuffer, c.kept);
}

// Bytes with NULs and high bytes, without stopping at the first NUL.
QByteArray Raw(std::string_view bytes) { return QByteArray(bytes.data(), qsizetype(bytes.size())); }

const QByteArray k20KiB(20 * 1024, 'x');
const QByteArray k10KiB(10 * 1024, 'x');

INSTANTIATE_TEST_SUITE_P(
    Reads, LineAssemblyTest,
    ::testing::Values(
        AssemblyCase{"TwoAndAHalfLines", {"FOO :one\r\nFOO :two\nFOO :th"},
                     {u"one"_s, u"two"_s}, "FOO :th"},
        AssemblyCase{"HalfLineCompletedLater", {"FOO :one\r\nFOO :two\nFOO :th", "ree\r\nFOO :four\n"},
                     {u"one"_s, u"two"_s, u"three"_s, u"four"_s}, ""},
        AssemblyCase{"TailGrowsOverThreeReads", {"FOO", " :a", "b\r", "\n"}, {u"ab"_s}, ""},
        AssemblyCase{"CrLfAndLfAndTrailingBlanksAlike", {"FOO :same  \r\nFOO :same\nFOO :same \n"},
                     {u"same"_s, u"same"_s, u"same"_s}, ""},
        AssemblyCase{"BareCrEndsNoLine", {"FOO :a\rFOO :b\r\n"}, {u"a\rFOO :b"_s}, ""},
        AssemblyCase{"EmptyLinesAreShownEmpty", {"\n\r\n   \r\n"}, {u""_s, u""_s, u""_s}, ""},
        AssemblyCase{"UnknownCommandShowsItsRest", {":srv FOO bar :baz  qux\n", ":srv 0 me :zero\n"},
                     {u"baz  qux"_s, u"zero"_s}, ""},
        AssemblyCase{"ErrorShownUntilItsHandlerExists", {"ERROR :Closing Link: x (Quit)\n"},
                     {u"Closing Link: x (Quit)"_s}, ""},
        AssemblyCase{"Latin1LineBetweenUtf8Lines",
                     {"FOO :caf\xc3\xa9\nFOO :caf\xe9 \xbd\nFOO :\xe2\x82\xac\n"},
                     {u"caf\u00e9"_s, u"caf\u00e9 \u00bd"_s, u"\u20ac"_s}, ""},
        AssemblyCase{"Utf8CharacterSplitAcrossReads", {"FOO :\xe2\x82", "\xac!\n"}, {u"\u20ac!"_s}, ""},
        AssemblyCase{"NulBytesStayInTheLine", {Raw("FOO :a\0b\nFOO :\0"sv), Raw("c\n"sv)},
                     {u"a\0b"_s, u"\0c"_s}, ""},
        // The whole over-long line is lost up to its LF; the next line works.
        AssemblyCase{"OverLongTailInOneRead", {k20KiB, "yyy\nFOO :after\n"}, {u"after"_s}, ""},
        AssemblyCase{"OverLongTailOverReads", {k10KiB, k10KiB, k10KiB, "yyy\r\nFOO :after\nFOO :x"},
                     {u"after"_s}, "FOO :x"},
        AssemblyCase{"OverLongTailBehindALine", {"FOO :before\n" + k20KiB, "\nFOO :after\n"},
                     {u"before"_s, u"after"_s}, ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(LineAssembly, TailAtTheBoundIsStillAWholeLine) {
  IrcClientFixture f;
  const QByteArray head = "FOO :" + QByteArray(16 * 1024 - 5, 'x');  // exactly 16 KiB
  SplitAndDispatch(f.ctx, head);
  EXPECT_EQ(f.ctx.session.receiveBuffer.size(), 16 * 1024);
  SplitAndDispatch(f.ctx, "y\n");
  ASSERT_EQ(f.StatusLines().size(), 1);
  EXPECT_EQ(f.StatusLines()[0], QString(16 * 1024 - 5, u'x') + u'y');
}

TEST(LineAssembly, ServerTextUsesTheNormalColour) {
  IrcClientFixture f;
  SplitAndDispatch(f.ctx, "FOO :x\n");
  EXPECT_EQ(f.StatusColour(0), f.ctx.Colour(LineStyle::Normal));
}

}  // namespace
