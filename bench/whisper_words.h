#pragma once
// A dictionary file taught 100,000 distinct words, for the whisper benchmarks. The words
// are random letters, 3 to 10 long: more branching near the root than a language has,
// so the chains a lookup walks are longer than a user's own dictionary would give.

#include "whispers/whisper_dictionary.h"

#include <QSet>
#include <QStringList>

#include <random>

inline constexpr int kBenchDictionaryWords = 100000;

inline QStringList DistinctWords(int count, unsigned seed, const QSet<QString>& avoid = {}) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> length(3, 10);
  std::uniform_int_distribution<int> letter(0, 25);
  QSet<QString> seen;
  QStringList words;
  while (words.size() < count) {
    QString word(length(random), u'a');
    for (QChar& c : word) c = QChar(u'a' + letter(random));
    if (avoid.contains(word) || seen.contains(word)) continue;
    seen.insert(word);
    words << word;
  }
  return words;
}

// Taught 200 to a line, as a user's lines would bring them.
inline void TeachAll(WhisperDictionary& dictionary, const QStringList& words) {
  for (qsizetype i = 0; i < words.size(); i += 200) dictionary.TeachText(words.mid(i, 200).join(u' '));
}
