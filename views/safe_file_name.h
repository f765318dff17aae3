#pragma once
// Turns a name that may come from the network (a channel, a nick, a file offered over
// DCC) into one component of a file name that cannot leave the folder it is put in.

#include <QString>
#include <QStringView>

// The longest result, in UTF-8 bytes. With a log file's ".yyyy-MM-dd.txt" after it the
// file name stays below the 255 bytes that common file systems allow.
inline constexpr int kSafeFileNameMaxBytes = 200;

// Keeps every harmless character as it is ("#chan", "bob", "é", case as received) and
// writes the others as "%" and two upper-case hex digits of their code:
//  - "/" and "\" (folder separators on some system), NUL and the other C0 and C1
//    control characters and DEL;
//  - `" * : < > ? |`, which FAT, exFAT and NTFS memory cards refuse in file names;
//  - "%" itself, so that an escape in the result always stands for one character;
//  - "." at the start, at the end or right after another "." (no hidden file, no "..",
//    no file name ending in a dot), and "-" at the start (not read as an option).
// A UTF-16 unit that is half of a surrogate pair without its other half becomes "%u"
// and four hex digits. An empty name becomes "%". A result longer than
// kSafeFileNameMaxBytes is cut on a character boundary and ends in "%~" and eight hex
// digits of a hash of the whole name.
QString SafeFileNameComponent(QStringView name);
