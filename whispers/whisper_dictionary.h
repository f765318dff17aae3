#pragma once
// The word-completion dictionary: "dict.dat" in the dictionary folder ("dictpath", else
// the home folder), a character tree that only grows, and its copy "dict_old.dat".
// The tree is not kept in memory: every teach and every lookup opens the file, walks a
// few records and closes it, so the options dialog's Flush and Previous, or another
// copy of the file, take effect at the next keystroke. Only what teaching has not
// written yet is held, by a writer thread that writes it behind (see dict_writer.h).
//
// Two comparisons differ on purpose, as the file format has always had them: teaching
// files a character by its low 8 bits (so U+015D shares the place of "]"), while a
// lookup compares the stored byte, signed, with the whole typed character, so a typed
// character above 127 after the first never matches and such words offer nothing.

#include "commands/word_teacher.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class DictFile;
class DictWriter;
class SettingsStore;

// A taught word is cut to this many characters.
inline constexpr int kMaxTaughtWord = 250;

enum class WhisperLookup {
  Unavailable,  // no file, no word with that first character, or a damaged file
  NotFound,     // the typed word is not a path of the tree
  Found,        // it is; `words` holds its completions (maybe none)
};

struct WhisperCompletions {
  WhisperLookup result = WhisperLookup::Unavailable;
  QStringList words;
};

class WhisperDictionary : public WordTeacher {
 public:
  // `report` gets the one line that says the file is damaged.
  WhisperDictionary(const SettingsStore& settings, std::function<void(const QString&)> report);
  // Waits for what is still to be written.
  ~WhisperDictionary() override;

  QString FilePath() const;
  QString BackupPath() const;

  // Cuts a line at every blank and teaches each piece of 2 or more characters, in order.
  void TeachText(QStringView text) override;
  void TeachWord(QStringView word);
  // Opens or creates the file, gives an empty one its header (`recreate`: empties it to
  // the header first), then teaches the seed words.
  void EnsureDictionary(bool recreate);
  // Copies the file over its backup, and back. A missing source changes nothing.
  void BackupDictionary();
  void RestoreDictionary();
  // The completions of `word`, the latest branch of each place first, at most `limit`
  // branches taken; the word itself is never among them.
  WhisperCompletions FindCompletions(QStringView word, int limit);
  // Returns once everything taught is in the file (what a reader of the file needs).
  void WaitForWrites() const;

 private:
  bool Open(DictFile& file, bool write);
  void TeachInto(DictFile& file, QStringView word);
  void NoteDamage(const DictFile& file);
  void SayWriteFailure() const;

  const SettingsStore& settings_;
  std::function<void(const QString&)> report_;
  bool damageReported_ = false;
  std::unique_ptr<DictWriter> writer_;
};
