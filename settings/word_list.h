#pragma once
// The word lists "ignore", "hlights" and "notify": one text each, every word followed by
// exactly one blank ("alice bob "). A last word without its blank is never matched.

#include <QString>

class SettingsStore;

// Capacity of a list as read and written, in UTF-16 units; a list holds at most 2000.
inline constexpr int kWordListUnits = 2002;
inline constexpr int kWordListMaxLength = 2000;

// Character position of the first blank-terminated word of `listText` that equals `word`
// case-insensitively (same length, ordinary case folding); -1 when there is none.
int MatchWord(QStringView word, QStringView listText);

// -1 (no match) when `enableValue` is given and reads 0; otherwise MatchWord on the list.
int ListContains(const SettingsStore& store, QStringView word, QStringView enableValue,
                 QStringView listValue);

// Appends `word` and a blank unless present or the list would reach 2000 characters.
// Turns "en_ignore" on whatever the list: adding is only offered for the ignore list.
void ListAdd(SettingsStore& store, QStringView word, QStringView listValue);

// Removes the first equal word with its blank; nothing is written when it is absent.
void ListRemove(SettingsStore& store, QStringView word, QStringView listValue);
