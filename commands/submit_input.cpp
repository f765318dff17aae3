#include "commands/submit_input.h"

#include "commands/command_ids.h"
#include "commands/command_parts.h"
#include "commands/message_split.h"
#include "commands/popup_actions.h"
#include "dcc/dcc_starter.h"
#include "settings/settings_store.h"

using namespace Qt::StringLiterals;

namespace {

// "partmsg" and "quitmsg" are read with this many units.
constexpr int kReasonUnits = 500;

void SayInCurrentTab(ClientContext& ctx, const QString& text) {
  TabKind kind = TabKind::Status;
  const std::optional<QString> name = ctx.tabs.CurrentTabName(&kind);
  if (name && kind == TabKind::DccChat) return ctx.dcc->SayInChat(ctx.tabs.At(ctx.tabs.Current())->id, text);
  if (!name || (kind != TabKind::Channel && kind != TabKind::Chat))
    return PrintInCurrentTab(ctx, u"* You're not on a channel", kNavy);
  if (!IsConnected(ctx)) return PrintInCurrentTab(ctx, u"* Not connected to server", kNavy);
  TeachSentWords(ctx, text);
  for (const QString& piece : SplitMessageText(text, MessageTextRoom(ctx, u"PRIVMSG", *name))) {
    PrintInCurrentTab(ctx, OwnLine(ctx, piece), ctx.Colour(LineStyle::Normal));
    ctx.SendToServer(u"PRIVMSG "_s + *name + u" :"_s + piece);
  }
}

QString SettingText(const ClientContext& ctx, QStringView name) {
  QString value;
  ctx.settings.GetString(name, value, kReasonUnits);
  return value;
}

// "/part" alone is sent as "part"; a channel alone gets "partmsg" as its reason.
bool RunPart(ClientContext& ctx, const QString& text) {
  QString line = CommandLine(text, 2);
  const QString reason = SettingText(ctx, u"partmsg");
  if (!CommandWord(text, 1).isEmpty() && TextAfterWords(text, 2).isEmpty() && !reason.isEmpty())
    line = CommandLine(text.trimmed(), 0) + u" :"_s + reason;
  ctx.SendToServer(line);
  return false;
}

// The server answers a QUIT by closing the link, and its farewell ("ERROR :Closing
// Link ...") comes first: the connection stays open to read it, only the reconnect
// that would follow is called off.
bool RunQuit(ClientContext& ctx, const QString& text) {
  QString line = CommandLine(text, 1);
  const QString reason = SettingText(ctx, u"quitmsg");
  if (TextAfterWords(text, 1).isEmpty() && !reason.isEmpty())
    line = CommandLine(text.trimmed(), 0) + u" :"_s + reason;
  ctx.SendToServer(line);
  ctx.session.userQuit = true;
  return true;
}

// The answers to these are the user's to see, not the notify poll's or the DCC address's.
bool RunIson(ClientContext& ctx, const QString& text) {
  ctx.isonRequested = true;
  ctx.SendToServer(CommandLine(text, 1));
  return false;
}

bool RunUserhost(ClientContext& ctx, const QString& text) {
  ctx.userhostRequested = true;
  ctx.SendToServer(CommandLine(text, 0));
  return false;
}

// "/j" is how irssi and HexChat users join.
bool RunJoinShort(ClientContext& ctx, const QString& text) {
  const qsizetype blank = text.indexOf(u' ');
  ctx.SendToServer(u"join"_s + (blank < 0 ? QString() : text.sliced(blank)));
  return false;
}

bool RunQuote(ClientContext& ctx, const QString& text) {
  const qsizetype blank = text.indexOf(u' ');
  if (blank >= 0) ctx.SendToServer(QStringView(text).sliced(blank + 1));
  return false;
}

struct CommandRow {
  QStringView word;
  int trailingAfter;                                // for rows without their own runner
  bool (*run)(ClientContext&, const QString& text);  // nullptr: send by the rule
};

// Every other word is sent as typed, without the "/".
constexpr CommandRow kCommands[] = {
    {u"/part", 2, RunPart},       {u"/quit", 1, RunQuit},   {u"/topic", 2, nullptr},
    {u"/kick", 3, nullptr},       {u"/away", 1, nullptr},   {u"/ison", 1, RunIson},
    {u"/userhost", 0, RunUserhost}, {u"/me", 0, RunMe},     {u"/msg", 0, RunMsg},
    {u"/notice", 2, RunNotice},   {u"/query", 0, RunQuery}, {u"/ping", 0, RunPing},
    {u"/dcc", 0, RunDcc},         {u"/quote", 0, RunQuote}, {u"/j", 0, RunJoinShort},
};

// Closing a tab needs no server: a chat or an offline channel closes at once.
constexpr QStringView kCloseCommand = u"/close";

}  // namespace

QString CommandLine(QStringView text, int trailingAfter) {
  QString line = text.sliced(text.startsWith(u'/') ? 1 : 0).toString();
  int runs = 0;
  for (qsizetype i = 0; trailingAfter > 0 && i < line.size(); ++i) {
    if (line[i] != u' ') continue;
    qsizetype end = i;
    while (end + 1 < line.size() && line[end + 1] == u' ') ++end;
    if (++runs == trailingAfter) {
      if (end + 1 < line.size()) line.insert(end + 1, u':');  // only when a character follows
      break;
    }
    i = end;
  }
  return line;
}

bool RunCommand(ClientContext& ctx, const QString& text) {
  const QStringView word = CommandWord(text, 0);
  if (word.compare(kCloseCommand, Qt::CaseInsensitive) == 0) {
    RunTabMenuAction(ctx, kCmdCloseTab, ctx.tabs.Current());
    return false;
  }
  if (!IsConnected(ctx)) {
    PrintInCurrentTab(ctx, u"* "_s + word.toString() + u": not connected to server"_s,
                      ctx.Colour(LineStyle::Info));
    return false;
  }
  TeachSentWords(ctx, text);
  for (const CommandRow& row : kCommands) {
    if (word.compare(row.word, Qt::CaseInsensitive) != 0) continue;
    if (row.run) return row.run(ctx, text);
    ctx.SendToServer(CommandLine(text, row.trailingAfter));
    return false;
  }
  ctx.SendToServer(CommandLine(text, 0));
  return false;
}

bool SubmitInputText(ClientContext& ctx, QString text) {
  while (text.endsWith(u' ')) text.chop(1);
  if (text.isEmpty()) return false;
  ctx.history.Add(text);
  if (text.startsWith(u'/')) return RunCommand(ctx, text);
  SayInCurrentTab(ctx, text);
  return false;
}
