#include "favorites/favorite_commands.h"

#include "client/shell.h"
#include "commands/command_ids.h"
#include "commands/prompt_texts.h"
#include "favorites/favorite_list.h"

using namespace Qt::StringLiterals;

namespace {

void AddByPrompt(Shell& shell, FavoriteList& favorites) {
  const PromptTexts texts = *OneLinePromptTexts(kCmdFavoriteAdd);
  const std::optional<QString> sentence =
      shell.AskText(texts.title, texts.label, QString(), EmptyAnswer::Refused);
  if (sentence && !sentence->isEmpty()) favorites.Add(*sentence);
}

// The dialog lists what the file holds; the choice removes that position of the menu.
void RemoveByPicking(Shell& shell, FavoriteList& favorites, const QString& path) {
  const std::optional<int> chosen =
      shell.PickFromList(u"Favorites list"_s, u"Select sentence to remove:"_s,
                         FavoriteList::ReadSentences(path), u"Remove"_s);
  if (chosen) favorites.Remove(*chosen);
}

}  // namespace

std::optional<QString> RunFavoriteCommand(Shell& shell, FavoriteList& favorites, int command) {
  if (command == kCmdFavoriteAdd) {
    AddByPrompt(shell, favorites);
  } else if (command == kCmdFavoriteRemove) {
    RemoveByPicking(shell, favorites, favorites.FilePath());
  } else {
    return favorites.TextForCommand(command);
  }
  return std::nullopt;
}
