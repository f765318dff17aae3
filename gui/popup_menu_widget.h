#pragma once
// The pop-up menus of the nick list, of each tab kind, and of the input line's owner:
// built from tables, shown at the tap point, and answered with the chosen command's
// number (0 for none). What a number does is the core's business. They are sized for a
// finger at the screen factor they are given.

#include "views/conversation_tab.h"
#include "commands/tab_list_menu.h"

#include <QPoint>

#include <vector>

class QMenu;
class QWidget;

int ExecNickMenu(QWidget* parent, int factor, QPoint globalPos);
int ExecTabMenu(TabKind kind, QWidget* parent, int factor, QPoint globalPos);
// Exposed for tests: the menu a kind gets, with each action's data its command.
QMenu* MakeTabMenu(TabKind kind, QWidget* parent, int factor);
QMenu* MakeNickMenu(QWidget* parent, int factor);

// The tab strip's menu: a sub-menu listing the tabs, then "Tab Settings" and "Baloon
// Settings".
QMenu* MakeTabStripMenu(const std::vector<TabListEntry>& tabs, QWidget* parent, int factor);
int ExecTabStripMenu(const std::vector<TabListEntry>& tabs, QWidget* parent, int factor,
                     QPoint globalPos);
