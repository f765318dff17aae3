#include "settings/reg_file_format.h"

#include <QStringDecoder>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kHeader = "Windows Registry Editor Version 5.00"_L1;

QString QuoteName(const QString& text) {
  QString out;
  out.reserve(text.size() + 2);
  out += u'"';
  for (QChar c : text) {
    if (c == u'"' || c == u'\\') out += u'\\';
    out += c;
  }
  out += u'"';
  return out;
}

bool HasControlCharacters(const QString& text) {
  for (QChar c : text)
    if (c.unicode() < 0x20 || c.unicode() == 0x7f) return true;
  return false;
}

QString HexBytes(const QByteArray& bytes) {
  QString out;
  out.reserve(bytes.size() * 3);
  for (qsizetype i = 0; i < bytes.size(); ++i) {
    if (i) out += u',';
    out += QString::number(static_cast<quint8>(bytes[i]), 16).rightJustified(2, u'0');
  }
  return out;
}

QString FormatValue(const SettingValue& v) {
  switch (v.type) {
    case SettingType::Dword:
      return u"dword:"_s + QString::number(v.dword, 16).rightJustified(8, u'0');
    case SettingType::Binary:
      return u"hex:"_s + HexBytes(v.bytes);
    case SettingType::String:
      break;
  }
  // UTF-8 cannot carry a lone surrogate, nor a quoted text a line break: those go as
  // UTF-16 bytes, which keep every unit.
  if (!HasControlCharacters(v.text) && v.text.isValidUtf16()) return QuoteName(v.text);
  QByteArray utf16;
  for (QChar c : v.text) {
    utf16 += static_cast<char>(c.unicode() & 0xff);
    utf16 += static_cast<char>(c.unicode() >> 8);
  }
  utf16 += QByteArray(2, '\0');
  return u"hex(1):"_s + HexBytes(utf16);
}

// Reads a quoted text starting at `pos` (on the opening quote); `pos` ends behind the
// closing quote. False when the quote is not closed.
bool ReadQuoted(QStringView line, qsizetype& pos, QString& out) {
  out.clear();
  for (++pos; pos < line.size(); ++pos) {
    QChar c = line[pos];
    if (c == u'"') {
      ++pos;
      return true;
    }
    if (c == u'\\' && pos + 1 < line.size()) c = line[++pos];
    out += c;
  }
  return false;
}

bool ParseHexBytes(QStringView text, QByteArray& out) {
  out.clear();
  text = text.trimmed();
  if (text.isEmpty()) return true;
  for (QStringView piece : text.split(u',')) {
    bool ok = false;
    piece = piece.trimmed();
    const uint byte = piece.toUInt(&ok, 16);
    if (!ok || piece.size() > 2) return false;
    out += static_cast<char>(byte);
  }
  return true;
}

bool ParseData(QStringView data, SettingValue& value) {
  if (data.startsWith(u'"')) {
    qsizetype pos = 0;
    value.type = SettingType::String;
    if (!ReadQuoted(data, pos, value.text) || !data.sliced(pos).trimmed().isEmpty()) return false;
    const qsizetype nul = value.text.indexOf(QChar(0));
    if (nul >= 0) value.text.truncate(nul);  // a string ends at its terminator, as when set
    return true;
  }
  if (data.startsWith(u"dword:")) {
    QStringView digits = data.sliced(6).trimmed();
    bool ok = false;
    value.type = SettingType::Dword;
    value.dword = digits.toUInt(&ok, 16);
    return ok && digits.size() <= 8;
  }
  if (data.startsWith(u"hex:")) {
    value.type = SettingType::Binary;
    return ParseHexBytes(data.sliced(4), value.bytes);
  }
  if (data.startsWith(u"hex(1):")) {
    QByteArray bytes;
    if (!ParseHexBytes(data.sliced(7), bytes) || bytes.size() % 2) return false;
    value.type = SettingType::String;
    value.text.clear();
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
      const char16_t unit = static_cast<quint8>(bytes[i]) | (static_cast<quint8>(bytes[i + 1]) << 8);
      if (unit == 0) break;  // the terminator and any zero fill behind it
      value.text += QChar(unit);
    }
    return true;
  }
  return false;
}

bool ParseValueLine(QStringView line, QString& name, SettingValue& value) {
  qsizetype pos = 0;
  if (line.startsWith(u'@')) {
    name.clear();  // the key's unnamed value
    pos = 1;
  } else if (!line.startsWith(u'"') || !ReadQuoted(line, pos, name)) {
    return false;
  }
  QStringView rest = line.sliced(pos).trimmed();
  if (!rest.startsWith(u'=')) return false;
  return ParseData(rest.sliced(1).trimmed(), value);
}

// The exporter folds long hex data over several lines, each ending in "\".
QStringList JoinContinuations(const QString& text) {
  QStringList lines;
  QString pending;
  for (QStringView raw : QStringView(text).split(u'\n')) {
    QStringView line = raw.trimmed();
    if (line.endsWith(u'\\') && line.contains(u"=hex")) {
      pending += line.chopped(1);
      continue;
    }
    if (!pending.isEmpty()) {
      if (line.endsWith(u'\\')) {
        pending += line.chopped(1);
        continue;
      }
      lines << pending + line.toString();
      pending.clear();
      continue;
    }
    lines << line.toString();
  }
  if (!pending.isEmpty()) lines << pending;
  return lines;
}

QString Decode(const QByteArray& content, int& badLines) {
  QStringDecoder utf8(QStringDecoder::Utf8);
  QString text = utf8(content);
  if (!utf8.hasError()) return text;
  ++badLines;  // keep what can be read, but keep the file aside as well
  return QString::fromLatin1(content);
}

}  // namespace

RegParseResult ParseRegFile(const QByteArray& content) {
  RegParseResult result;
  const QString text = Decode(content, result.badLines);
  RegKeyText* current = nullptr;
  for (const QString& line : JoinContinuations(text)) {
    if (line.isEmpty() || line.startsWith(u';') || line == kHeader) continue;
    if (line.startsWith(u'[') && line.endsWith(u']')) {
      result.keys.push_back({line.mid(1, line.size() - 2), {}});
      current = &result.keys.back();
      continue;
    }
    QString name;
    SettingValue value;
    if (current && ParseValueLine(line, name, value)) {
      current->values.emplace_back(name, value);
    } else {
      ++result.badLines;
    }
  }
  return result;
}

QByteArray FormatRegFile(const std::vector<RegKeyText>& keys) {
  QString out = kHeader + u"\n"_s;
  for (const RegKeyText& key : keys) {
    out += u"\n["_s + key.path + u"]\n"_s;
    for (const auto& [name, value] : key.values)
      out += (name.isEmpty() ? u"@"_s : QuoteName(name)) + u'=' + FormatValue(value) + u'\n';
  }
  return out.toUtf8();
}
