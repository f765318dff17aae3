#pragma once
// The Favorites menu's commands: Add asks for a sentence, Remove offers the file's
// sentences, and a sentence item gives the text the input line inserts at its caret.

#include <QString>

#include <optional>

class FavoriteList;
class Shell;

// Commands 40298 (Add), 40299 (Remove) and 40200-40297 (the sentences). For a sentence,
// the text to insert (the sentence and one blank); nullopt otherwise.
std::optional<QString> RunFavoriteCommand(Shell& shell, FavoriteList& favorites, int command);
