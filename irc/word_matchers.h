#pragma once
// Prepared forms of the ignore and highlight lists. Both are tested for every message
// of a flood, so a list is taken apart once, when its text changes, instead of on every
// line. The settings stay the only truth: each test hands in the list as read just now.

#include <QHash>
#include <QString>
#include <bitset>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// Whole blank-ended words, compared without regard to case.
class IgnoreMatcher {
 public:
  bool Contains(const QString& list, QStringView nick);

 private:
  void Refresh(const QString& list);
  QString source_;  // holds the data the list was built from, so its address stays unique
  bool built_ = false;
  struct Hash {
    size_t operator()(const QString& text) const { return qHash(QStringView(text)); }
  };
  std::unordered_set<QString, Hash> folded_;
  std::bitset<64> lengths_;  // lengths of the listed nicks below 64
};

// Blank-ended words (cut to their first 250 characters) found anywhere in a text, case
// ignored unit by unit. Only text positions whose first two characters start some word
// are compared, so a line costs one pass over it and no allocation.
class HighlightMatcher {
 public:
  bool Occurs(const QString& list, QStringView text);

 private:
  void Refresh(const QString& list);
  bool MatchesAt(QStringView lowerText, qsizetype at) const;
  static size_t PairSlot(char16_t first, char16_t second) {
    return (static_cast<size_t>(first) * 31 + second) & 0xffff;
  }

  QString source_;
  bool built_ = false;
  bool emptyWord_ = false;  // two blanks in a row: a word that occurs in every text
  std::vector<QString> words_;
  std::bitset<65536> firsts_;
  std::bitset<65536> pairs_;
  std::unordered_map<char16_t, std::vector<int>> byFirst_;
};
