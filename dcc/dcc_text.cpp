#include "dcc/dcc_text.h"

#include "views/safe_file_name.h"

#include <QFileInfo>

#include <arpa/inet.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kKiB = 1024;
constexpr qint64 kMiB = kKiB * kKiB;
constexpr qint64 kGiB = kMiB * kKiB;
constexpr int kMaxRenames = 9999;

// `units` of the next smaller unit, shown as thousandths of this one, cut to hundredths.
QString Decimal(qint64 units, QStringView unit) {
  const qint64 value = units * 1000 / 1024;
  return QString::number(value / 1000) + u'.' +
         QString::number(value % 1000 / 10).rightJustified(2, u'0') + u' ' + unit.toString();
}

}  // namespace

QString SizeText(qint64 bytes) {
  if (bytes < kKiB) return QString::number(bytes) + u" B"_s;
  if (bytes < kMiB) return Decimal(bytes, u"KB");
  if (bytes < kGiB) return Decimal(bytes / kKiB, u"MB");
  return Decimal(bytes / kMiB, u"GB");
}

QString DurationText(qint64 seconds) {
  QString text = QString::number(seconds % 60) + u" secs"_s;
  if (seconds >= 60) text = QString::number(seconds / 60 % 60) + u" mins, "_s + text;
  if (seconds >= 3600) text = QString::number(seconds / 3600) + u" hrs, "_s + text;
  return text;
}

QString RateText(qint64 bytesPerSecond) { return SizeText(bytesPerSecond) + u"/s"_s; }

std::optional<quint32> ParseDottedAddress(QStringView text) {
  in_addr address{};
  if (inet_pton(AF_INET, text.toLatin1().constData(), &address) != 1) return std::nullopt;
  return ntohl(address.s_addr);
}

QString DottedAddress(quint32 address) {
  return u"%1.%2.%3.%4"_s.arg(address >> 24).arg((address >> 16) & 0xFF).arg((address >> 8) & 0xFF).arg(address & 0xFF);
}

QString OfferedFileName(const QString& path) {
  return QFileInfo(path).fileName().replace(u' ', u'_');
}

// Without the folder part a peer's "../../.bashrc" is ".bashrc", which the safe name
// still escapes; a name that is all folder ("x/") keeps its whole text, escaped.
QString SafeDownloadName(QStringView offered) {
  const qsizetype cut = std::max(offered.lastIndexOf(u'/'), offered.lastIndexOf(u'\\'));
  const QStringView base = offered.sliced(cut + 1);
  return SafeFileNameComponent(base.isEmpty() ? offered : base);
}

QString FreeFileName(const QString& folder, const QString& name) {
  const qsizetype dot = name.lastIndexOf(u'.');
  const QString stem = dot > 0 ? name.left(dot) : name;
  const QString suffix = dot > 0 ? name.mid(dot) : QString();
  for (int i = 1; i <= kMaxRenames; ++i) {
    const QString candidate = stem + u'(' + QString::number(i) + u')' + suffix;
    if (!QFileInfo::exists(folder + candidate)) return candidate;
  }
  return name;
}
