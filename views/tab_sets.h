#pragma once
// "TabSets": two label bits and two balloon bits per tab kind, as "Tab Settings" and
// "Baloon Settings" edit them. Each function changes only the bits of its own kind and
// concern, so every other bit of the word stays as the user left it.

#include "views/conversation_tab.h"

#include <QtGlobal>

#include <array>

// The label pair of a kind: bit 0 the icon, bit 1 the name.
enum class TabLabelShow : int { None = 0, Icon = 1, Text = 2, Both = 3 };

struct TabSetsKind {
  TabKind kind;
  const char16_t* name;  // as the two dialogs name the kind
};

// The kinds in the order of the dialogs' rows.
inline constexpr std::array<TabSetsKind, 6> kTabSetsKinds{{
    {TabKind::Status, u"Status"},
    {TabKind::Channel, u"Channel"},
    {TabKind::Chat, u"Chat"},
    {TabKind::DccChat, u"DCC Chat"},
    {TabKind::DccRecv, u"DCC Recv"},
    {TabKind::DccSend, u"DCC Send"},
}};

TabLabelShow LabelShowOf(quint32 tabSets, TabKind kind);
quint32 WithLabelShow(quint32 tabSets, TabKind kind, TabLabelShow show);
// Either balloon bit of the kind shows balloons (see BalloonSwitchOn).
bool BalloonOn(quint32 tabSets, TabKind kind);
// Switching on keeps a bit already set; switching off clears both.
quint32 WithBalloon(quint32 tabSets, TabKind kind, bool on);
