#pragma once
// The program's home folder doubles as its installation folder: on start it receives
// whatever ships in data/ (servers list, favourites, sounds, help) that the user does
// not have yet. The user's own copies are never overwritten.

#include <QString>
#include <QStringList>

// The folder the shipped files are taken from, found from the program's own folder so a
// copied or installed program needs no path compiled in: share/tolv beside its bin/
// (installed), else $TOLV_DATA when set, else data/ beside it (the build folder links
// the source tree's data/ there). Empty when none has the server list.
QString ShippedDataFolder(const QString& programDir);

// Copies each shipped file missing from `home`; returns the files copied (relative).
QStringList FillHomeFolder(const QString& home, const QString& shipped);
