#pragma once
// Folders and files named by the settings. Every folder text ends in "/", so callers
// append file names to it directly, as the log and download paths are built.

#include <QString>

class SettingsStore;

// The installation folder: the program's home folder, where servers.txt, favorites.txt,
// the sounds and by default the logs and downloads live.
QString GetInstallDir(const SettingsStore& store);
// "dictpath" with "/" appended; the installation folder when unset.
QString GetDictDir(const SettingsStore& store);
// "DCCpath" with "/" appended; "downloads/" in the installation folder when unset.
QString GetDccDir(const SettingsStore& store);
// The installation folder followed by the event's sound file; false, leaving `path`,
// when the event has no file.
bool GetSoundFile(const SettingsStore& store, QStringView event, QString& path);

// Appends "/" unless the text already ends in one.
QString WithTrailingSlash(QString folder);
