#pragma once
// The user's ready-made sentences: the model behind the "Favorites" menu, kept in
// "favorites.txt" in the home folder. Choosing a sentence inserts it into the input line.
//
// File format: one sentence per line, each line ended by CR LF (LF alone is accepted
// too); a last line without a line end is not read. Written as UTF-8; read line by line
// as UTF-8, or as Latin-1 when a line is not valid UTF-8. Only the first 64 sentences are
// read and each is cut to 64 characters, so a longer file loses the rest at the next save.

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

class SettingsStore;

inline constexpr int kFirstFavoriteCommand = 40200;  // sentence i has command 40200 + i
inline constexpr int kLastFavoriteCommand = 40297;   // so at most 98 sentences in the menu
inline constexpr int kFavoritesRead = 64;            // sentences read from the file
inline constexpr int kFavoriteUnits = 64;            // characters kept of each sentence
inline constexpr int kMaxFavorites = kLastFavoriteCommand - kFirstFavoriteCommand + 1;

// "favorites.txt" in the installation folder.
QString FavoritesPath(const SettingsStore& store);

class FavoriteList : public QObject {
  Q_OBJECT

 public:
  explicit FavoriteList(QObject* parent = nullptr);

  void SetFilePath(const QString& path);
  const QString& FilePath() const { return path_; }

  // Reads the file, creating it empty when absent, and replaces the list with what it
  // holds; a file that cannot be read gives an empty list. Returns the count.
  int Load();
  // Rewrites the file from the list, atomically. When the folder cannot be written the
  // file is left as it was and nothing is reported; the list in memory stays.
  void Save() const;
  // Appends the sentence (fitted to the file's format) and saves. A text with nothing
  // but blanks, or a full menu, changes nothing. Returns the count.
  int Add(QStringView text);
  // Deletes the sentence at `index` and saves; an index outside the list changes
  // nothing. Returns the count.
  int Remove(int index);

  int Count() const { return static_cast<int>(sentences_.size()); }
  const QStringList& Sentences() const { return sentences_; }

  // What choosing the menu item `command` inserts at the caret: the sentence and one
  // blank. nullopt for a command that is no sentence of the list.
  std::optional<QString> TextForCommand(int command) const;

  // The sentences in the file at `path` as Load would read them, without creating it.
  // The removal dialog lists these, even when the file was changed behind the menu.
  static QStringList ReadSentences(const QString& path);

  // The file's bytes to sentences and back. Parsing drops what a menu item cannot
  // hold: NUL, a CR that is not part of a line end, U+FEFF at a sentence's start, units
  // past the 64th (never half a surrogate pair), and lines left blank.
  static QStringList ParseFavorites(const QByteArray& bytes);
  static QByteArray FormatFavorites(const QStringList& sentences);

 signals:
  void changed();

 private:
  QString path_;
  QStringList sentences_;
};
