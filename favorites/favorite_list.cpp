#include "favorites/favorite_list.h"

#include "settings/atomic_file.h"
#include "settings/settings_paths.h"
#include "views/text_decoding.h"

#include <QByteArrayView>
#include <QFile>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView kLineEnd = "\r\n";
constexpr QByteArrayView kUtf8Bom = "\xEF\xBB\xBF";
constexpr QChar kByteOrderMark(0xFEFF);

// A menu item holds one line of visible text. NUL and line breaks cannot be typed into
// one, so they are dropped rather than turned into blanks: the text keeps the characters
// it showed. A lone surrogate becomes U+FFFD, as it would be once written as UTF-8, so
// the list in memory is what the file reads back.
QString WithoutUnprintable(QStringView text) {
  QString kept;
  kept.reserve(text.size());
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (c == QChar(0) || c == u'\r' || c == u'\n')
      continue;
    const bool pairStart =
        c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    if (pairStart) {
      kept += c;
      kept += text[++i];
    } else {
      kept += c.isSurrogate() ? QChar(QChar::ReplacementCharacter) : c;
    }
  }
  return kept;
}

// The sentence as the menu and the file keep it: printable, without a leading U+FEFF
// (written first in the file it would read back as a byte-order mark), and at most
// kFavoriteUnits units, cut before a surrogate pair rather than through it.
QString FittedSentence(QStringView text) {
  QString sentence = WithoutUnprintable(text);
  qsizetype start = 0;
  while (start < sentence.size() && sentence[start] == kByteOrderMark)
    ++start;
  sentence.remove(0, start);
  qsizetype keep = std::min<qsizetype>(sentence.size(), kFavoriteUnits);
  if (keep < sentence.size() && sentence[keep - 1].isHighSurrogate())
    --keep;
  sentence.truncate(keep);
  return sentence;
}

// An item showing nothing but blanks would only insert blanks.
bool IsBlank(const QString& sentence) { return sentence.trimmed().isEmpty(); }

}  // namespace

QString FavoritesPath(const SettingsStore& store) {
  return GetInstallDir(store) + u"favorites.txt"_s;
}

FavoriteList::FavoriteList(QObject* parent) : QObject(parent) {}

void FavoriteList::SetFilePath(const QString& path) { path_ = path; }

int FavoriteList::Load() {
  QStringList loaded;
  QFile file(path_);
  if (!file.exists()) {
    // NewOnly: never truncate a file that appeared in the meantime.
    file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
  } else if (file.open(QIODevice::ReadOnly)) {
    loaded = ParseFavorites(file.readAll());
  }
  if (loaded != sentences_) {
    sentences_ = std::move(loaded);
    emit changed();
  }
  return Count();
}

void FavoriteList::Save() const {
  if (path_.isEmpty())
    return;
  // A failure leaves the old file whole; the list in memory is kept either way.
  WriteFileAtomically(path_, FormatFavorites(sentences_));
}

int FavoriteList::Add(QStringView text) {
  if (Count() >= kMaxFavorites)
    return Count();
  QString sentence = FittedSentence(text);
  if (IsBlank(sentence))
    return Count();
  sentences_.append(std::move(sentence));
  Save();
  emit changed();
  return Count();
}

int FavoriteList::Remove(int index) {
  if (index < 0 || index >= Count())
    return Count();
  sentences_.removeAt(index);
  Save();
  emit changed();
  return Count();
}

std::optional<QString> FavoriteList::TextForCommand(int command) const {
  const int index = command - kFirstFavoriteCommand;
  if (command < kFirstFavoriteCommand || command > kLastFavoriteCommand || index >= Count())
    return std::nullopt;
  return sentences_[index] + u' ';
}

QStringList FavoriteList::ReadSentences(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    return {};
  return ParseFavorites(file.readAll());
}

QStringList FavoriteList::ParseFavorites(const QByteArray& bytes) {
  QByteArrayView rest(bytes);
  if (rest.startsWith(kUtf8Bom))
    rest = rest.sliced(kUtf8Bom.size());
  QStringList sentences;
  // Only ended lines count: the text after the last line end is not read.
  for (qsizetype lf = rest.indexOf('\n'); lf >= 0 && sentences.size() < kFavoritesRead;
       lf = rest.indexOf('\n')) {
    QByteArrayView line = rest.first(lf);
    rest = rest.sliced(lf + 1);
    if (line.endsWith('\r'))
      line.chop(1);
    QString sentence = FittedSentence(DecodeReceivedLine(line));
    if (!IsBlank(sentence))
      sentences.append(std::move(sentence));
  }
  return sentences;
}

QByteArray FavoriteList::FormatFavorites(const QStringList& sentences) {
  QByteArray bytes;
  for (const QString& text : sentences) {
    const QString sentence = FittedSentence(text);
    if (IsBlank(sentence))
      continue;  // it would read back as no sentence at all
    bytes += sentence.toUtf8();
    bytes += kLineEnd;
  }
  return bytes;
}
