#pragma once
// The one road every line the user sees takes: time stamp, the tab's stored lines, the
// tab's log, and news marks (label colour, balloon) on a tab that is not in front.

#include "views/conversation_tab.h"

#include <QStringView>

class TabBar;

// The colour of PrintToCurrentTab's lines, whatever the colour settings say.
inline constexpr quint32 kCurrentTabColour = 0x800000;

// Returns the tab's new row count, 0 when nothing was shown.
qsizetype PrintToTab(TabBar& bar, int position, QStringView text, quint32 colour);
// On FindTab(name, kind), or on Status when no tab matches.
qsizetype PrintToNamedTab(TabBar& bar, QStringView name, TabKind kind, QStringView text,
                          quint32 colour);
qsizetype PrintToCurrentTab(TabBar& bar, QStringView text);

// Whether "TabSets" lets a tab of this kind show balloons.
bool BalloonSwitchOn(quint32 tabSets, TabKind kind);
