// The commands that say something to someone: /me, /msg, /notice, /query and /ping.
// They echo what was said, so the user sees their own words where they belong.

#include "commands/command_parts.h"
#include "commands/message_split.h"
#include "commands/submit_input.h"
#include "views/output_path.h"

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr QChar kCtcp = QChar(1);
constexpr int kActionFraming = 9;  // ^AACTION and the closing ^A

void PrintInsufficient(ClientContext& ctx, QStringView text) {
  PrintInCurrentTab(ctx, u"* "_s + CommandWord(text, 0).toString() + u": insufficient parameters"_s,
                    ctx.Colour(LineStyle::Info));
}

// What the user said to `target`, cut to fit; `echo` shows each piece where it belongs.
// "/msg bob hi" and "/query bob hi" send the upper-case word whatever was typed.
void SendPrivmsg(ClientContext& ctx, QStringView target, QStringView said,
                 const std::function<void(const QString&)>& echo) {
  for (const QString& piece : SplitMessageText(said, MessageTextRoom(ctx, u"PRIVMSG", target))) {
    ctx.SendToServer(u"PRIVMSG "_s + target.toString() + u" :"_s + piece);
    echo(piece);
  }
}

}  // namespace

bool RunMe(ClientContext& ctx, const QString& text) {
  const QStringView said = TextAfterWords(text, 1);
  if (said.isEmpty()) return PrintInsufficient(ctx, text), false;
  TabKind kind = TabKind::Status;
  const std::optional<QString> tab = ctx.tabs.CurrentTabName(&kind);
  if (!tab || (kind != TabKind::Channel && kind != TabKind::Chat)) {
    PrintToTab(ctx.tabs, 0, u"* /me: can't use /me in this window", kNavy);
    return false;
  }
  const int room = MessageTextRoom(ctx, u"PRIVMSG", *tab, kActionFraming);
  for (const QString& piece : SplitMessageText(said, room)) {
    ctx.SendToServer(u"PRIVMSG "_s + *tab + u" :"_s + kCtcp + u"ACTION "_s + piece + kCtcp);
    PrintInCurrentTab(ctx, u"* "_s + ctx.session.currentNick + u' ' + piece,
                      ctx.Colour(LineStyle::Action));
  }
  return false;
}

// Said in the conversation's own tab when there is one, else noted in the current tab.
bool RunMsg(ClientContext& ctx, const QString& text) {
  const QStringView target = CommandWord(text, 1);
  const QStringView said = TextAfterWords(text, 2);
  if (said.isEmpty()) return PrintInsufficient(ctx, text), false;
  const quint32 colour = ctx.Colour(LineStyle::Normal);
  const int own = ctx.tabs.FindTab(target, TabKind::Any);
  SendPrivmsg(ctx, target, said, [&](const QString& piece) {
    if (own >= 0) {
      PrintToTab(ctx.tabs, own, OwnLine(ctx, piece), colour);
    } else {
      PrintInCurrentTab(ctx, u"-> *"_s + target.toString() + u"* "_s + piece, colour);
    }
  });
  return false;
}

bool RunNotice(ClientContext& ctx, const QString& text) {
  const QStringView said = TextAfterWords(text, 2);
  if (said.isEmpty()) return PrintInsufficient(ctx, text), false;
  // The words before the text go out as typed, in front of every piece.
  const QString line = CommandLine(text, 2);
  const QString head = line.first(line.size() - said.size());
  const QStringView target = CommandWord(text, 1);
  for (const QString& piece : SplitMessageText(said, MessageTextRoom(ctx, u"NOTICE", target))) {
    ctx.SendToServer(head + piece);
    PrintInCurrentTab(ctx, u"-> -"_s + target.toString() + u"- "_s + piece,
                      ctx.Colour(LineStyle::Normal));
  }
  return false;
}

// Opens (or finds) the chat with the nick and brings it to the front; a channel name is
// not a nick, so "/query #x" does nothing at all.
bool RunQuery(ClientContext& ctx, const QString& text) {
  const QStringView nick = CommandWord(text, 1);
  if (nick.isEmpty()) return PrintInsufficient(ctx, text), false;
  if (nick.startsWith(u'#') || nick.startsWith(u'&')) return false;
  const int position = ctx.tabs.OpenTab(nick, TabKind::Chat);
  ctx.tabs.ActivateTab(position);
  const QStringView said = TextAfterWords(text, 2);
  if (said.isEmpty()) return false;
  SendPrivmsg(ctx, nick, said, [&](const QString& piece) {
    PrintToTab(ctx.tabs, position, OwnLine(ctx, piece), ctx.Colour(LineStyle::Normal));
  });
  return false;
}

bool RunPing(ClientContext& ctx, const QString& text) {
  const QStringView target = CommandWord(text, 1);
  if (target.isEmpty()) return false;
  const QString seconds = QString::number(ctx.tabs.Now().toSecsSinceEpoch());
  ctx.SendToServer(u"PRIVMSG "_s + target.toString() + u" :"_s + kCtcp + u"PING "_s + seconds + kCtcp);
  PrintInCurrentTab(ctx, u"-> ["_s + target.toString() + u"] PING"_s, ctx.Colour(LineStyle::Ping));
  return false;
}
