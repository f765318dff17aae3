#include "views/safe_file_name.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

// Why escapes and not a replacement character: replacing "/" and ":" both by "_" would
// let "a/b", "a:b" and the ordinary nick "a_b" write into one log. With "%" escaped too,
// different names give different results (up to the length cut, where the hash keeps
// long names apart), and the escapes are readable and reversible.

namespace {

constexpr int kHashMarkerBytes = 10;  // "%~" and eight hex digits

bool IsForbiddenAnywhere(char16_t c) {
  if (c < 0x20 || (c >= 0x7F && c <= 0x9F)) return true;
  return QStringView(u"/\\%\"*:<>?|").contains(QChar(c));
}

bool NeedsEscape(QStringView name, qsizetype i) {
  const char16_t c = name[i].unicode();
  if (IsForbiddenAnywhere(c)) return true;
  if (c == u'-') return i == 0;
  if (c != u'.') return false;
  return i == 0 || i == name.size() - 1 || name[i - 1] == u'.';
}

QString HexEscape(char16_t c, int digits) {
  return (digits == 2 ? u"%"_s : u"%u"_s) +
         QString::number(c, 16).toUpper().rightJustified(digits, u'0');
}

// The piece the character at `i` becomes and how many UTF-16 units it used.
QString PieceAt(QStringView name, qsizetype i, qsizetype& used) {
  used = 1;
  const QChar c = name[i];
  if (c.isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate()) {
    used = 2;
    return name.mid(i, 2).toString();
  }
  if (c.isSurrogate()) return HexEscape(c.unicode(), 4);
  return NeedsEscape(name, i) ? HexEscape(c.unicode(), 2) : QString(c);
}

QString HashMarker(QStringView name) {
  const QByteArray digest = QCryptographicHash::hash(
      QByteArrayView(reinterpret_cast<const char*>(name.utf16()), name.size() * 2),
      QCryptographicHash::Sha1);
  return u"%~"_s + QString::fromLatin1(digest.left(4).toHex().toUpper());
}

}  // namespace

QString SafeFileNameComponent(QStringView name) {
  if (name.isEmpty()) return u"%"_s;
  QString out;
  qsizetype bytes = 0;
  qsizetype cutAt = 0;  // length of `out` that still leaves room for the hash marker
  for (qsizetype i = 0, used = 0; i < name.size(); i += used) {
    const QString piece = PieceAt(name, i, used);
    bytes += piece.toUtf8().size();
    out += piece;
    if (bytes <= kSafeFileNameMaxBytes - kHashMarkerBytes) cutAt = out.size();
    if (bytes > kSafeFileNameMaxBytes) return out.left(cutAt) + HashMarker(name);
  }
  return out;
}
