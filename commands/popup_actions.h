#pragma once
// What the pop-up menus of the nick list, the channel, chat and Status tabs, and the
// user menus of DCC windows do with the chosen item. Each item becomes one protocol line,
// one "/" command, a prompt then a command, or a change of the ignore list.

#include "irc/numeric_handlers.h"

#include <QStringView>

class ClientContext;

// The nick as the list shows it ("@alice"); the channel is the current tab's name.
void RunNickListAction(ClientContext& ctx, int command, QStringView shownNick);
// The chat tab at `position`: its name is the nick.
void RunChatTabAction(ClientContext& ctx, int command, int position);
void RunChannelTabAction(ClientContext& ctx, int command, int position);
void RunStatusTabAction(ClientContext& ctx, int command);
// The item of the menu that the tab at `position` shows, by the tab's kind; false when the
// tab has no menu (a file transfer, or no tab).
bool RunTabMenuAction(ClientContext& ctx, int command, int position);
// A nick shown outside the tabs (the DCC windows): the user items, answered on Status.
void RunUserAction(ClientContext& ctx, int command, QStringView nick);
// A transfer tab's menu: the peer's user items, Cancel (40116) and Close tab (40499).
void RunTransferTabAction(ClientContext& ctx, int command, int position);

// Called when a ban list the user asked for is complete: offers its masks and removes
// the chosen one. Takes over `actionChannel` and empties the list in every case.
void BanListChooser(ClientContext& ctx, BanList& banList);
