#include "commands/submit_input.h"

#include "app/client_context.h"
#include "settings/settings_store.h"
#include "views/output_path.h"

using namespace Qt::StringLiterals;

namespace {

void PrintCurrent(ClientContext& ctx, QStringView text, quint32 colour) {
  PrintToTab(ctx.tabs, ctx.tabs.Current(), text, colour);
}

bool Connected(const ClientContext& ctx) { return ctx.session.serverSocket != kNoSocket; }

void SayInCurrentTab(ClientContext& ctx, const QString& text) {
  TabKind kind = TabKind::Status;
  const std::optional<QString> name = ctx.tabs.CurrentTabName(&kind);
  if (!name || (kind != TabKind::Channel && kind != TabKind::Chat)) {
    if (kind == TabKind::DccChat) return;  // DCC chats get their own sender
    PrintCurrent(ctx, u"* You're not on a channel", kNavy);
    return;
  }
  if (!Connected(ctx)) {
    PrintCurrent(ctx, u"* Not connected to server", kNavy);
    return;
  }
  PrintCurrent(ctx, u'<' + ctx.session.currentNick + u"> "_s + text, ctx.Colour(LineStyle::Normal));
  ctx.SendToServer(u"PRIVMSG "_s + *name + u" :"_s + text);
}

}  // namespace

QString CommandLine(QStringView text, int trailingAfter) {
  QString line = text.sliced(text.startsWith(u'/') ? 1 : 0).toString();
  int runs = 0;
  for (qsizetype i = 0; trailingAfter > 0 && i < line.size(); ++i) {
    if (line[i] != u' ') continue;
    qsizetype end = i;
    while (end + 1 < line.size() && line[end + 1] == u' ') ++end;
    if (++runs == trailingAfter) {
      if (end + 1 < line.size()) line[end] = u':';  // only when a character follows
      break;
    }
    i = end;
  }
  return line;
}

// The command table grows with the command parser; every word not in it is sent as typed.
bool RunCommand(ClientContext& ctx, const QString& text) {
  const QString word = text.section(u' ', 0, 0);
  if (!Connected(ctx)) {
    PrintCurrent(ctx, u"* "_s + word + u": not connected to server"_s, ctx.Colour(LineStyle::Info));
    return false;
  }
  if (word.compare(u"/quit", Qt::CaseInsensitive) == 0) {
    QString line = CommandLine(text, 1);
    QString quitMessage;
    ctx.settings.GetString(u"quitmsg", quitMessage, 500);
    if (!text.contains(u' ') && !quitMessage.isEmpty()) line += u" :"_s + quitMessage;
    ctx.SendToServer(line);
    return true;
  }
  // The answers to these are the user's to see, not the notify poll's or the DCC address's.
  if (word.compare(u"/ison", Qt::CaseInsensitive) == 0) {
    ctx.isonRequested = true;
    ctx.SendToServer(CommandLine(text, 1));
    return false;
  }
  if (word.compare(u"/userhost", Qt::CaseInsensitive) == 0) ctx.userhostRequested = true;
  ctx.SendToServer(CommandLine(text, 0));
  return false;
}

bool SubmitInputText(ClientContext& ctx, QString text) {
  while (text.endsWith(u' ')) text.chop(1);
  if (text.isEmpty()) return false;
  if (text.startsWith(u'/')) return RunCommand(ctx, text);
  SayInCurrentTab(ctx, text);
  return false;
}
