#pragma once
// What the whisper pop-up does after a change of its field, decided without a widget:
// which word is being typed, where it starts in the field, and whether the pop-up shows
// rows, closes, or stays as it was. The pop-up widget and every field that has one call
// these; tests call them directly.

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

class WhisperDictionary;

// The word being typed: the text after the last blank once the formatting codes are
// stripped, and where it starts in the field's own text.
struct TypedWord {
  QString word;
  qsizetype start = 0;
};

// Nothing when the pop-up must close: an empty field, an empty word (a blank was just
// typed), or a word that starts after the caret (the end of the selection).
std::optional<TypedWord> WordBeforeCaret(QStringView fieldText, qsizetype selectionEnd);

struct WhisperRow {
  QString text;
  bool nick = false;  // from the channel's nicks rather than the dictionary
};

enum class WhisperStep { Keep, Close, Show };

struct WhisperPlan {
  WhisperStep step = WhisperStep::Keep;
  qsizetype wordStart = 0;
  QList<WhisperRow> rows;  // Show: the dictionary's completions, then the nicks
};

// The whole refresh. `nicks` are the channel's nicks that complete the word, other than
// the word itself (none for fields outside the input line). Without nicks it is exactly
// the dictionary's rule: no entries for the first character keeps the pop-up as it was,
// a word not in the tree closes it, no rows close it.
WhisperPlan PlanWhisperRefresh(WhisperDictionary& dictionary, QStringView fieldText,
                               qsizetype selectionEnd, int limit, const QStringList& nicks);

// The field after a pick: the text up to the word's start, the completion and a blank; a
// nick picked at the start of the line gets ": " as the Tab key gives it. The rest of the
// line after the word's start is dropped. The row's text is taken to 250 units.
QString TextAfterPick(QStringView fieldText, qsizetype wordStart, const WhisperRow& row);
