#pragma once
// The pop-up menus of the nick list, of each tab kind, and of the input line's owner:
// built from tables, shown at the tap point, and answered with the chosen command's
// number (0 for none). What a number does is the core's business.

#include "views/conversation_tab.h"

#include <QPoint>

class QMenu;
class QWidget;

int ExecNickMenu(QWidget* parent, QPoint globalPos);
int ExecTabMenu(TabKind kind, QWidget* parent, QPoint globalPos);
// Exposed for tests: the menu a kind gets, with each action's data its command.
QMenu* MakeTabMenu(TabKind kind, QWidget* parent);
QMenu* MakeNickMenu(QWidget* parent);
