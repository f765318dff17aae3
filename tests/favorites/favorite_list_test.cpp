#include "favorites/favorite_list.h"

#include "commands/command_ids.h"
#include "favorites/favorite_commands.h"
#include "support/fake_shell.h"
#include "support/file_bytes.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray Numbered(int first, int last) {
  QByteArray bytes;
  for (int i = first; i <= last; ++i) bytes += "s" + QByteArray::number(i) + "\r\n";
  return bytes;
}

// The bytes of a hand-edited "favorites.txt" and the file once the program has saved it:
// only ended lines count, at most 64 of them, each cut to 64 characters (never inside a
// surrogate pair), without NUL, a lone CR, a leading U+FEFF or a blank line.
TEST(FavoriteList, ReadsAHandEditedFileAndSavesItCleaned) {
  const std::pair<QByteArray, QByteArray> cases[] = {
      {"kept\r\nlost", "kept\r\n"},
      {"\r\none\ntwo\r\n  \t\r\n  a  b \r\n", "one\r\ntwo\r\n  a  b \r\n"},
      {QByteArray(63, 'a') + "\xF0\x9F\x98\x80\r\n", QByteArray(63, 'a') + "\r\n"},
      {QByteArray(62, 'a') + "\xF0\x9F\x98\x80zz\r\n", QByteArray(62, 'a') + "\xF0\x9F\x98\x80\r\n"},
      {QByteArray("\xC3\xA9").repeated(70) + "\r\n", QByteArray("\xC3\xA9").repeated(64) + "\r\n"},
      {"Caf\xE9\r\n", "Caf\xC3\xA9\r\n"},
      {QByteArray("a\0b\rc\r\r\n\0\r\n", 11), "abc\r\n"},
      {"\xEF\xBB\xBFHi\r\n\xEF\xBB\xBF" "b\r\n", "Hi\r\nb\r\n"},
      {"\x02" "bold\x03" "4red\r\n", "\x02" "bold\x03" "4red\r\n"},
      {"\r\n" + Numbered(1, 65) + "tail", Numbered(1, 64)},
  };
  QTemporaryDir dir;
  const QString path = dir.filePath(u"favorites.txt"_s);
  for (const auto& [read, saved] : cases) {
    WriteBytes(path, read);
    FavoriteList list;
    list.SetFilePath(path);
    list.Load();
    list.Save();
    EXPECT_EQ(ReadBytes(path), saved) << read.toStdString();
  }
}

// The menu's commands over a real file: Add asks and appends (nothing for blanks or once
// the menu holds 98), Remove lists the file as it is and removes the chosen position, a
// sentence item gives its text and one blank.
TEST(FavoriteCommands, AddRemoveAndChooseRewriteTheFile) {
  QTemporaryDir dir;
  FavoriteList favorites;
  favorites.SetFilePath(dir.filePath(u"favorites.txt"_s));
  EXPECT_EQ(favorites.Load(), 0);
  EXPECT_EQ(ReadBytes(favorites.FilePath()), "");  // a missing file is created
  FakeShell shell;
  shell.textAnswers = {u"good morning\r\n"_s, std::nullopt, u" \t "_s, QString(70, u'z')};
  for (int i = 0; i < 4; ++i) RunFavoriteCommand(shell, favorites, kCmdFavoriteAdd);
  EXPECT_EQ(shell.prompts.front(), (FakeShell::Message{u"New favorite sentence"_s, u"Enter a sentence:"_s}));
  EXPECT_EQ(ReadBytes(favorites.FilePath()), "good morning\r\n" + QByteArray(64, 'z') + "\r\n");
  EXPECT_EQ(RunFavoriteCommand(shell, favorites, kFirstFavoriteCommand + 1), QString(64, u'z') + u' ');
  EXPECT_EQ(RunFavoriteCommand(shell, favorites, kFirstFavoriteCommand + 2), std::nullopt);

  WriteBytes(favorites.FilePath(), "edited\r\nby hand\r\n");
  shell.listAnswers = {1, std::nullopt};
  RunFavoriteCommand(shell, favorites, kCmdFavoriteRemove);
  RunFavoriteCommand(shell, favorites, kCmdFavoriteRemove);
  EXPECT_EQ(shell.listPrompts.front(), (FakeShell::ListPrompt{u"Favorites list"_s, u"Select sentence to remove:"_s,
                                                                {u"edited"_s, u"by hand"_s}, u"Remove"_s}));
  EXPECT_EQ(ReadBytes(favorites.FilePath()), "good morning\r\n");

  for (int i = 2; i <= 99; ++i) favorites.Add(u"s"_s + QString::number(i));
  EXPECT_EQ(favorites.Count(), 98);
  EXPECT_EQ(RunFavoriteCommand(shell, favorites, kLastFavoriteCommand), u"s98 "_s);
  EXPECT_EQ(RunFavoriteCommand(shell, favorites, kLastFavoriteCommand + 1), std::nullopt);  // Add
}

}  // namespace
