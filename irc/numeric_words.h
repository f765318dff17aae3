#pragma once
// Picking words out of the rest of a numeric reply. Servers differ in how many fields
// they send and some repeat blanks, so every helper answers with an empty view or
// nullopt instead of assuming a field is there.

#include <QStringView>

#include <optional>

// The blank-separated word `index` (0 = first); runs of blanks count as one separator
// and leading blanks are skipped. Empty when there are fewer words.
QStringView WordAt(QStringView text, int index);

// Everything behind the word `index` and the blanks that follow it; empty when the text
// ends there.
QStringView TextAfterWord(QStringView text, int index);

// The text behind the first " :" (the trailing parameter); nullopt when there is none.
std::optional<QStringView> TextBehindColonSeparator(QStringView text);

// A seconds count as servers send it: an optional sign, then decimal digits; anything
// behind the digits is ignored. A count beyond 64 bits saturates (FormatServerTime gives
// a date for every 64-bit value). nullopt when no digit starts the word.
std::optional<qint64> ParseSeconds(QStringView word);

// Case-insensitive equality, the rule for nicks and channels.
bool EqualIgnoringCase(QStringView a, QStringView b);
