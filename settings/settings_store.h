#pragma once
// The client's configuration: named, typed values under one key with a "sounds" subkey,
// kept in memory and mirrored to "settings.reg" in the home folder on every write.
//
// Callers read a value at the moment they need it and never keep a copy: the options
// dialog may change it at any time. Reads are served from memory under one mutex, so
// any thread may read or write.

#include <QByteArray>
#include <QHash>
#include <unordered_map>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

enum class SettingsKey { Main, Sounds };

enum class SettingType { Dword, String, Binary };

struct SettingValue {
  SettingType type = SettingType::Dword;
  quint32 dword = 0;
  QString text;      // String: the text without terminator or zero fill
  QByteArray bytes;  // Binary
};

class SettingsStore {
 public:
  // Loads "settings.reg" from `homeDir` (created when missing). Nothing is written until
  // the first change.
  explicit SettingsStore(QString homeDir);
  SettingsStore(const SettingsStore&) = delete;
  SettingsStore& operator=(const SettingsStore&) = delete;

  // $TOLV_HOME when set, otherwise "tolv" under the user's XDG data folder.
  static QString DefaultHomeDir();

  QString HomeDir() const { return homeDir_; }
  QString FilePath() const;

  // A problem met while loading (an unreadable file kept aside), to be told to the
  // user once; empty when the file read cleanly.
  QString LoadProblem() const { return loadProblem_; }

  // -1 (all bits set) when the value is missing or not a DWORD.
  qint32 GetDword(QStringView name, SettingsKey key = SettingsKey::Main) const;
  void SetDword(QStringView name, qint32 value, SettingsKey key = SettingsKey::Main);

  // Fails, leaving `buffer` as it was, when the value is missing, not a string, or its
  // text plus terminator needs more than `capacityUnits` UTF-16 units.
  bool GetString(QStringView name, QString& buffer, int capacityUnits,
                 SettingsKey key = SettingsKey::Main) const;
  // Stores at most `units` units of `text`, up to its first NUL; the caller passes the
  // length plus one for the terminator, or the full buffer size.
  void SetString(QStringView name, QStringView text, int units,
                 SettingsKey key = SettingsKey::Main);

  // Fails, leaving `buffer`, when missing, not binary, or longer than `capacityBytes`.
  bool GetBinary(QStringView name, QByteArray& buffer, int capacityBytes,
                 SettingsKey key = SettingsKey::Main) const;
  void SetBinary(QStringView name, const QByteArray& bytes,
                 SettingsKey key = SettingsKey::Main);

  // The size a reader needs for the value, in bytes as the device's registry counted
  // it (strings: UTF-16 units with terminator, times two); -1 when missing.
  int StoredSize(QStringView name, SettingsKey key = SettingsKey::Main) const;
  // The type of the stored value; nullopt when missing.
  std::optional<SettingType> TypeOf(QStringView name, SettingsKey key = SettingsKey::Main) const;
  bool DeleteValue(QStringView name, SettingsKey key = SettingsKey::Main);

  // Writes of a batch reach the file once, when the outermost batch ends.
  void BeginBatch();
  void EndBatch();

  // The value names of a key in file order (for tests and diagnostics).
  QStringList ValueNames(SettingsKey key = SettingsKey::Main) const;

 private:
  using Values = std::vector<std::pair<QString, SettingValue>>;
  // Looks names up without making a QString of the caller's text.
  struct NameHash {
    using is_transparent = void;
    size_t operator()(QStringView name) const { return qHash(name); }
  };
  struct NameEqual {
    using is_transparent = void;
    bool operator()(QStringView a, QStringView b) const { return a == b; }
  };
  struct Key {
    QString path;  // as written between the brackets of the file
    Values values;
    std::unordered_map<QString, size_t, NameHash, NameEqual> index;
  };

  const SettingValue* Find(QStringView name, SettingsKey key) const;
  void Put(QStringView name, SettingValue value, SettingsKey key);
  Key& KeyFor(SettingsKey key);
  const Key& KeyFor(SettingsKey key) const;
  Key& KeyForPath(const QString& path);
  void Load();
  void KeepUnreadableFile(const QByteArray& content, int badLines);
  void WriteFile();

  QString homeDir_;
  QString loadProblem_;
  mutable std::mutex mutex_;   // guards the values
  std::mutex fileMutex_;        // orders writers of the file
  quint64 generation_ = 0;      // bumped per snapshot taken for the file
  quint64 writtenGeneration_ = 0;
  std::vector<Key> keys_;  // Main and Sounds first, then any other key the file held
  int batchDepth_ = 0;
  bool dirty_ = false;
};
