// Finding the completions of a typed word: walk to the word's place in the tree, then
// visit what grows from there, alternatives first, until the limit of branches is used.

#include "whispers/dict_file.h"
#include "whispers/whisper_dictionary.h"

namespace {

// No word the client teaches is this long; a path that goes on is garbage.
constexpr qsizetype kMaxWalkPositions = 4096;

// The stored byte is signed, the typed character is not cut: only 0-127 can match.
bool LookupMatches(const DictRecord& record, QChar typed) {
  return int(qint8(record.character)) == int(typed.unicode());
}

class CompletionWalk {
 public:
  CompletionWalk(DictFile& file, QStringView word, int limit)
      : file_(file), typedLength_(word.size()), limit_(limit), buffer_(word.toString()) {}

  // False when the file turned out damaged on the way.
  bool Visit(quint32 at, qsizetype position);
  QStringList words;

 private:
  DictFile& file_;
  qsizetype typedLength_;
  int limit_;
  int branches_ = 1;
  int endsOfTypedWord_ = 0;
  QString buffer_;  // the typed word, then the characters of the path being visited
};

// Recursion goes into alternatives only, so its depth is bounded by the limit. The end
// of the typed word takes no branch; its chain can hold only one end record, since a
// second would be the same word taught twice.
bool CompletionWalk::Visit(quint32 at, qsizetype position) {
  while (true) {
    const std::optional<DictRecord> record = file_.Read(at);
    if (!record) return false;
    if (branches_ < limit_ && record->alternative != 0) {
      if (record->character != 0 || position != typedLength_) ++branches_;
      else if (++endsOfTypedWord_ > 1) return file_.MarkDamaged(), false;
      if (!Visit(record->alternative, position)) return false;
    }
    if (record->character == 0) {
      if (position != typedLength_) words << buffer_.first(position);
      return true;
    }
    if (position >= kMaxWalkPositions) return file_.MarkDamaged(), false;
    if (buffer_.size() <= position) buffer_.resize(position + 1);
    buffer_[position] = QChar(char16_t(record->character));
    at += kDictRecordSize;
    ++position;
  }
}

}  // namespace

WhisperCompletions WhisperDictionary::FindCompletions(QStringView word, int limit) {
  DictFile file(*writer_);
  if (word.isEmpty() || !Open(file, false) || !file.HasHeader()) return {};
  quint32 at = file.Slot(word[0].unicode() & 0xff);
  if (at == 0) return {};
  bool afterEnd = false;  // a typed NUL matched an end record
  for (qsizetype i = 1; i <= word.size(); ++i) {
    std::optional<DictRecord> record;
    while ((record = file.Read(at, afterEnd))) {
      if (i == word.size() || LookupMatches(*record, word[i])) break;
      if (record->alternative == 0) return {WhisperLookup::NotFound, {}};
      at = record->alternative;
      afterEnd = false;
    }
    if (!record) {
      NoteDamage(file);
      return {file.Damaged() ? WhisperLookup::Unavailable : WhisperLookup::NotFound, {}};
    }
    if (i == word.size()) break;  // `at` is the record for the place after the word
    afterEnd = record->character == 0;
    at += kDictRecordSize;
  }
  CompletionWalk walk(file, word, limit);
  if (!walk.Visit(at, word.size())) {
    NoteDamage(file);
    return {};
  }
  return {WhisperLookup::Found, std::move(walk.words)};
}
