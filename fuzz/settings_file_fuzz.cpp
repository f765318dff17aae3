// Any bytes as "settings.reg", through the parser and the store that loads it. What the
// parser read, written out and read back, is the same keys and values without an unreadable
// line; a store loaded from the file, once it has written its own, loads back exactly the
// values it had, cleanly.

#include "fuzz/fuzz_check.h"
#include "settings/reg_file_format.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

using namespace Qt::StringLiterals;

// A value in the file's own form, so that equal values give equal texts.
QByteArray Text(const std::vector<RegKeyText>& keys) { return FormatRegFile(keys); }

// What a store holds of one key, read through its public interface.
RegKeyText Snapshot(const SettingsStore& store, SettingsKey key) {
  RegKeyText snapshot;
  for (const QString& name : store.ValueNames(key)) {
    SettingValue value;
    value.type = *store.TypeOf(name, key);
    const int size = store.StoredSize(name, key);
    value.dword = quint32(store.GetDword(name, key));
    FUZZ_CHECK(value.type == SettingType::Dword || store.GetString(name, value.text, size / 2, key) ||
                   store.GetBinary(name, value.bytes, size, key),
               "a value reads back with the size it says it needs");
    snapshot.values.emplace_back(name, value);
  }
  return snapshot;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray content(reinterpret_cast<const char*>(data), qsizetype(size));
  const RegParseResult parsed = ParseRegFile(content);
  const RegParseResult reread = ParseRegFile(FormatRegFile(parsed.keys));
  FUZZ_CHECK(reread.badLines == 0, "the written file reads without unreadable lines");
  FUZZ_CHECK(Text(reread.keys) == Text(parsed.keys), "the written file reads back the same values");

  static QTemporaryDir dir(fuzz::TempDirTemplate());  // every input replaces its files
  QDir folder(dir.path());
  for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden)) folder.remove(name);
  QFile file(folder.filePath(u"settings.reg"_s));
  FUZZ_CHECK(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "the input as the file");
  file.close();
  SettingsStore loaded(folder.path());
  loaded.SetDword(u"fuzz mark", 1);  // makes the store write its whole file
  const SettingsStore reloaded(folder.path());
  for (SettingsKey key : {SettingsKey::Main, SettingsKey::Sounds})
    FUZZ_CHECK(Text({Snapshot(loaded, key)}) == Text({Snapshot(reloaded, key)}), "the store loads back what it wrote");
  FUZZ_CHECK(reloaded.LoadProblem().isEmpty(), "the store's own file loads cleanly");
  return 0;
}
