// "/dcc chat [nick]" and "/dcc send nick [file]": handed to the DCC engine.

#include "commands/command_parts.h"
#include "dcc/dcc_starter.h"

using namespace Qt::StringLiterals;

void StartDccChatWith(ClientContext& ctx, const QString& nick) { ctx.dcc->StartChat(nick); }

void OpenDccSendDialog(ClientContext& ctx, const QString& nick) { ctx.dcc->OpenSendDialog(nick); }

bool AskAndStartDccChat(ClientContext& ctx) {
  const std::optional<QString> nick =
      ctx.shell.AskText(u"DCC Chat"_s, u"Chat with user:"_s, QString(), EmptyAnswer::Refused);
  if (nick && !nick->isEmpty()) StartDccChatWith(ctx, *nick);
  return false;
}

bool RunDcc(ClientContext& ctx, const QString& text) {
  const QStringView kind = CommandWord(text, 1);
  const QString nick = CommandWord(text, 2).toString();
  if (kind.compare(u"chat", Qt::CaseInsensitive) == 0) {
    if (nick.isEmpty()) return AskAndStartDccChat(ctx);
    StartDccChatWith(ctx, nick);
    return false;
  }
  if (kind.compare(u"send", Qt::CaseInsensitive) == 0) {
    const QString file = TextAfterWords(text, 3).toString();
    if (file.isEmpty()) {
      OpenDccSendDialog(ctx, nick);
    } else {
      ctx.dcc->OfferFile(nick, file);
    }
    return false;
  }
  PrintInCurrentTab(ctx, u"* "_s + CommandWord(text, 0).toString() + u": insufficient parameters"_s,
                    ctx.Colour(LineStyle::Info));
  return false;
}
