#pragma once
// The program's home folder doubles as its installation folder: on start it receives
// whatever ships in data/ (servers list, favourites, sounds, help) that the user does
// not have yet. The user's own copies are never overwritten.

#include <QString>
#include <QStringList>

// The folder the shipped files are taken from: $TOLV_DATA when set, else data/ beside
// the executable, else the source tree's data/.
QString ShippedDataFolder();

// Copies each shipped file missing from `home`; returns the files copied (relative).
QStringList FillHomeFolder(const QString& home, const QString& shipped);
