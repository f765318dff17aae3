#include "settings/settings_paths.h"

#include "settings/settings_store.h"

using namespace Qt::StringLiterals;

namespace {

// The device read these folders with 250-byte buffers; paths here are longer, so they
// are read with 250 units. An unset folder falls back to one inside the home folder: on
// this system "/" alone would be the root of the file system, not "nothing".
QString ReadFolder(const SettingsStore& store, QStringView name, const QString& fallback) {
  QString folder;
  if (!store.GetString(name, folder, 250) || folder.isEmpty()) return fallback;
  return WithTrailingSlash(folder);
}

}  // namespace

QString WithTrailingSlash(QString folder) {
  if (!folder.endsWith(u'/')) folder += u'/';
  return folder;
}

QString GetInstallDir(const SettingsStore& store) { return WithTrailingSlash(store.HomeDir()); }

QString GetDictDir(const SettingsStore& store) {
  return ReadFolder(store, u"dictpath", GetInstallDir(store));
}

QString GetDccDir(const SettingsStore& store) {
  return ReadFolder(store, u"DCCpath", GetInstallDir(store) + u"downloads/"_s);
}

bool GetSoundFile(const SettingsStore& store, QStringView event, QString& path) {
  QString file;
  if (!store.GetString(event, file, 250, SettingsKey::Sounds) || file.isEmpty()) return false;
  path = GetInstallDir(store) + file;
  return true;
}
