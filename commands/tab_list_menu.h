#pragma once
// The tab strip's menu lists the tabs by name so that one far along the strip can be
// reached without scrolling it: Status is always at hand and is left out, and the list
// stops at position 99.

#include <QString>

#include <vector>

class TabBar;

struct TabListEntry {
  QString name;
  int command;  // kCmdFirstTabListEntry + position
};

std::vector<TabListEntry> TabListMenu(const TabBar& tabs);
// Brings the listed tab to the front; false when the command is not a list entry or its
// tab has gone meanwhile.
bool RunTabListCommand(TabBar& tabs, int command);
