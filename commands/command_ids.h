#pragma once
// The numbers of the menu commands: the main menu, its Commands sub-menu, and the
// pop-up menus of nicks, channel, chat and Status tabs. Front ends and scripts name
// commands by these.

// Main menu.
inline constexpr int kCmdHelpContents = 40005;
inline constexpr int kCmdHelpAbout = 40007;
inline constexpr int kCmdConnect = 40008;  // becomes Disconnect while connected
inline constexpr int kCmdOptions = 40009;
inline constexpr int kCmdExit = 40010;
inline constexpr int kCmdColoursDefault = 40050;

// Commands sub-menu (and the same numbers in the pop-up menus).
inline constexpr int kCmdJoin = 40101;
inline constexpr int kCmdPart = 40102;
inline constexpr int kCmdList = 40103;
inline constexpr int kCmdNames = 40104;
inline constexpr int kCmdWhoisInput = 40105;
inline constexpr int kCmdWhowas = 40106;
inline constexpr int kCmdWho = 40107;
inline constexpr int kCmdNewNick = 40108;
inline constexpr int kCmdQuit = 40109;
inline constexpr int kCmdTopicInput = 40110;
inline constexpr int kCmdInvite = 40111;
inline constexpr int kCmdKickInput = 40112;
inline constexpr int kCmdNoticeInput = 40113;
inline constexpr int kCmdDccChat = 40114;
inline constexpr int kCmdDccSend = 40115;
inline constexpr int kCmdCancel = 40116;
inline constexpr int kCmdUserhost = 40117;

// Favourites.
inline constexpr int kCmdFavoriteAdd = 40298;
inline constexpr int kCmdFavoriteRemove = 40299;

// Nick-list and chat-tab pop-up items.
inline constexpr int kCmdPing = 40301;
inline constexpr int kCmdWhois = 40303;
inline constexpr int kCmdQuery = 40304;
inline constexpr int kCmdIgnore = 40305;
inline constexpr int kCmdUnignore = 40306;
inline constexpr int kCmdOp = 40307;
inline constexpr int kCmdDeop = 40308;
inline constexpr int kCmdVoice = 40309;
inline constexpr int kCmdDevoice = 40310;
inline constexpr int kCmdKick = 40311;
inline constexpr int kCmdKickReason = 40312;
inline constexpr int kCmdBan = 40313;
inline constexpr int kCmdBanKick = 40314;
inline constexpr int kCmdBanKickReason = 40315;
inline constexpr int kCmdNotice = 40316;

// Channel-tab items; 40401-40422 are the mode items, in pairs On/Off.
inline constexpr int kCmdFirstChannelMode = 40401;
inline constexpr int kCmdTopicShow = 40409;
inline constexpr int kCmdTopicChange = 40410;
inline constexpr int kCmdKeyOn = 40421;
inline constexpr int kCmdRemoveBan = 40423;

// Items every tab menu shares, and the Status menu's own.
inline constexpr int kCmdClear = 40496;
inline constexpr int kCmdScrollOn = 40497;
inline constexpr int kCmdScrollOff = 40498;
inline constexpr int kCmdCloseTab = 40499;
inline constexpr int kCmdAway = 40501;
inline constexpr int kCmdUnaway = 40502;

// The tab strip's menu: its list of tabs is 40700 + position, positions 1 to 99. The
// two settings items are numbered by us.
inline constexpr int kCmdFirstTabListEntry = 40700;
inline constexpr int kLastTabListPosition = 99;
inline constexpr int kCmdTabSettings = 40801;
inline constexpr int kCmdBalloonSettings = 40802;
