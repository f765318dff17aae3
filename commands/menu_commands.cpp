#include "commands/menu_commands.h"

#include "client/client_context.h"
#include "commands/command_ids.h"
#include "commands/command_parts.h"
#include "commands/prompt_texts.h"
#include "commands/submit_input.h"
#include "settings/settings_defaults.h"
#include "settings/settings_store.h"

using namespace Qt::StringLiterals;

namespace {

// The one-line commands and the word their answer follows.
struct OneLineRow {
  int command;
  QStringView word;
};

constexpr OneLineRow kOneLine[] = {
    {kCmdJoin, u"/JOIN"},     {kCmdPart, u"/PART"},      {kCmdList, u"/LIST"},
    {kCmdNames, u"/NAMES"},   {kCmdWhoisInput, u"/WHOIS"}, {kCmdWhowas, u"/WHOWAS"},
    {kCmdWho, u"/WHO"},       {kCmdNewNick, u"/NICK"},   {kCmdUserhost, u"/USERHOST"},
};

struct TwoLineRow {
  int command;
  QStringView word;
};

constexpr TwoLineRow kTwoLine[] = {
    {kCmdTopicInput, u"/TOPIC"},
    {kCmdInvite, u"/INVITE"},
    {kCmdKickInput, u"/KICK"},
    {kCmdNoticeInput, u"/NOTICE"},
};

// The quit prompt alone may be confirmed empty: "/QUIT" then takes "quitmsg".
bool RunQuitPrompt(ClientContext& ctx) {
  const PromptTexts texts = *OneLinePromptTexts(kCmdQuit);
  const std::optional<QString> reason =
      ctx.shell.AskText(texts.title, texts.label, QString(), EmptyAnswer::Allowed);
  if (!reason) return false;
  SubmitCommandLine(ctx, u"/QUIT", {}, *reason);
  return true;
}

bool RunTwoLine(ClientContext& ctx, int command, QStringView word) {
  const PromptTexts texts = *TwoLinePromptTexts(command);
  const auto answers = ctx.shell.AskTwoTexts(texts.title, texts.label, texts.secondLabel);
  if (answers) SubmitCommandLine(ctx, word, answers->first, answers->second);
  return false;
}

}  // namespace

std::optional<QString> AskCommandText(ClientContext& ctx, int command) {
  const std::optional<PromptTexts> texts = OneLinePromptTexts(command);
  if (!texts) return std::nullopt;
  std::optional<QString> answer =
      ctx.shell.AskText(texts->title, texts->label, QString(), EmptyAnswer::Refused);
  if (answer && answer->isEmpty()) return std::nullopt;  // OK is greyed for an empty field
  return answer;
}

bool SubmitCommandLine(ClientContext& ctx, QStringView command, QStringView second,
                       QStringView first) {
  QString line = command.toString();
  if (!second.isEmpty()) line += u' ' + second.toString();
  if (!first.isEmpty()) line += u' ' + first.toString();
  return RunCommand(ctx, line);
}

bool RunMenuCommand(ClientContext& ctx, int command) {
  for (const OneLineRow& row : kOneLine) {
    if (row.command != command) continue;
    if (const std::optional<QString> text = AskCommandText(ctx, command))
      SubmitCommandLine(ctx, row.word, {}, *text);
    return false;
  }
  for (const TwoLineRow& row : kTwoLine)
    if (row.command == command) return RunTwoLine(ctx, command, row.word);
  if (command == kCmdQuit) return RunQuitPrompt(ctx);
  if (command == kCmdDccChat) return AskAndStartDccChat(ctx);
  if (command == kCmdDccSend) OpenDccSendDialog(ctx, QString());
  return false;
}

void ResetColourPalette(ClientContext& ctx) {
  if (!ctx.shell.AskYesNo(u"MultiColors Reset"_s,
                          u"Are you sure you want to reset to default the multicolor palette?"_s))
    return;
  ctx.settings.SetBinary(u"mColors", DefaultMircPalette());
}
