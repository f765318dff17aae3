#include "irc/numeric_words.h"

#include <limits>

namespace {

qsizetype SkipBlanks(QStringView text, qsizetype from) {
  while (from < text.size() && text[from] == u' ') ++from;
  return from;
}

qsizetype WordEnd(QStringView text, qsizetype from) {
  while (from < text.size() && text[from] != u' ') ++from;
  return from;
}

// Where word `index` starts; text.size() when there are fewer words.
qsizetype WordStart(QStringView text, int index) {
  qsizetype at = SkipBlanks(text, 0);
  for (int i = 0; i < index && at < text.size(); ++i) at = SkipBlanks(text, WordEnd(text, at));
  return at;
}

}  // namespace

QStringView WordAt(QStringView text, int index) {
  const qsizetype start = WordStart(text, index);
  return text.sliced(start, WordEnd(text, start) - start);
}

QStringView TextAfterWord(QStringView text, int index) {
  const qsizetype start = WordStart(text, index);
  return text.sliced(SkipBlanks(text, WordEnd(text, start)));
}

std::optional<QStringView> TextBehindColonSeparator(QStringView text) {
  const qsizetype at = text.indexOf(u" :");
  if (at < 0) return std::nullopt;
  return text.sliced(at + 2);
}

std::optional<qint64> ParseSeconds(QStringView word) {
  qsizetype at = 0;
  const bool negative = word.startsWith(u'-');
  if (negative || word.startsWith(u'+')) at = 1;
  if (at >= word.size() || word[at] < u'0' || word[at] > u'9') return std::nullopt;
  constexpr qint64 kMax = std::numeric_limits<qint64>::max();
  qint64 value = 0;
  for (; at < word.size() && word[at] >= u'0' && word[at] <= u'9'; ++at) {
    const int digit = word[at].unicode() - u'0';
    value = value > (kMax - digit) / 10 ? kMax : value * 10 + digit;
  }
  return negative ? -value : value;
}

bool EqualIgnoringCase(QStringView a, QStringView b) {
  return a.size() == b.size() && a.compare(b, Qt::CaseInsensitive) == 0;
}
