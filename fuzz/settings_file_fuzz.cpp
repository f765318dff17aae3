// The settings file as a user or another program may have left it: any bytes as
// "settings.reg", through the parser and the store that loads it.
//
// What must hold:
//  - what the parser read, written out again and read back, is the same keys and values,
//    and the written form has no unreadable line;
//  - a store loaded from the file, once it has written its own file, loads back exactly
//    the values it had.

#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_temp_dir.h"
#include "settings/reg_file_format.h"
#include "settings/settings_store.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace {

using namespace Qt::StringLiterals;

bool SameValue(const SettingValue& a, const SettingValue& b) {
  if (a.type != b.type) return false;
  switch (a.type) {
    case SettingType::Dword: return a.dword == b.dword;
    case SettingType::String: return a.text == b.text;
    case SettingType::Binary: return a.bytes == b.bytes;
  }
  return false;
}

bool SameKeys(const std::vector<RegKeyText>& a, const std::vector<RegKeyText>& b) {
  if (a.size() != b.size()) return false;
  for (size_t k = 0; k < a.size(); ++k) {
    if (a[k].path != b[k].path || a[k].values.size() != b[k].values.size()) return false;
    for (size_t v = 0; v < a[k].values.size(); ++v) {
      if (a[k].values[v].first != b[k].values[v].first) return false;
      if (!SameValue(a[k].values[v].second, b[k].values[v].second)) return false;
    }
  }
  return true;
}

void CheckFormatRoundTrip(const QByteArray& content) {
  const RegParseResult parsed = ParseRegFile(content);
  const QByteArray written = FormatRegFile(parsed.keys);
  const RegParseResult reread = ParseRegFile(written);
  FUZZ_CHECK(reread.badLines == 0, "the written file reads without unreadable lines");
  FUZZ_CHECK(SameKeys(parsed.keys, reread.keys), "the written file reads back the same values");
}

// What a store holds of one key, read through its public interface.
std::vector<std::pair<QString, SettingValue>> Snapshot(const SettingsStore& store,
                                                       SettingsKey key) {
  std::vector<std::pair<QString, SettingValue>> values;
  for (const QString& name : store.ValueNames(key)) {
    SettingValue value;
    value.type = *store.TypeOf(name, key);
    const int size = store.StoredSize(name, key);
    switch (value.type) {
      case SettingType::Dword: value.dword = quint32(store.GetDword(name, key)); break;
      case SettingType::String:
        FUZZ_CHECK(store.GetString(name, value.text, size / 2, key), "a string reads back");
        break;
      case SettingType::Binary:
        FUZZ_CHECK(store.GetBinary(name, value.bytes, size, key), "binary data reads back");
        break;
    }
    values.emplace_back(name, value);
  }
  return values;
}

bool SameSnapshot(const std::vector<std::pair<QString, SettingValue>>& a,
                  const std::vector<std::pair<QString, SettingValue>>& b) {
  return SameKeys({{QString(), a}}, {{QString(), b}});
}

// A folder made once; every input replaces its files.
const QString& StoreDir() {
  static QTemporaryDir dir(fuzz::TempDirTemplate());
  FUZZ_CHECK(dir.isValid(), "a temporary folder");
  static const QString path = dir.path();
  return path;
}

void CheckStoreRoundTrip(const QByteArray& content) {
  QDir folder(StoreDir());
  for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) folder.remove(name);
  QFile file(folder.filePath(u"settings.reg"_s));
  FUZZ_CHECK(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
             "the input is written as the settings file");
  file.close();

  SettingsStore loaded(folder.path());
  loaded.SetDword(u"fuzz mark", 1);  // makes the store write its whole file
  const SettingsStore reloaded(folder.path());
  for (SettingsKey key : {SettingsKey::Main, SettingsKey::Sounds})
    FUZZ_CHECK(SameSnapshot(Snapshot(loaded, key), Snapshot(reloaded, key)),
               "the store loads back what it wrote");
  FUZZ_CHECK(reloaded.LoadProblem().isEmpty(), "the store's own file loads cleanly");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray content(reinterpret_cast<const char*>(data), qsizetype(size));
  CheckFormatRoundTrip(content);
  CheckStoreRoundTrip(content);
  return 0;
}
