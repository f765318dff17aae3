#include "commands/tab_list_menu.h"

#include "commands/command_ids.h"
#include "views/tab_bar.h"

#include <algorithm>

std::vector<TabListEntry> TabListMenu(const TabBar& tabs) {
  std::vector<TabListEntry> entries;
  const int last = std::min(tabs.Count() - 1, kLastTabListPosition);
  for (int position = 1; position <= last; ++position)
    entries.push_back({tabs.At(position)->name, kCmdFirstTabListEntry + position});
  return entries;
}

bool RunTabListCommand(TabBar& tabs, int command) {
  const int position = command - kCmdFirstTabListEntry;
  if (position < 1 || position > kLastTabListPosition || position >= tabs.Count()) return false;
  tabs.ActivateTab(position);
  return true;
}
