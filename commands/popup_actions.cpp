#include "commands/popup_actions.h"

#include "client/client_context.h"
#include "commands/command_ids.h"
#include "commands/command_parts.h"
#include "commands/menu_commands.h"
#include "commands/submit_input.h"
#include "dcc/dcc_transfer.h"
#include "settings/word_list.h"
#include "views/output_path.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// The nick, the channel it was chosen in (empty outside a nick list) and the tab that
// answers the ignore items.
struct UserTarget {
  QString nick;
  QString channel;
  int replyTab = 0;
};

void ChangeIgnoreList(ClientContext& ctx, const UserTarget& user, bool add) {
  if (add) {
    ListAdd(ctx.settings, user.nick, u"ignore");
  } else {
    ListRemove(ctx.settings, user.nick, u"ignore");
  }
  const QString line = add ? u"* Added "_s + user.nick + u" to ignore list"_s
                           : u"* Removed "_s + user.nick + u" from ignore list"_s;
  PrintToTab(ctx.tabs, user.replyTab, line, ctx.Colour(LineStyle::Info2));
}

// Ban asks for the nick's address; the whois reply sets the ban, then the prepared kick
// (a kick still waiting from an earlier Ban, Kick is kept).
void Ban(ClientContext& ctx, const UserTarget& user, bool kick, const QString& reason = {}) {
  ctx.actionChannel = user.channel;
  ctx.session.requestedNick = user.nick;
  if (kick && ctx.pendingKickLine.isEmpty()) {
    ctx.pendingKickLine = u"KICK "_s + user.channel + u' ' + user.nick;
    if (!reason.isEmpty()) ctx.pendingKickLine += u" :"_s + reason;
  }
  ctx.SendToServer(u"WHOIS "_s + user.nick);
}

void SetMode(ClientContext& ctx, const UserTarget& user, QStringView change) {
  ctx.SendToServer(u"MODE "_s + user.channel + u' ' + change.toString() + u' ' + user.nick);
}

// Items that need a channel do nothing where there is none.
bool RunChannelUserAction(ClientContext& ctx, int command, const UserTarget& user) {
  if (user.channel.isEmpty()) return false;
  switch (command) {
    case kCmdOp: SetMode(ctx, user, u"+o"); return true;
    case kCmdDeop: SetMode(ctx, user, u"-o"); return true;
    case kCmdVoice: SetMode(ctx, user, u"+v"); return true;
    case kCmdDevoice: SetMode(ctx, user, u"-v"); return true;
    case kCmdKick: ctx.SendToServer(u"KICK "_s + user.channel + u' ' + user.nick); return true;
    case kCmdKickReason:
      if (const std::optional<QString> reason = AskCommandText(ctx, kCmdKickReason))
        ctx.SendToServer(u"KICK "_s + user.channel + u' ' + user.nick + u" :"_s + *reason);
      return true;
    case kCmdBan: Ban(ctx, user, false); return true;
    case kCmdBanKick: Ban(ctx, user, true); return true;
    case kCmdBanKickReason:
      if (const std::optional<QString> reason = AskCommandText(ctx, kCmdBanKickReason))
        Ban(ctx, user, true, *reason);
      return true;
  }
  return false;
}

void RunUserItem(ClientContext& ctx, int command, const UserTarget& user) {
  if (user.nick.isEmpty()) return;
  if (RunChannelUserAction(ctx, command, user)) return;
  switch (command) {
    case kCmdQuery: ctx.tabs.ActivateTab(ctx.tabs.OpenTab(user.nick, TabKind::Chat)); break;
    case kCmdNotice:
      if (const std::optional<QString> text = AskCommandText(ctx, kCmdNotice))
        SubmitCommandLine(ctx, u"/NOTICE", user.nick, *text);
      break;
    case kCmdWhois: ctx.SendToServer(u"WHOIS "_s + user.nick); break;
    case kCmdPing: RunCommand(ctx, u"/PING "_s + user.nick); break;
    case kCmdUserhost:
      ctx.userhostRequested = true;
      ctx.SendToServer(u"USERHOST "_s + user.nick);
      break;
    case kCmdDccChat: StartDccChatWith(ctx, user.nick); break;
    case kCmdDccSend: OpenDccSendDialog(ctx, user.nick); break;
    case kCmdIgnore: ChangeIgnoreList(ctx, user, true); break;
    case kCmdUnignore: ChangeIgnoreList(ctx, user, false); break;
  }
}

// Clear and Scroll, which every tab menu carries.
bool RunViewItem(ClientContext& ctx, int command, int position) {
  switch (command) {
    case kCmdClear: ctx.tabs.ClearLines(position); return true;
    case kCmdScrollOn: ctx.tabs.SetFollowNewLines(position, true); return true;
    case kCmdScrollOff: ctx.tabs.SetFollowNewLines(position, false); return true;
  }
  return false;
}

// The mode items 40401-40420 and 40422, by their offset from the first.
constexpr QStringView kModeCodes[] = {
    u" +p", u" -p", u" +s", u" -s", u" +i", u" -i", u" +t", u" -t", {}, {},
    u" +n", u" -n", u" +m", u" -m", u" -l", u" +l 5", u" +l 10", u" +l 20",
    u" +l 50", u" +l 100", {}, u" -k",
};

