#pragma once
// The two word lists that act on incoming text: the ignore list drops a sender's
// messages, the highlight list colours a message that mentions one of its words.

#include "views/line_style.h"

#include <QStringView>

class ClientContext;

// Highlight words longer than this are cut: only their first 250 characters count.
inline constexpr qsizetype kHighlightWordMax = 250;

// Whether `nick` (the nick part of a sender's prefix, never user or host) is a whole
// word of "ignore". Nobody is ignored while "en_ignore" is 0.
bool IsIgnored(ClientContext& ctx, QStringView nick);

// Whether a word of "hlights" occurs anywhere in `text`, case ignored; always false while
// "en_hlights" is 0 or missing. An empty word (two blanks in a row) occurs everywhere.
bool ContainsHighlightWord(ClientContext& ctx, QStringView text);

// Hlight, after playing the "highlight" sound, when `text` contains a highlight word;
// otherwise `defaultStyle`.
LineStyle HighlightStyle(ClientContext& ctx, QStringView text, LineStyle defaultStyle);

// Prints a message or action line; a highlighted one, or one in a Chat tab, also asks for
// the user's attention (attentionWanted on the tab bar).
void PrintMessageLine(ClientContext& ctx, int position, const QString& line, LineStyle style);
