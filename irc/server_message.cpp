#include "irc/server_message.h"

#include <limits>

namespace {

constexpr QChar kBlank = u' ';
constexpr QChar kColon = u':';

// Walks the line field by field. Each step looks for the next blank from the current
// position; a blank right at the position therefore yields an empty field, so repeated
// blanks shift the later fields just as the server sent them.
class FieldWalker {
 public:
  explicit FieldWalker(QStringView line) : line_(line) {}

  bool AtEnd() const { return pos_ >= line_.size(); }
  bool AtColon() const { return !AtEnd() && line_[pos_] == kColon; }
  void Skip(qsizetype count) { pos_ += count; }

  // The text up to the next blank (or the end); the position moves behind that blank.
  QString TakeWord() {
    const qsizetype blank = line_.indexOf(kBlank, pos_);
    const qsizetype end = blank < 0 ? line_.size() : blank;
    QString word = line_.sliced(pos_, end - pos_).toString();
    pos_ = blank < 0 ? line_.size() : blank + 1;
    return word;
  }

  // Everything that is left, without one leading ":".
  QString TakeRest() {
    if (AtColon()) ++pos_;
    QString rest = line_.sliced(pos_).toString();
    pos_ = line_.size();
    return rest;
  }

 private:
  QStringView line_;
  qsizetype pos_ = 0;
};

}  // namespace

ServerMessage ParseServerLine(QStringView line, const QString& defaultPrefix, int* fieldCount) {
  ServerMessage message;
  FieldWalker walker(line);
  int found = 0;
  for (; found < 4 && !walker.AtEnd(); ++found) {
    switch (found) {
      case 0:
        if (walker.AtColon()) {
          walker.Skip(1);
          message.prefix = walker.TakeWord();
        } else {
          message.prefix = defaultPrefix;  // the same text is read again as the command
        }
        break;
      case 1:
        if (!walker.AtColon()) message.command = walker.TakeWord();
        break;
      case 2:
        // A colon-led text right after the command is the rest, not the target.
        if (!walker.AtColon()) message.target = walker.TakeWord();
        break;
      default:
        message.rest = walker.TakeRest();
        break;
    }
  }
  if (fieldCount) *fieldCount = found;
  return message;
}

void TrimTrailingBlanks(QString& line) {
  qsizetype end = line.size();
  while (end > 0 && line[end - 1] == kBlank) --end;
  line.truncate(end);
}

int CommandNumber(QStringView command) {
  constexpr int kMax = std::numeric_limits<int>::max();
  int value = 0;
  for (QChar c : command) {
    if (c < u'0' || c > u'9') break;
    const int digit = c.unicode() - u'0';
    value = value > (kMax - digit) / 10 ? kMax : value * 10 + digit;
  }
  return value;
}
