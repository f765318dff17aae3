#include "commands/message_split.h"

#include "client/client_context.h"
#include "settings/settings_store.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kLineBytes = 512 - 2;  // CR LF ends every line a server passes on
constexpr int kAssumedHostBytes = 64;
constexpr int kNoRoomBelow = 16;
constexpr QChar kColour = QChar(0x03);
constexpr QChar kHexColour = QChar(0x04);

int Utf8Bytes(QStringView text) {
  int bytes = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i].unicode();
    if (QChar::isHighSurrogate(unit) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      bytes += 4;
      ++i;
    } else {
      bytes += unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
    }
  }
  return bytes;
}

// Our "user@host" as others see it, or our best guess of its length.
int UserHostBytes(const ClientContext& ctx) {
  if (!ctx.session.ownUserHost.isEmpty()) return Utf8Bytes(ctx.session.ownUserHost);
  QString email;
  ctx.settings.GetString(u"email", email, 240);
  const qsizetype at = email.indexOf(u'@');
  return 1 + Utf8Bytes(QStringView(email).first(at < 0 ? 0 : at)) + 1 + kAssumedHostBytes;
}

bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }
bool IsHexDigit(QChar c) { return IsDigit(c) || (c.toLower() >= u'a' && c.toLower() <= u'f'); }

// The end of a colour code starting at `at`: "^C" with up to two digits and ",NN", or
// "^D" with six hex digits and ",RRGGBB".
qsizetype ColourCodeEnd(QStringView text, qsizetype at) {
  const bool hex = text[at] == kHexColour;
  const int width = hex ? 6 : 2;
  const auto digits = [&](qsizetype from) {
    qsizetype end = from;
    while (end < text.size() && end - from < width && (hex ? IsHexDigit(text[end]) : IsDigit(text[end])))
      ++end;
    return end;
  };
  qsizetype end = digits(at + 1);
  if (end > at + 1 && end + 1 < text.size() && text[end] == u',') {
    const qsizetype background = digits(end + 1);
    if (background > end + 1) end = background;
  }
  return end;
}

// Moves a cut at `cut` back to the start of a colour code it would split.
qsizetype OutsideColourCode(QStringView text, qsizetype start, qsizetype cut) {
  const qsizetype lookBack = std::max(start, cut - 14);
  for (qsizetype i = cut - 1; i >= lookBack; --i)
    if ((text[i] == kColour || text[i] == kHexColour) && ColourCodeEnd(text, i) > cut)
      return i > start ? i : cut;
  return cut;
}

// The end of the longest prefix of text[start..] within `room` bytes, whole characters.
qsizetype FitEnd(QStringView text, qsizetype start, int room) {
  int bytes = 0;
  qsizetype i = start;
  while (i < text.size()) {
    const qsizetype width = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate() ? 2 : 1;
    const int size = Utf8Bytes(text.sliced(i, width));
    if (bytes + size > room) break;
    bytes += size;
    i += width;
  }
  return i;
}

}  // namespace

int MessageTextRoom(const ClientContext& ctx, QStringView command, QStringView target, int framing) {
  const int prefix = 1 + Utf8Bytes(ctx.session.currentNick) + 1 + UserHostBytes(ctx);
  return kLineBytes - prefix - 1 - Utf8Bytes(command) - 1 - Utf8Bytes(target) - 2 - framing;
}

QStringList SplitMessageText(QStringView text, int room) {
  room = std::max(room, kNoRoomBelow);
  QStringList pieces;
  qsizetype start = 0;
  while (start < text.size()) {
    qsizetype cut = FitEnd(text, start, room);
    if (cut == text.size()) {
      pieces << text.sliced(start).toString();
      break;
    }
    cut = OutsideColourCode(text, start, cut);
    const qsizetype blank = text.sliced(start, cut - start).lastIndexOf(u' ');
    const bool nearBlank = blank > 0 && Utf8Bytes(text.sliced(start, blank)) >= room * 3 / 4;
    pieces << text.sliced(start, nearBlank ? blank : cut - start).toString();
    start = nearBlank ? start + blank + 1 : cut;
  }
  return pieces;
}
