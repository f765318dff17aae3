#pragma once
// A client ready for typed commands and menu items: a clock at a known second, the tabs a
// case asks for, and navy lines read back as "navy".

#include "commands/command_parts.h"
#include "support/styled_lines.h"

#include <QDateTime>


struct TabSpec {
  const char* name;
  TabKind kind;
};

class CommandClient : public StyledClient {
 public:
  explicit CommandClient(const std::vector<TabSpec>& tabs = {}, const char* current = "Status") {
    ctx.tabs.SetClock([] { return QDateTime::fromSecsSinceEpoch(1700000000); });
    for (const TabSpec& tab : tabs) ctx.tabs.OpenTab(QString::fromUtf8(tab.name), tab.kind);
    for (int i = 0; i < ctx.tabs.Count(); ++i)
      if (ctx.tabs.At(i)->name == QString::fromUtf8(current)) ctx.tabs.ActivateTab(i);
  }

  void Disconnect() { ::close(std::exchange(ctx.session.serverSocket, kNoSocket)); }

  QStringList Shown() const { return StyledClient::Shown().replaceInStrings(u"|colour 8388608", u"|navy"); }
};
