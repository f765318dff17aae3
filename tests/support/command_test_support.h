#pragma once
// A client context ready for typed commands: registered as "me", a clock at a known second,
// and the tabs a case asks for. Lines read back as "tab|text|style", navy as "navy".

#include "commands/command_parts.h"
#include "support/styled_lines.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

inline constexpr qint64 kCommandTestSeconds = 1700000000;

struct TabSpec {
  const char* name;
  TabKind kind;
};

class CommandClient : public IrcClientFixture {
 public:
  explicit CommandClient(const std::vector<TabSpec>& tabs = {}, const char* current = "Status") {
    settings.SetBinary(u"kolory", DistinctColours());
    ctx.session.currentNick = QStringLiteral("me");
    ctx.tabs.SetClock([] { return QDateTime::fromSecsSinceEpoch(kCommandTestSeconds); });
    for (const TabSpec& tab : tabs) ctx.tabs.OpenTab(QString::fromUtf8(tab.name), tab.kind);
    for (int i = 0; i < ctx.tabs.Count(); ++i)
      if (ctx.tabs.At(i)->name == QString::fromUtf8(current)) ctx.tabs.ActivateTab(i);
  }

  void Disconnect() {
    ::close(std::exchange(ctx.session.serverSocket, kNoSocket));
  }

  QStringList Shown() const {
    QStringList lines = AllStyledLines(*this);
    for (QString& line : lines) line.replace(QStringLiteral("|colour 8388608"), QStringLiteral("|navy"));
    return lines;
  }
};
