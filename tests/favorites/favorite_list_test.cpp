#include "favorites/favorite_list.h"

#include "commands/command_ids.h"
#include "favorites/favorite_commands.h"
#include "support/fake_shell.h"
#include "support/file_bytes.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {



// "s1\r\ns2\r\n..." for sentences numbered first..last.
QByteArray NumberedLines(int first, int last) {
  QByteArray bytes;
  for (int i = first; i <= last; ++i)
    bytes += "s" + QByteArray::number(i) + "\r\n";
  return bytes;
}

const QString kSmiley = u"\U0001F600"_s;  // one character, two UTF-16 units

// ---- Reading the file's bytes ---------------------------------------------------------

struct ParseCase {
  const char* name;
  QByteArray bytes;
  QStringList sentences;
};

void PrintTo(const ParseCase& c, std::ostream* os) { *os << c.name; }

class FavoritesParseTest : public testing::TestWithParam<ParseCase> {};

TEST_P(FavoritesParseTest, ReadsSentences) {
  EXPECT_EQ(FavoriteList::ParseFavorites(GetParam().bytes), GetParam().sentences);
}

QStringList Numbered(int first, int last) {
  QStringList list;
  for (int i = first; i <= last; ++i)
    list << u"s"_s + QString::number(i);
  return list;
}

