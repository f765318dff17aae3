#pragma once
// The one window: the tab strip at the top, the current conversation's text with the
// channel's nick list beside it, the input line and two buttons at the bottom, and the
// menu. It shows the core's models and forwards the user's gestures; what a gesture
// means is decided in commands/ and net/.

#include "client/client_context.h"
#include "views/screen_metrics.h"
#include "gui/shell_window.h"
#include "net/session_control.h"
#include "views/nick_list_model.h"
#include "gui/nick_colour_model.h"
#include "whispers/nick_completion.h"

#include <QMainWindow>

#include <unordered_map>

class ColorTextWidget;
class DccProgressWidget;
class InputLineWidget;
class MenuBarWidget;
class QListView;
class QSplitter;
class QStackedWidget;
class QToolButton;
class SettingsStore;
class TabStripWidget;
class WhisperAttachment;

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(SettingsStore& settings, QWidget* parent = nullptr);
  ~MainWindow() override;

  // The end of start-up: the Status tab, the focus in the input line, the splash.
  void FinishStart(bool connectAtStart);

  ClientContext& Context() { return ctx_; }
  SessionControl& Session() { return session_; }
  WindowShell& Shell() { return shell_; }
  InputLineWidget* InputLine() const { return input_; }
  WhisperAttachment* InputWhispers() const { return inputWhispers_; }
  MenuBarWidget* Menu() const { return menu_; }
  QListView* NickView() const { return nickView_; }
  TabStripWidget* Strip() const { return strip_; }
  ColorTextWidget* TextViewOf(TabId tab) const;
  DccProgressWidget* TransferPageOf(TabId tab) const;
  int ScaleFactor() const { return factor_; }
  const FontHeights& Fonts() const { return fonts_; }

  // A menu command by number, as the menu bar or a test chooses it.
  void RunCommand(int command);
  // The pop-up menu items, as the menus would run them.
  void RunTabMenuCommand(int command);
  void RunNickMenuCommand(int command, const QString& shownNick);

  // The colours of the scheme ("kolory") again, after the user changed them.
  void ApplyColours();
  // With a soft keyboard up over `keyboard` (window coordinates), the input line stays
  // above it.
  void FollowKeyboard(const QRectF& keyboard, bool shown);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void BuildWidgets();
  void ConnectModel();
  void ApplyScale();
  void RunOptions();
  void OnTabOpened(TabId id, int position);
  void OnTabClosed(TabId id);
  void OnCurrentChanged(int position);
  void ShowNickPane(bool shown);
  void OnSubmitted(const QString& text);
  void ShowTabMenu(QPoint globalPos);
  void ShowNickMenu(QPoint globalPos);
  void OpenHelp();
  void ShowAbout();
  void Exit();

  WindowShell shell_;
  ClientContext ctx_;
  SessionControl session_;
  NickListModel nickModel_;
  NickColourModel nickColours_;
  MenuBarWidget* menu_ = nullptr;
  TabStripWidget* strip_ = nullptr;
  QSplitter* splitter_ = nullptr;
  QStackedWidget* views_ = nullptr;
  QListView* nickView_ = nullptr;
  InputLineWidget* input_ = nullptr;
  WhisperAttachment* inputWhispers_ = nullptr;
  NickCompleter nickCompleter_;
  QToolButton* tabMenuButton_ = nullptr;
  QToolButton* nickToggle_ = nullptr;
  std::unordered_map<TabId, ColorTextWidget*> textViews_;
  std::unordered_map<TabId, DccProgressWidget*> transferPages_;  // file-transfer tabs
  int factor_ = 0;
  FontHeights fonts_;
  QStringList fontFaces_;  // the faces the fonts were made with
  bool nickPaneWanted_ = true;
};
