#include "gui/popup_menu_widget.h"

#include "gui/touch_targets_widget.h"
#include "commands/command_ids.h"

#include <QMenu>

#include <initializer_list>

using namespace Qt::StringLiterals;

namespace {

struct Item {
  const char16_t* text;
  int command;  // 0 with a text opens a sub-menu of the items that follow, up to an end
};

constexpr Item kEnd = {nullptr, 0};

// Items follow one another; {text, 0} starts a sub-menu closed by kEnd.
void Fill(QMenu* menu, std::initializer_list<Item> items) {
  QMenu* target = menu;
  for (const Item& item : items) {
    if (!item.text) {
      target = menu;
    } else if (item.command == 0) {
      target = menu->addMenu(QString::fromUtf16(item.text));
    } else {
      target->addAction(QString::fromUtf16(item.text))->setData(item.command);
    }
  }
}

void AddScroll(QMenu* menu) {
  Fill(menu, {{u"Scroll", 0}, {u"On", kCmdScrollOn}, {u"Off", kCmdScrollOff}, kEnd});
}

void AddUserItems(QMenu* menu) {
  Fill(menu, {{u"Query", kCmdQuery}, {u"Notice", kCmdNotice}, {u"Whois", kCmdWhois}, {u"Ping", kCmdPing},
              {u"Userhost", kCmdUserhost}, {u"DCC Chat", kCmdDccChat}, {u"DCC Send", kCmdDccSend},
              {u"Ignore", kCmdIgnore}, {u"Unignore", kCmdUnignore}});
}

void FillChannelMenu(QMenu* menu) {
  Fill(menu, {{u"Clear", kCmdClear},
              {u"Private", 0}, {u"On", 40401}, {u"Off", 40402}, kEnd,
              {u"Secret", 0}, {u"On", 40403}, {u"Off", 40404}, kEnd,
              {u"Invite", 0}, {u"On", 40405}, {u"Off", 40406}, kEnd,
              {u"Topic", 0}, {u"set. by Ops", 40407}, {u"set. by all", 40408}, {u"Show", kCmdTopicShow},
              {u"Change", kCmdTopicChange}, kEnd,
              {u"No messages", 0}, {u"On", 40411}, {u"Off", 40412}, kEnd,
              {u"Moderated", 0}, {u"On", 40413}, {u"Off", 40414}, kEnd,
              {u"User limit", 0}, {u"Off", 40415}, {u"5", 40416}, {u"10", 40417}, {u"20", 40418},
              {u"50", 40419}, {u"100", 40420}, kEnd,
              {u"Channel key", 0}, {u"On", kCmdKeyOn}, {u"Off", 40422}, kEnd,
              {u"Remove ban", kCmdRemoveBan}});
  AddScroll(menu);
  Fill(menu, {{u"Close tab", kCmdCloseTab}});
}

void FillChatMenu(QMenu* menu) {
  Fill(menu, {{u"Clear", kCmdClear}, {u"Notice", kCmdNotice}, {u"Whois", kCmdWhois}, {u"Ping", kCmdPing},
              {u"Userhost", kCmdUserhost}, {u"DCC Chat", kCmdDccChat}, {u"DCC Send", kCmdDccSend},
              {u"Ignore", kCmdIgnore}, {u"Unignore", kCmdUnignore}});
  AddScroll(menu);
  Fill(menu, {{u"Close tab", kCmdCloseTab}});
}

void FillStatusMenu(QMenu* menu) {
  Fill(menu, {{u"Clear", kCmdClear}, {u"Away", 0}, {u"Away", kCmdAway}, {u"Unaway", kCmdUnaway}, kEnd});
  AddScroll(menu);
}

int Exec(QMenu* menu, QPoint globalPos) {
  const QAction* chosen = menu->exec(globalPos);
  const int command = chosen ? chosen->data().toInt() : 0;
  delete menu;
  return command;
}

}  // namespace

QMenu* MakeNickMenu(QWidget* parent, int factor) {
  auto* menu = new QMenu(parent);
  Fill(menu, {{u"Query", kCmdQuery}, {u"Notice", kCmdNotice}, {u"Whois", kCmdWhois}, {u"Ping", kCmdPing},
              {u"Userhost", kCmdUserhost},
              {u"DCC", 0}, {u"DCC Chat", kCmdDccChat}, {u"DCC Send", kCmdDccSend}, kEnd,
              {u"Ignore", 0}, {u"Ignore", kCmdIgnore}, {u"Unignore", kCmdUnignore}, kEnd,
              {u"Op", 0}, {u"Op", kCmdOp}, {u"Deop", kCmdDeop}, kEnd,
              {u"Voice", 0}, {u"Voice", kCmdVoice}, {u"Devoice", kCmdDevoice}, kEnd,
              {u"Kick", 0}, {u"Kick", kCmdKick}, {u"Kick (Reason)", kCmdKickReason}, kEnd,
              {u"Ban", 0}, {u"Ban", kCmdBan}, {u"Ban, Kick", kCmdBanKick},
              {u"Ban, Kick (Reason)", kCmdBanKickReason}, kEnd});
  FitForTouch(menu, factor);
  return menu;
}

QMenu* MakeTabMenu(TabKind kind, QWidget* parent, int factor) {
  auto* menu = new QMenu(parent);
  switch (kind) {
    case TabKind::Channel: FillChannelMenu(menu); break;
    case TabKind::Chat: FillChatMenu(menu); break;
    case TabKind::Status: FillStatusMenu(menu); break;
    case TabKind::DccChat:  // menu 143
      AddUserItems(menu);
      Fill(menu, {{u"Close tab", kCmdCloseTab}});
      break;
    case TabKind::DccRecv:  // menu 130
    case TabKind::DccSend:
      AddUserItems(menu);
      Fill(menu, {{u"Cancel", kCmdCancel}, {u"Close tab", kCmdCloseTab}});
      break;
    default: break;
  }
  FitForTouch(menu, factor);
  return menu;
}

int ExecNickMenu(QWidget* parent, int factor, QPoint globalPos) {
  return Exec(MakeNickMenu(parent, factor), globalPos + QPoint(0, 5));
}

int ExecTabMenu(TabKind kind, QWidget* parent, int factor, QPoint globalPos) {
  QMenu* menu = MakeTabMenu(kind, parent, factor);
  if (menu->isEmpty()) {
    delete menu;
    return 0;
  }
  return Exec(menu, globalPos);
}

QMenu* MakeTabStripMenu(const std::vector<TabListEntry>& tabs, QWidget* parent, int factor) {
  auto* menu = new QMenu(parent);
  QMenu* list = menu->addMenu(u"Tabs"_s);
  list->setEnabled(!tabs.empty());
  // A name is shown as it is: a "&" in it is no shortcut.
  for (const TabListEntry& tab : tabs)
    list->addAction(QString(tab.name).replace(u'&', u"&&"_s))->setData(tab.command);
  Fill(menu, {{u"Tab Settings", kCmdTabSettings}, {u"Baloon Settings", kCmdBalloonSettings}});
  FitForTouch(menu, factor);
  return menu;
}

int ExecTabStripMenu(const std::vector<TabListEntry>& tabs, QWidget* parent, int factor,
                     QPoint globalPos) {
  return Exec(MakeTabStripMenu(tabs, parent, factor), globalPos);
}