bool RunChannelModeItem(ClientContext& ctx, int command, const QString& channel) {
  const int offset = command - kCmdFirstChannelMode;
  if (offset >= 0 && offset < int(std::size(kModeCodes)) && !kModeCodes[offset].isEmpty()) {
    ctx.SendToServer(u"MODE "_s + channel + kModeCodes[offset].toString());
    return true;
  }
  if (command == kCmdKeyOn) {
    if (const std::optional<QString> key = AskCommandText(ctx, kCmdKeyOn))
      ctx.SendToServer(u"MODE "_s + channel + u" +k "_s + *key);
    return true;
  }
  if (command == kCmdRemoveBan) {
    ctx.actionChannel = channel;
    ctx.session.requestedNick.clear();
    ctx.SendToServer(u"MODE "_s + channel + u" +b"_s);
    return true;
  }
  return false;
}

QString NickWithoutRank(QStringView shown) {
  if (shown.startsWith(u'@') || shown.startsWith(u'+')) shown = shown.sliced(1);
  return shown.toString();
}

}  // namespace

void RunNickListAction(ClientContext& ctx, int command, QStringView shownNick) {
  const std::optional<QString> channel = ctx.tabs.CurrentTabName();
  if (!channel) return;
  const int tab = ctx.tabs.FindTab(*channel, TabKind::Channel);
  RunUserItem(ctx, command, {NickWithoutRank(shownNick), *channel, tab >= 0 ? tab : 0});
}

void RunChatTabAction(ClientContext& ctx, int command, int position) {
  const ConversationTab* tab = ctx.tabs.At(position);
  if (!tab || tab->kind != TabKind::Chat || RunViewItem(ctx, command, position)) return;
  if (command == kCmdCloseTab) return ctx.tabs.CloseTabAt(position);
  RunUserItem(ctx, command, {tab->name, QString(), position});
}

void RunChannelTabAction(ClientContext& ctx, int command, int position) {
  const ConversationTab* tab = ctx.tabs.At(position);
  if (!tab || tab->kind != TabKind::Channel || RunViewItem(ctx, command, position)) return;
  const QString channel = tab->name;
  if (RunChannelModeItem(ctx, command, channel)) return;
  switch (command) {
    case kCmdTopicShow: ctx.SendToServer(u"TOPIC "_s + channel); break;
    case kCmdTopicChange:
      if (const std::optional<QString> topic = AskCommandText(ctx, kCmdTopicChange))
        SubmitCommandLine(ctx, u"/TOPIC", channel, *topic);
      break;
    // Parting closes the tab when the server confirms; offline there is no one to ask.
    case kCmdCloseTab:
      if (IsConnected(ctx)) {
        RunCommand(ctx, u"/PART "_s + channel);
      } else {
        ctx.tabs.CloseTabByName(channel, TabKind::Channel);
      }
      break;
  }
}

void RunStatusTabAction(ClientContext& ctx, int command) {
  if (RunViewItem(ctx, command, 0)) return;
  if (command == kCmdAway) {
    if (const std::optional<QString> text = AskCommandText(ctx, kCmdAway))
      SubmitCommandLine(ctx, u"/AWAY", {}, *text);
  } else if (command == kCmdUnaway) {
    RunCommand(ctx, u"/AWAY"_s);
  }
}

bool RunTabMenuAction(ClientContext& ctx, int command, int position) {
  const ConversationTab* tab = ctx.tabs.At(position);
  if (!tab) return false;
  switch (tab->kind) {
    case TabKind::Channel: RunChannelTabAction(ctx, command, position); return true;
    case TabKind::Chat: RunChatTabAction(ctx, command, position); return true;
    case TabKind::Status: RunStatusTabAction(ctx, command); return true;
    case TabKind::DccChat:
      if (command == kCmdCloseTab) return ctx.dccEngine.CloseTab(tab->id), true;
      RunUserAction(ctx, command, tab->name);
      return true;
    case TabKind::DccRecv:
    case TabKind::DccSend: RunTransferTabAction(ctx, command, position); return true;
    default: return false;
  }
}

// The transfer's user menu: the peer's user items, Cancel and Close.
void RunTransferTabAction(ClientContext& ctx, int command, int position) {
  const ConversationTab* tab = ctx.tabs.At(position);
  const DccTransfer* transfer = tab ? ctx.dccEngine.TransferOf(tab->id) : nullptr;
  if (!transfer) return;
  if (command == kCmdCancel) return ctx.dccEngine.CancelTransfer(tab->id);
  if (command == kCmdCloseTab) return ctx.dccEngine.CloseTab(tab->id);
  RunUserAction(ctx, command, transfer->nick);
}

void RunUserAction(ClientContext& ctx, int command, QStringView nick) {
  RunUserItem(ctx, command, {nick.toString(), QString(), 0});
}

void BanListChooser(ClientContext& ctx, BanList& banList) {
  const QString channel = std::exchange(ctx.actionChannel, QString());
  const BanList entries = std::exchange(banList, {});
  QStringList masks;
  for (const BanListEntry& entry : entries) masks << entry.mask;
  const std::optional<int> chosen = ctx.shell.PickFromList(
      channel + u" banlist"_s, u"Select ban to remove:"_s, masks, u"Remove"_s);
  if (!chosen || *chosen < 0 || *chosen >= int(entries.size())) return;
  const BanListEntry& entry = entries[*chosen];
  RunCommand(ctx, u"/MODE "_s + entry.channel + u" -b "_s + entry.mask);
}
