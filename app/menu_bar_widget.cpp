#include "app/menu_bar_widget.h"

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

void FillCommands(QMenu* commands) {
  QMenu* channel = commands->addMenu(u"Channel"_s);
  AddItem(channel, u"Join"_s, kCmdJoin);
  AddItem(channel, u"Part"_s, kCmdPart);
  AddItem(channel, u"List"_s, kCmdList);
  AddItem(channel, u"Names"_s, kCmdNames);
  AddItem(channel, u"Topic"_s, kCmdTopicInput);
  AddItem(channel, u"Kick"_s, kCmdKickInput);
  QMenu* user = commands->addMenu(u"User"_s);
  AddItem(user, u"Whois"_s, kCmdWhoisInput);
  AddItem(user, u"Whowas"_s, kCmdWhowas);
  AddItem(user, u"Who"_s, kCmdWho);
  AddItem(user, u"Invite"_s, kCmdInvite);
  AddItem(user, u"Notice"_s, kCmdNoticeInput);
  AddItem(user, u"Userhost"_s, kCmdUserhost);
  QMenu* dcc = commands->addMenu(u"DCC"_s);
  AddItem(dcc, u"DCC Chat"_s, kCmdDccChat);
  AddItem(dcc, u"DCC Send"_s, kCmdDccSend);
  AddItem(commands, u"New nick"_s, kCmdNewNick);
  AddItem(commands, u"Quit"_s, kCmdQuit);
}

}  // namespace

MenuBarWidget::MenuBarWidget(QWidget* parent) : QMenuBar(parent) {
  menu_ = addMenu(u"Menu"_s);
  connect_ = AddItem(menu_, u"Connect"_s, kCmdConnect);
  FillCommands(menu_->addMenu(u"Commands"_s));
  favorites_ = menu_->addMenu(u"Favorites"_s);
  AddItem(menu_, u"mColors Default"_s, kCmdColoursDefault);
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
