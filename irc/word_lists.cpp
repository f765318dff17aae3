#include "irc/word_lists.h"

#include "client/client_context.h"
#include "irc/event_sound.h"
#include "settings/settings_store.h"
#include "settings/word_list.h"
#include "views/output_path.h"


// The lists are read at every test, so a change in the options applies at once; the
// matchers only keep what they built from the text they were last given.
bool IsIgnored(ClientContext& ctx, QStringView nick) {
  if (ctx.settings.GetDword(u"en_ignore") == 0) return false;
  QString list;
  ctx.settings.GetString(u"ignore", list, kWordListUnits);
  return ctx.ignoreMatcher.Contains(list, nick);
}

bool ContainsHighlightWord(ClientContext& ctx, QStringView text) {
  // A missing switch reads -1: highlighting is only on when it was switched on.
  if (ctx.settings.GetDword(u"en_hlights") <= 0) return false;
  QString list;
  if (!ctx.settings.GetString(u"hlights", list, kWordListUnits)) return false;
  return ctx.highlightMatcher.Occurs(list, text);
}

LineStyle HighlightStyle(ClientContext& ctx, QStringView text, LineStyle defaultStyle) {
  if (!ContainsHighlightWord(ctx, text)) return defaultStyle;
  PlayEventSound(ctx, u"highlight");
  return LineStyle::Hlight;
}

void PrintMessageLine(ClientContext& ctx, int position, const QString& line, LineStyle style) {
  PrintToTab(ctx.tabs, position, line, ctx.Colour(style));
  const ConversationTab* tab = ctx.tabs.At(position);
  if (style == LineStyle::Hlight || (tab && tab->kind == TabKind::Chat))
    emit ctx.tabs.attentionWanted(position, line);
}
