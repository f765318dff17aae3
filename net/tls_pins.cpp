#include "net/tls_pins.h"

#include "settings/atomic_file.h"
#include "settings/settings_paths.h"

#include <QFile>
#include <QList>

using namespace Qt::StringLiterals;

namespace {

struct PinLine {
  QByteArray host, fingerprint;
};

// Lines without a TAB (a hand edit gone wrong) are dropped rather than guessed at; a CR
// before the LF goes with the trimming.
QList<PinLine> ReadPins(const QString& path) {
  QFile file(path);
  QList<PinLine> pins;
  if (!file.open(QIODevice::ReadOnly)) return pins;
  for (const QByteArray& line : file.readAll().split('\n')) {
    const qsizetype tab = line.indexOf('\t');
    if (tab > 0) pins.append({line.left(tab), line.mid(tab + 1).trimmed().toUpper()});
  }
  return pins;
}

}  // namespace

QString TlsPinsPath(const SettingsStore& store) { return GetInstallDir(store) + u"tls_pins.txt"_s; }

bool IsPinned(const QString& path, const QString& host, const QString& fingerprint) {
  const QByteArray wanted = host.toUtf8();
  for (const PinLine& pin : ReadPins(path))
    if (pin.host == wanted) return !fingerprint.isEmpty() && pin.fingerprint == fingerprint.toLatin1().toUpper();
  return false;
}

bool Pin(const QString& path, const QString& host, const QString& fingerprint) {
  const QByteArray pinned = host.toUtf8();
  QByteArray bytes;
  for (const PinLine& pin : ReadPins(path))
    if (pin.host != pinned) bytes += pin.host + '\t' + pin.fingerprint + '\n';
  bytes += pinned + '\t' + fingerprint.toLatin1() + '\n';
  return WriteFileAtomically(path, bytes, 0600);
}
