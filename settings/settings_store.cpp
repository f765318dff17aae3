#include "settings/settings_store.h"

#include "settings/atomic_file.h"
#include "settings/reg_file_format.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kFileName = "settings.reg"_L1;
constexpr auto kMainKeyPath = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv"_L1;
constexpr auto kSoundsKeyPath = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvane\\Tolv\\sounds"_L1;
constexpr int kFileMode = 0600;  // it holds server passwords

}  // namespace

SettingsStore::SettingsStore(QString homeDir) : homeDir_(std::move(homeDir)) {
  keys_.push_back({QString(kMainKeyPath), {}, {}});
  keys_.push_back({QString(kSoundsKeyPath), {}, {}});
  QDir().mkpath(homeDir_);
  Load();
}

QString SettingsStore::DefaultHomeDir() {
  const QString fromEnvironment = qEnvironmentVariable("TOLV_HOME");
  if (!fromEnvironment.isEmpty()) return fromEnvironment;
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/tolv"_s;
}

QString SettingsStore::FilePath() const { return homeDir_ + u'/' + kFileName; }

SettingsStore::Key& SettingsStore::KeyFor(SettingsKey key) {
  return keys_[key == SettingsKey::Main ? 0 : 1];
}

const SettingsStore::Key& SettingsStore::KeyFor(SettingsKey key) const {
  return keys_[key == SettingsKey::Main ? 0 : 1];
}

SettingsStore::Key& SettingsStore::KeyForPath(const QString& path) {
  for (Key& key : keys_)
    if (key.path.compare(path, Qt::CaseInsensitive) == 0) return key;
  keys_.push_back({path, {}, {}});  // a key we do not use is kept as it was
  return keys_.back();
}

const SettingValue* SettingsStore::Find(QStringView name, SettingsKey key) const {
  const Key& k = KeyFor(key);
  auto it = k.index.find(name);
  return it == k.index.end() ? nullptr : &k.values[it->second].second;
}

void SettingsStore::Put(QStringView name, SettingValue value, SettingsKey key) {
  {
    std::lock_guard lock(mutex_);
    Key& k = KeyFor(key);
    auto it = k.index.find(name);
    if (it != k.index.end()) {
      k.values[it->second].second = std::move(value);
    } else {
      k.index.emplace(name.toString(), k.values.size());
      k.values.emplace_back(name.toString(), std::move(value));
    }
    dirty_ = true;
    if (batchDepth_ > 0) return;
  }
  WriteFile();
}

qint32 SettingsStore::GetDword(QStringView name, SettingsKey key) const {
  std::lock_guard lock(mutex_);
  const SettingValue* v = Find(name, key);
  return v && v->type == SettingType::Dword ? static_cast<qint32>(v->dword) : -1;
}

void SettingsStore::SetDword(QStringView name, qint32 value, SettingsKey key) {
  SettingValue v;
  v.type = SettingType::Dword;
  v.dword = static_cast<quint32>(value);
  Put(name, std::move(v), key);
}

bool SettingsStore::GetString(QStringView name, QString& buffer, int capacityUnits,
                              SettingsKey key) const {
  std::lock_guard lock(mutex_);
  const SettingValue* v = Find(name, key);
  if (!v || v->type != SettingType::String || v->text.size() + 1 > capacityUnits) return false;
  buffer = v->text;
  return true;
}

void SettingsStore::SetString(QStringView name, QStringView text, int units, SettingsKey key) {
  qsizetype length = qMin<qsizetype>(text.size(), qMax(units, 0));
  const qsizetype nul = text.first(length).indexOf(QChar(0));
  if (nul >= 0) length = nul;
  SettingValue v;
  v.type = SettingType::String;
  v.text = text.first(length).toString();
  Put(name, std::move(v), key);
}

bool SettingsStore::GetBinary(QStringView name, QByteArray& buffer, int capacityBytes,
                              SettingsKey key) const {
  std::lock_guard lock(mutex_);
  const SettingValue* v = Find(name, key);
  if (!v || v->type != SettingType::Binary || v->bytes.size() > capacityBytes) return false;
  buffer = v->bytes;
  return true;
}

void SettingsStore::SetBinary(QStringView name, const QByteArray& bytes, SettingsKey key) {
  SettingValue v;
  v.type = SettingType::Binary;
  v.bytes = bytes;
  Put(name, std::move(v), key);
}

