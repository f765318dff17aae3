#include "irc/word_lists.h"

#include "app/client_context.h"
#include "irc/event_sound.h"
#include "settings/settings_store.h"
#include "settings/word_list.h"

#include <algorithm>

bool IsIgnored(const SettingsStore& settings, QStringView nick) {
  return ListContains(settings, nick, u"en_ignore", u"ignore") != -1;
}

bool ContainsHighlightWord(const SettingsStore& settings, QStringView text) {
  // A missing switch reads -1: highlighting is only on when it was switched on.
  if (settings.GetDword(u"en_hlights") <= 0) return false;
  QString list;
  if (!settings.GetString(u"hlights", list, kWordListUnits)) return false;
  // Lower-casing both once lets every word use the fast case-sensitive search.
  const QString lowerList = list.toLower();
  const QString lowerText = text.toString().toLower();
  for (qsizetype start = 0;;) {
    const qsizetype blank = lowerList.indexOf(u' ', start);
    if (blank < 0) return false;  // a last word without its blank is not a word
    const qsizetype length = std::min(blank - start, kHighlightWordMax);
    const QStringView word = QStringView(lowerList).sliced(start, length);
    if (word.isEmpty() || lowerText.contains(word)) return true;
    start = blank + 1;
  }
}

LineStyle HighlightStyle(ClientContext& ctx, QStringView text, LineStyle defaultStyle) {
  if (!ContainsHighlightWord(ctx.settings, text)) return defaultStyle;
  PlayEventSound(ctx, u"highlight");
  return LineStyle::Hlight;
}
