#include "commands/prompt_texts.h"

#include "commands/command_ids.h"

using namespace Qt::StringLiterals;

namespace {

struct PromptRow {
  int command;
  QStringView title;
  QStringView label;
  QStringView secondLabel;
};

constexpr PromptRow kOneLine[] = {
    {kCmdJoin, u"Join channel", u"Enter channel to join:", {}},
    {kCmdPart, u"Part channel", u"Enter channel to part:", {}},
    {kCmdList, u"List channels", u"Enter channel(s) comma's separated:", {}},
    {kCmdNames, u"List nicknames on channels", u"Enter channel(s) comma's separated:", {}},
    {kCmdWhoisInput, u"Whois input", u"Enter nickname:", {}},
    {kCmdWhowas, u"Whowas input", u"Enter nickname:", {}},
    {kCmdWho, u"Who input", u"Enter nick or channel:", {}},
    {kCmdNewNick, u"Change nick", u"Enter a new nick:", {}},
    {kCmdQuit, u"Quit IRC", u"Enter a quit message:", {}},
    {kCmdDccChat, u"DCC Chat", u"Chat with user:", {}},
    {kCmdUserhost, u"Userhost", u"Enter up to 5 space separated nicks", {}},
    {kCmdFavoriteAdd, u"New favorite sentence", u"Enter a sentence:", {}},
    {kCmdNotice, u"Notice input", u"Enter message:", {}},
    {kCmdKickReason, u"Kick reason", u"Enter reason:", {}},
    {kCmdBanKickReason, u"Ban/kick reason", u"Enter reason:", {}},
    {kCmdTopicChange, u"Change topic to...", u"Enter a new topic:", {}},
    {kCmdKeyOn, u"Channel key", u"Enter channel key:", {}},
    {kCmdAway, u"Away information", u"Enter text:", {}},
};

constexpr PromptRow kTwoLine[] = {
    {kCmdTopicInput, u"Topic input", u"Enter channel:", u"Enter new topic:"},
    {kCmdInvite, u"Invite input", u"Enter nickname:", u"Enter channel:"},
    {kCmdKickInput, u"Kick input", u"Enter channel:", u"Enter nickname:"},
    {kCmdNoticeInput, u"Notice input", u"Enter nickname:", u"Enter message:"},
};

template <size_t N>
std::optional<PromptTexts> Find(const PromptRow (&rows)[N], int command) {
  for (const PromptRow& row : rows)
    if (row.command == command)
      return PromptTexts{row.title.toString(), row.label.toString(), row.secondLabel.toString()};
  return std::nullopt;
}

}  // namespace

std::optional<PromptTexts> OneLinePromptTexts(int command) { return Find(kOneLine, command); }
std::optional<PromptTexts> TwoLinePromptTexts(int command) { return Find(kTwoLine, command); }