int SettingsStore::StoredSize(QStringView name, SettingsKey key) const {
  std::lock_guard lock(mutex_);
  const SettingValue* v = Find(name, key);
  if (!v) return -1;
  switch (v->type) {
    case SettingType::Dword: return 4;
    case SettingType::String: return static_cast<int>((v->text.size() + 1) * 2);
    case SettingType::Binary: return static_cast<int>(v->bytes.size());
  }
  return -1;
}

std::optional<SettingType> SettingsStore::TypeOf(QStringView name, SettingsKey key) const {
  std::lock_guard lock(mutex_);
  const SettingValue* v = Find(name, key);
  if (!v) return std::nullopt;
  return v->type;
}

bool SettingsStore::DeleteValue(QStringView name, SettingsKey key) {
  {
    std::lock_guard lock(mutex_);
    Key& k = KeyFor(key);
    auto it = k.index.find(name);
    if (it == k.index.end()) return false;
    k.values.erase(k.values.begin() + static_cast<qsizetype>(it->second));
    k.index.clear();
    for (size_t i = 0; i < k.values.size(); ++i) k.index.emplace(k.values[i].first, i);
    dirty_ = true;
    if (batchDepth_ > 0) return true;
  }
  WriteFile();
  return true;
}

QStringList SettingsStore::ValueNames(SettingsKey key) const {
  std::lock_guard lock(mutex_);
  QStringList names;
  for (const auto& entry : KeyFor(key).values) names << entry.first;
  return names;
}

void SettingsStore::BeginBatch() {
  std::lock_guard lock(mutex_);
  ++batchDepth_;
}

void SettingsStore::EndBatch() {
  {
    std::lock_guard lock(mutex_);
    if (--batchDepth_ > 0 || !dirty_) return;
  }
  WriteFile();
}

// Values are copied out under the value lock; the slow part (fsync) runs under the file
// lock only, so readers on other threads never wait for the disk. A snapshot older than
// one already written is dropped, so the file always ends with the newest values.
void SettingsStore::WriteFile() {
  QByteArray content;
  quint64 generation = 0;
  {
    std::lock_guard lock(mutex_);
    std::vector<RegKeyText> keys;
    for (const Key& key : keys_) keys.push_back({key.path, key.values});
    content = FormatRegFile(keys);
    generation = ++generation_;
    dirty_ = false;
  }
  std::lock_guard fileLock(fileMutex_);
  if (generation < writtenGeneration_) return;
  WriteFileAtomically(FilePath(), content, kFileMode);
  writtenGeneration_ = generation;
}

void SettingsStore::Load() {
  // Left behind by a writer that died before its rename; the file itself is whole.
  for (const QString& stale : QDir(homeDir_).entryList({kFileName + u".tmp-*"_s}, QDir::Files))
    QFile::remove(homeDir_ + u'/' + stale);
  QFile file(FilePath());
  if (!file.exists()) return;
  if (!file.open(QIODevice::ReadOnly)) {
    loadProblem_ = u"The settings file %1 could not be read (%2); the defaults are used."_s
                       .arg(FilePath(), file.errorString());
    return;
  }
  const QByteArray content = file.readAll();
  const RegParseResult parsed = ParseRegFile(content);
  for (const RegKeyText& text : parsed.keys) {
    Key& key = KeyForPath(text.path);
    for (const auto& [name, value] : text.values) {
      auto it = key.index.find(QStringView(name));
      if (it != key.index.end()) {
        key.values[it->second].second = value;  // the last of two equal names wins, as on import
      } else {
        key.index.emplace(name, key.values.size());
        key.values.emplace_back(name, value);
      }
    }
  }
  if (parsed.badLines > 0) KeepUnreadableFile(content, parsed.badLines);
}

// A damaged file is never thrown away: it stays beside the new one for the user to
// look at, and the rewrite below means the user is told only once.
void SettingsStore::KeepUnreadableFile(const QByteArray& content, int badLines) {
  const QString stamp = QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
  const QString kept = homeDir_ + u"/settings.unreadable-"_s + stamp + u".reg"_s;
  WriteFileAtomically(kept, content, kFileMode);
  loadProblem_ = u"The settings file could not be read completely (%1 unreadable lines). "
                 u"It was kept as %2; what could not be read is back to its defaults."_s
                     .arg(badLines)
                     .arg(kept);
  WriteFile();
}
