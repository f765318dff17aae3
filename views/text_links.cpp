#include "views/text_links.h"

namespace {

bool StartsLink(QStringView text, qsizetype i) {
  if (i > 0 && (text[i - 1].isLetterOrNumber() || text[i - 1] == u'/')) return false;
  const QStringView rest = text.sliced(i);
  return rest.startsWith(u"http://", Qt::CaseInsensitive) ||
         rest.startsWith(u"https://", Qt::CaseInsensitive);
}

bool EndsLink(QChar c) { return c.isSpace() || c.unicode() < 0x20 || c == u'<' || c == u'>' || c == u'"'; }

// Trailing punctuation belongs to the sentence; a ")" only to the address when it opened one.
qsizetype TrimEnd(QStringView text, qsizetype start, qsizetype end) {
  while (end > start) {
    const QChar last = text[end - 1];
    if (QStringView(u".,;:!?'").contains(last)) {
      --end;
    } else if (last == u')' || last == u']' || last == u'}') {
      const QChar open = last == u')' ? u'(' : last == u']' ? u'[' : u'{';
      const QStringView link = text.sliced(start, end - start);
      if (link.count(open) >= link.count(last)) break;
      --end;
    } else {
      break;
    }
  }
  return end;
}

}  // namespace

QList<TextLink> FindLinks(QStringView text) {
  QList<TextLink> links;
  for (qsizetype i = text.indexOf(u"://"); i >= 0; i = text.indexOf(u"://", i + 3)) {
    const qsizetype start = i >= 5 && StartsLink(text, i - 5) ? i - 5 : i >= 4 && StartsLink(text, i - 4) ? i - 4 : -1;
    if (start < 0 || (!links.isEmpty() && start < links.last().end)) continue;
    qsizetype end = i + 3;
    while (end < text.size() && !EndsLink(text[end])) ++end;
    end = TrimEnd(text, start, end);
    if (end > i + 3) links.append({start, end});
    i = end - 3;
  }
  return links;
}
