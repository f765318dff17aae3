#include "gui/menu_bar_widget.h"

#include "commands/command_ids.h"
#include "favorites/favorite_list.h"

#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

QAction* AddItem(QMenu* menu, const QString& text, int command) {
  QAction* action = menu->addAction(text);
  action->setData(command);
  return action;
}

struct CommandItem {
  QStringView submenu;  // empty: the Commands menu itself
  QStringView text;
  int command;
};

constexpr CommandItem kCommandItems[] = {
    {u"Channel", u"Join", kCmdJoin},        {u"Channel", u"Part", kCmdPart},
    {u"Channel", u"List", kCmdList},        {u"Channel", u"Names", kCmdNames},
    {u"Channel", u"Topic", kCmdTopicInput}, {u"Channel", u"Kick", kCmdKickInput},
    {u"User", u"Whois", kCmdWhoisInput},    {u"User", u"Whowas", kCmdWhowas},
    {u"User", u"Who", kCmdWho},             {u"User", u"Invite", kCmdInvite},
    {u"User", u"Notice", kCmdNoticeInput},  {u"User", u"Userhost", kCmdUserhost},
    {u"DCC", u"DCC Chat", kCmdDccChat},     {u"DCC", u"DCC Send", kCmdDccSend},
    {{}, u"New nick", kCmdNewNick},         {{}, u"Quit", kCmdQuit},
};

// Sub-menus open where their first item stands.
void FillCommands(QMenu* commands) {
  QMenu* submenu = nullptr;
  for (const CommandItem& item : kCommandItems) {
    if (item.submenu.isEmpty()) {
      submenu = nullptr;
    } else if (!submenu || submenu->title() != item.submenu) {
      submenu = commands->addMenu(item.submenu.toString());
    }
    AddItem(submenu ? submenu : commands, item.text.toString(), item.command);
  }
}

}  // namespace

MenuBarWidget::MenuBarWidget(QWidget* parent) : QMenuBar(parent) {
  menu_ = addMenu(u"Menu"_s);
  connect_ = AddItem(menu_, u"Connect"_s, kCmdConnect);
  FillCommands(menu_->addMenu(u"Commands"_s));
  favorites_ = menu_->addMenu(u"Favorites"_s);
  AddItem(menu_, u"mColors Default"_s, kCmdColoursDefault);
  AddItem(menu_, u"Options"_s, kCmdOptions);
  QMenu* help = menu_->addMenu(u"Help"_s);
  AddItem(help, u"Contents"_s, kCmdHelpContents);
  AddItem(help, u"About"_s, kCmdHelpAbout);
  menu_->addSeparator();
  AddItem(menu_, u"Exit"_s, kCmdExit);
  ShowFavorites({});
  connect(this, &QMenuBar::triggered, this, [this](QAction* action) {
    if (const int command = action->data().toInt()) emit commandChosen(command);
  });
}

void MenuBarWidget::ShowConnected(bool connected) {
  connect_->setText(connected ? u"Disconnect"_s : u"Connect"_s);
}

// A sentence is shown as written: "&" would otherwise mark a shortcut.
void MenuBarWidget::ShowFavorites(const QStringList& sentences) {
  favorites_->clear();
  AddItem(favorites_, u"Add"_s, kCmdFavoriteAdd);
  AddItem(favorites_, u"Remove"_s, kCmdFavoriteRemove);
  favorites_->addSeparator();
  for (int i = 0; i < sentences.size(); ++i) {
    QString text = sentences[i];
    text.replace(u'&', u"&&"_s).replace(u'\t', u' ');
    AddItem(favorites_, text, kFirstFavoriteCommand + i);
  }
}
