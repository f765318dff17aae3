#pragma once
// The window's one menu, "Menu": Connect/Disconnect, the Commands sub-menus, Favorites,
// the palette reset, Options, Help and Exit. Every item carries its command number; choosing one
// emits it for the window to carry out.

#include <QMenuBar>
#include <QStringList>

class MenuBarWidget : public QMenuBar {
  Q_OBJECT

 public:
  explicit MenuBarWidget(QWidget* parent = nullptr);

  // "Connect" becomes "Disconnect" while connected.
  void ShowConnected(bool connected);
  // The sentences after "Add", "Remove" and the separator, numbered from 40200.
  void ShowFavorites(const QStringList& sentences);
  QMenu* CommandMenu() const { return menu_; }

 signals:
  void commandChosen(int command);

 private:
  QMenu* menu_;
  QMenu* favorites_;
  QAction* connect_;
};
