#include "net/sasl_accounts.h"

#include "settings/atomic_file.h"
#include "settings/settings_paths.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kPlain = "PLAIN";
constexpr auto kExternal = "EXTERNAL";
constexpr auto kNoOptions = "-";
constexpr auto kAllowPlain = "allow-plain";
constexpr auto kDisconnect = "disconnect";

struct SaslLine {
  QByteArray bytes;  // as read, without its LF
  QString host;      // empty for a note or an unreadable line
  std::optional<SaslAccount> account;
  bool damaged = false;
};

bool ReadOptions(const QByteArray& text, SaslAccount& account) {
  if (text == kNoOptions) return true;
  for (const QByteArray& word : text.split(',')) {
    if (word == kAllowPlain)
      account.allowPlain = true;
    else if (word == kDisconnect)
      account.disconnectOnFailure = true;
    else
      return false;
  }
  return true;
}

SaslLine ReadLine(const QByteArray& bytes) {
  SaslLine line{bytes, {}, {}, false};
  QByteArray text = bytes;
  if (text.endsWith('\r')) text.chop(1);  // written by a hand on another system
  if (text.trimmed().isEmpty() || text.startsWith('#')) return line;
  const QList<QByteArray> fields = text.split('\t');
  SaslAccount account;
  if (fields.size() < 5) return line.damaged = true, line;
  const QByteArray mechanism = fields[1].toUpper();
  const QString last = QString::fromUtf8(text.mid(fields[0].size() + fields[1].size() + fields[2].size() +
                                                  fields[3].size() + 4));
  const bool plain = mechanism == kPlain, external = mechanism == kExternal;
  line.damaged = fields[0].isEmpty() || !(plain || external) || (plain && fields[2].isEmpty()) ||
                 (external && last.isEmpty()) || !ReadOptions(fields[3], account);
  if (line.damaged) return line;
  line.host = QString::fromUtf8(fields[0]);
  account.account = QString::fromUtf8(fields[2]);
  (external ? account.certificate : account.password) = last;
  line.account = account;
  return line;
}

QList<SaslLine> ReadLines(const QString& path) {
  QFile file(path);
  QList<SaslLine> lines;
  if (!file.open(QIODevice::ReadOnly)) return lines;
  QByteArray bytes = file.readAll();
  if (bytes.endsWith('\n')) bytes.chop(1);
  if (bytes.isEmpty()) return lines;
  for (const QByteArray& line : bytes.split('\n')) lines.append(ReadLine(line));
  return lines;
}

// A field must not carry the separators of the line.
QByteArray Field(const QString& text, bool tabAllowed) {
  QString clean = text;
  for (QChar& c : clean)
    if (c == u'\n' || c == u'\r' || (!tabAllowed && c == u'\t')) c = u' ';
  return clean.toUtf8();
}

QByteArray FormatLine(const QString& host, const SaslAccount& account) {
  QByteArrayList options;
  if (account.allowPlain) options << kAllowPlain;
  if (account.disconnectOnFailure) options << kDisconnect;
  return Field(host, false) + '\t' + (account.External() ? kExternal : kPlain) + '\t' +
         Field(account.account, false) + '\t' + (options.isEmpty() ? QByteArray(kNoOptions) : options.join(',')) +
         '\t' + Field(account.External() ? account.certificate : account.password, true) + '\n';
}

bool SameHost(const QString& a, const QString& b) {
  return !b.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

}  // namespace

QString SaslAccountsPath(const SettingsStore& store) { return GetInstallDir(store) + u"sasl_accounts.txt"_s; }

std::optional<SaslAccount> FindSaslAccount(const QString& path, const QString& host, QList<int>* damagedLines) {
  std::optional<SaslAccount> found;
  const QList<SaslLine> lines = ReadLines(path);
  for (qsizetype i = 0; i < lines.size(); ++i) {
    if (lines[i].damaged && damagedLines) damagedLines->append(int(i) + 1);
    if (!found && SameHost(lines[i].host, host)) found = lines[i].account;
  }
  return found;
}

bool StoreSaslAccount(const QString& path, const QString& host, const SaslAccount& account,
                      const QString& oldHost) {
  QByteArray bytes;
  bool changed = false;
  for (const SaslLine& line : ReadLines(path)) {
    const bool replaced = SameHost(line.host, host) || SameHost(line.host, oldHost);
    changed |= replaced;
    if (!replaced) bytes += line.bytes + '\n';
  }
  if (!account.account.isEmpty() || account.External()) {
    bytes += FormatLine(host, account);
    changed = true;
  }
  if (!changed) return true;
  return WriteFileAtomically(path, bytes, 0600);
}