INSTANTIATE_TEST_SUITE_P(
    Favorites, FavoritesParseTest,
    testing::Values(
        ParseCase{"Empty", "", {}},
        ParseCase{"LastLineWithoutEndNotRead", "kept\r\nlost", {u"kept"_s}},
        ParseCase{"CrWithoutLfAtEnd", "kept\r\nlost\r", {u"kept"_s}},
        ParseCase{"MixedEnds", "one\r\ntwo\nthree\r\n", {u"one"_s, u"two"_s, u"three"_s}},
        ParseCase{"EmptyAndBlankLinesDropped", "\r\none\r\n\r\n  \t\r\n\ntwo\r\n",
                  {u"one"_s, u"two"_s}},
        ParseCase{"BlanksInsideKept", "  a  b \r\n", {u"  a  b "_s}},
        ParseCase{"Exactly64Kept", QByteArray(64, 'x') + "\r\n", {QString(64, u'x')}},
        ParseCase{"PairAcrossTheCutDropped",
                  QByteArray(63, 'a') + "\xF0\x9F\x98\x80" + "\r\n", {QString(63, u'a')}},
        ParseCase{"PairEndingAtTheCutKept",
                  QByteArray(62, 'a') + "\xF0\x9F\x98\x80" + "zz\r\n",
                  {QString(62, u'a') + kSmiley}},
        // 64 characters, not 64 bytes: two-byte UTF-8 letters are not cut at 32.
        ParseCase{"CutCountsCharactersNotBytes",
                  QByteArray("\xC3\xA9").repeated(70) + "\r\n", {QString(64, QChar(0xE9))}},
        ParseCase{"EncodingDecidedPerLine", "Caf\xE9\r\nCaf\xC3\xA9\r\n",
                  {u"Caf\u00e9"_s, u"Caf\u00e9"_s}},
        ParseCase{"NulAndLoneCrDropped", QByteArray("a\0b\rc\r\r\n", 8), {u"abc"_s}},
        ParseCase{"NulsOnlyDropped", QByteArray("\0\0\r\nx\r\n", 7), {u"x"_s}},
        ParseCase{"BomAtFileStart", "\xEF\xBB\xBFHi\r\n", {u"Hi"_s}},
        ParseCase{"BomAtLineStartDropped", "a\r\n\xEF\xBB\xBF" "b\r\n", {u"a"_s, u"b"_s}},
        ParseCase{"IrcCodesKept", "\x02" "bold\x03" "4red\r\n",
                  {u"\u0002bold\u00034red"_s}},
        ParseCase{"SixtyFifthNotRead", NumberedLines(1, 65), Numbered(1, 64)},
        ParseCase{"BlankLinesDoNotCount", "\r\n" + NumberedLines(1, 64) + "s65\r\n",
                  Numbered(1, 64)}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- The bytes written ----------------------------------------------------------------

struct FormatCase {
  const char* name;
  QStringList sentences;
  QByteArray bytes;
};

void PrintTo(const FormatCase& c, std::ostream* os) { *os << c.name; }

class FavoritesFormatTest : public testing::TestWithParam<FormatCase> {};

TEST_P(FavoritesFormatTest, WritesExactBytes) {
  EXPECT_EQ(FavoriteList::FormatFavorites(GetParam().sentences), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Favorites, FavoritesFormatTest,
    testing::Values(
        FormatCase{"Empty", {}, ""},
        FormatCase{"Utf8", {u"Caf\u00e9"_s, kSmiley},
                   "Caf\xC3\xA9\r\n\xF0\x9F\x98\x80\r\n"},
        FormatCase{"PairNotSplit", {QString(63, u'x') + kSmiley},
                   QByteArray(63, 'x') + "\r\n"},
        FormatCase{"BreaksAndNulDropped", {u"a\r\nb"_s + QChar(0) + u"c"_s}, "abc\r\n"},
        FormatCase{"BlankSentencesSkipped", {u""_s, u"  "_s, u"x"_s}, "x\r\n"},
        FormatCase{"LeadingBomDropped", {QChar(0xFEFF) + u"x"_s}, "x\r\n"},
        FormatCase{"LoneSurrogateReplaced", {u"a"_s + QChar(0xD800) + u"b"_s},
                   "a\xEF\xBF\xBD" "b\r\n"}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- The list and its file ------------------------------------------------------------

class FavoriteListFileTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dir_.isValid());
    path_ = dir_.filePath(u"favorites.txt"_s);
    list_.SetFilePath(path_);
  }

  QTemporaryDir dir_;
  QString path_;
  FavoriteList list_;
};

TEST_F(FavoriteListFileTest, MissingFileIsCreatedEmpty) {
  EXPECT_EQ(list_.Load(), 0);
  EXPECT_TRUE(QFile::exists(path_));
  EXPECT_EQ(ReadBytes(path_), "");
}

TEST_F(FavoriteListFileTest, LongLineIsShortenedOnTheNextSave) {
  WriteBytes(path_, QByteArray(70, 'w') + "\r\n");
  ASSERT_EQ(list_.Load(), 1);
  EXPECT_EQ(list_.Sentences(), QStringList{QString(64, u'w')});
  list_.Save();
  EXPECT_EQ(ReadBytes(path_), QByteArray(64, 'w') + "\r\n");
}

TEST_F(FavoriteListFileTest, LinesPastTheLimitAndTheUnendedLastAreLostOnSave) {
  WriteBytes(path_, NumberedLines(1, 65) + "tail");
  ASSERT_EQ(list_.Load(), 64);
  EXPECT_EQ(list_.Add(u"new"), 65);
  EXPECT_EQ(ReadBytes(path_), NumberedLines(1, 64) + "new\r\n");
}

// Each step changes the list and the file; the file must hold exactly the list.
struct EditStep {
  const char* what;
  enum { kAdd, kRemove } op;
  QString text;
  int index;
  int count;
  QByteArray file;
  bool signalled;
};

TEST_F(FavoriteListFileTest, AddAndRemoveRewriteTheFileExactly) {
  WriteBytes(path_, "one\r\ntwo\r\nthree\r\n");
  ASSERT_EQ(list_.Load(), 3);
  QSignalSpy changed(&list_, &FavoriteList::changed);
  const EditStep steps[] = {
      {"add", EditStep::kAdd, u"four"_s, 0, 4, "one\r\ntwo\r\nthree\r\nfour\r\n", true},
      {"remove middle", EditStep::kRemove, {}, 1, 3, "one\r\nthree\r\nfour\r\n", true},
      {"remove past end", EditStep::kRemove, {}, 3, 3, "one\r\nthree\r\nfour\r\n", false},
      {"remove negative", EditStep::kRemove, {}, -1, 3, "one\r\nthree\r\nfour\r\n", false},
      {"add empty", EditStep::kAdd, u""_s, 0, 3, "one\r\nthree\r\nfour\r\n", false},
      {"add blanks", EditStep::kAdd, u" \t "_s, 0, 3, "one\r\nthree\r\nfour\r\n", false},
      {"add line break", EditStep::kAdd, u"five\r\n"_s, 0, 4,
       "one\r\nthree\r\nfour\r\nfive\r\n", true},
      {"add long", EditStep::kAdd, QString(100, u'z'), 0, 5,
       "one\r\nthree\r\nfour\r\nfive\r\n" + QByteArray(64, 'z') + "\r\n", true},
      {"remove first", EditStep::kRemove, {}, 0, 4,
       "three\r\nfour\r\nfive\r\n" + QByteArray(64, 'z') + "\r\n", true},
      {"remove last", EditStep::kRemove, {}, 3, 3, "three\r\nfour\r\nfive\r\n", true},
  };
  for (const EditStep& step : steps) {
    SCOPED_TRACE(step.what);
    changed.clear();
    const int count =
        step.op == EditStep::kAdd ? list_.Add(step.text) : list_.Remove(step.index);
    EXPECT_EQ(count, step.count);
    EXPECT_EQ(list_.Count(), step.count);
    EXPECT_EQ(ReadBytes(path_), step.file);
    EXPECT_EQ(FavoriteList::ParseFavorites(step.file), list_.Sentences());
    EXPECT_EQ(changed.count(), step.signalled ? 1 : 0);
  }
}

TEST_F(FavoriteListFileTest, MenuHoldsAtMost98) {
  WriteBytes(path_, NumberedLines(1, 64));
  ASSERT_EQ(list_.Load(), 64);
  for (int i = 65; i <= 98; ++i)
    ASSERT_EQ(list_.Add(u"s"_s + QString::number(i)), i);
  QSignalSpy changed(&list_, &FavoriteList::changed);
  EXPECT_EQ(list_.Add(u"s99"), 98);
  EXPECT_EQ(changed.count(), 0);
  EXPECT_EQ(list_.Sentences().last(), u"s98"_s);
  EXPECT_EQ(ReadBytes(path_), NumberedLines(1, 98));
  EXPECT_EQ(list_.TextForCommand(kLastFavoriteCommand), u"s98 "_s);
}

TEST_F(FavoriteListFileTest, LoadReplacesTheListAndSignalsOnlyAChange) {
  WriteBytes(path_, "a\r\nb\r\n");
  QSignalSpy changed(&list_, &FavoriteList::changed);
  EXPECT_EQ(list_.Load(), 2);
  EXPECT_EQ(list_.Load(), 2);
  EXPECT_EQ(changed.count(), 1);
  WriteBytes(path_, "c\r\n");
  EXPECT_EQ(list_.Load(), 1);
  EXPECT_EQ(list_.Sentences(), QStringList{u"c"_s});
  EXPECT_EQ(changed.count(), 2);
}

TEST_F(FavoriteListFileTest, RemovalDialogReadsTheFileNotTheMenu) {
  list_.Load();
  list_.Add(u"in menu and file");
  WriteBytes(path_, "edited\r\nby hand\r\n");
  EXPECT_EQ(FavoriteList::ReadSentences(path_), (QStringList{u"edited"_s, u"by hand"_s}));
  EXPECT_EQ(list_.Sentences(), QStringList{u"in menu and file"_s});
}

TEST_F(FavoriteListFileTest, ReadingAMissingFileDoesNotCreateIt) {
  EXPECT_EQ(FavoriteList::ReadSentences(path_), QStringList{});
  EXPECT_FALSE(QFile::exists(path_));
}

// A folder that cannot be written: the parent is a regular file, so nothing can be
// created under it (chmod would not stop root).
TEST_F(FavoriteListFileTest, UnwritableFolderKeepsTheListInMemory) {
  WriteBytes(dir_.filePath(u"file"_s), "x");
  list_.SetFilePath(dir_.filePath(u"file/favorites.txt"_s));
  EXPECT_EQ(list_.Load(), 0);
  EXPECT_EQ(list_.Add(u"kept"), 1);
  EXPECT_EQ(list_.Add(u"also kept"), 2);
  EXPECT_EQ(list_.Remove(0), 1);
  EXPECT_EQ(list_.Sentences(), QStringList{u"also kept"_s});
  EXPECT_EQ(list_.TextForCommand(kFirstFavoriteCommand), u"also kept "_s);
  EXPECT_EQ(ReadBytes(dir_.filePath(u"file"_s)), "x");
}

// The write fails at its very last step (a folder stands where the file goes): nothing
// half-written may be left beside it.
TEST_F(FavoriteListFileTest, FailedSaveLeavesNoPartialFile) {
  ASSERT_TRUE(QDir(dir_.path()).mkdir(u"favorites.txt"_s));
  EXPECT_EQ(list_.Load(), 0);
  EXPECT_EQ(list_.Add(u"sentence"), 1);
  const QDir folder(dir_.path());
  EXPECT_EQ(folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
            QStringList{u"favorites.txt"_s});
  EXPECT_TRUE(QDir(path_).isEmpty());
}

TEST(FavoriteList, ShippedFileReadsEveryLine) {
  const QByteArray bytes = ReadBytes(QStringLiteral(TOLV_DATA_DIR "/favorites.txt"));
  ASSERT_TRUE(bytes.endsWith("\r\n"));
  EXPECT_EQ(FavoriteList::ParseFavorites(bytes).size(), bytes.count("\r\n"));
}

// ---- Choosing a sentence --------------------------------------------------------------

TEST(FavoriteList, TextForCommand) {
  QTemporaryDir dir;
  FavoriteList list;
  list.SetFilePath(dir.filePath(u"favorites.txt"_s));
  list.Add(u"first");
  list.Add(u"second ");
  const struct {
    int command;
    std::optional<QString> text;
  } cases[] = {
      {kFirstFavoriteCommand, u"first "_s},
      {kFirstFavoriteCommand + 1, u"second  "_s},
      {kFirstFavoriteCommand + 2, std::nullopt},
      {kFirstFavoriteCommand - 1, std::nullopt},
      {kLastFavoriteCommand, std::nullopt},
      {kLastFavoriteCommand + 1, std::nullopt},  // "Add"
      {kLastFavoriteCommand + 2, std::nullopt},  // "Remove"
      {0, std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    EXPECT_EQ(list.TextForCommand(c.command), c.text);
  }
}

// The menu's commands over a real file: Add asks and saves, Remove lists the file and
// removes the chosen position, a sentence gives its text with one blank.
TEST(FavoriteCommands, AddRemoveAndChoose) {
  QTemporaryDir dir;
  const QString path = dir.path() + QStringLiteral("/favorites.txt");
  FavoriteList favorites;
  favorites.SetFilePath(path);
  favorites.Load();
  FakeShell shell;
  shell.textAnswers = {QStringLiteral("good morning"), std::nullopt, QStringLiteral("bye")};
  for (int i = 0; i < 3; ++i) RunFavoriteCommand(shell, favorites, kCmdFavoriteAdd);
  EXPECT_EQ(shell.prompts.front(),
            (FakeShell::Message{QStringLiteral("New favorite sentence"), QStringLiteral("Enter a sentence:")}));
  EXPECT_EQ(RunFavoriteCommand(shell, favorites, kFirstFavoriteCommand + 1), QStringLiteral("bye "));
  shell.listAnswers = {0, std::nullopt};
  RunFavoriteCommand(shell, favorites, kCmdFavoriteRemove);
  RunFavoriteCommand(shell, favorites, kCmdFavoriteRemove);
  EXPECT_EQ(shell.listPrompts.front(),
            (FakeShell::ListPrompt{QStringLiteral("Favorites list"), QStringLiteral("Select sentence to remove:"),
                                   {QStringLiteral("good morning"), QStringLiteral("bye")},
                                   QStringLiteral("Remove")}));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), "bye\r\n");
}

}  // namespace
