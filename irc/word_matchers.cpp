#include "irc/word_matchers.h"

#include <algorithm>

namespace {

// The blank-ended words of a list; a last word without its blank is not a word.
std::vector<QStringView> Words(QStringView list) {
  std::vector<QStringView> words;
  for (qsizetype start = 0, blank; (blank = list.indexOf(u' ', start)) >= 0; start = blank + 1)
    words.push_back(list.sliced(start, blank - start));
  return words;
}

bool SameData(const QString& a, const QString& b) {
  return a.constData() == b.constData() && a.size() == b.size();
}

// Lower case one UTF-16 unit at a time, as the device did: no text changes length, so
// positions in the text stay positions in its lower-case form, and nothing is allocated.
char16_t Lower(QChar c) { return c.toLower().unicode(); }

QString LowerUnits(QStringView text) {
  QString lower(text.size(), Qt::Uninitialized);
  for (qsizetype i = 0; i < text.size(); ++i) lower[i] = QChar(Lower(text[i]));
  return lower;
}

}  // namespace

void IgnoreMatcher::Refresh(const QString& list) {
  if (built_ && SameData(list, source_)) return;
  source_ = list;
  built_ = true;
  folded_.clear();
  lengths_.reset();
  for (QStringView word : Words(list)) {
    folded_.insert(word.toString().toCaseFolded());
    if (word.size() < static_cast<qsizetype>(lengths_.size())) lengths_.set(word.size());
  }
}

bool IgnoreMatcher::Contains(const QString& list, QStringView nick) {
  Refresh(list);
  // Most senders are not listed; a nick of no listed length is rejected without a copy.
  if (nick.size() < static_cast<qsizetype>(lengths_.size()) && !lengths_.test(nick.size()))
    return false;
  return folded_.count(nick.toString().toCaseFolded()) > 0;
}

void HighlightMatcher::Refresh(const QString& list) {
  if (built_ && SameData(list, source_)) return;
  source_ = list;
  built_ = true;
  emptyWord_ = false;
  words_.clear();
  firsts_.reset();
  pairs_.reset();
  byFirst_.clear();
  const QString lower = LowerUnits(list);
  for (QStringView word : Words(lower)) {
    word = word.first(std::min<qsizetype>(word.size(), 250));
    if (word.isEmpty()) {
      emptyWord_ = true;
      continue;
    }
    const char16_t first = word[0].unicode();
    firsts_.set(first);
    // A one-character word occurs wherever its character does: every pair passes.
    if (word.size() == 1) pairs_.set();
    else pairs_.set(PairSlot(first, word[1].unicode()));
    byFirst_[first].push_back(static_cast<int>(words_.size()));
    words_.push_back(word.toString());
  }
}

bool HighlightMatcher::MatchesAt(QStringView text, qsizetype at) const {
  const auto bucket = byFirst_.find(Lower(text[at]));
  if (bucket == byFirst_.end()) return false;
  const QStringView rest = text.sliced(at);
  return std::any_of(bucket->second.begin(), bucket->second.end(), [&](int index) {
    const QString& word = words_[index];
    if (word.size() > rest.size()) return false;
    for (qsizetype i = 0; i < word.size(); ++i)
      if (Lower(rest[i]) != word[i].unicode()) return false;
    return true;
  });
}

bool HighlightMatcher::Occurs(const QString& list, QStringView text) {
  Refresh(list);
  if (emptyWord_) return true;
  if (words_.empty()) return false;
  for (qsizetype at = 0; at < text.size(); ++at) {
    const char16_t first = Lower(text[at]);
    if (!firsts_.test(first)) continue;
    const char16_t second = at + 1 < text.size() ? Lower(text[at + 1]) : 0;
    if (!pairs_.test(PairSlot(first, second))) continue;
    if (MatchesAt(text, at)) return true;
  }
  return false;
}
