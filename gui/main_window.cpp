#include "gui/main_window.h"

#include "gui/dcc_progress_widget.h"
#include "gui/desktop_notifier.h"
#include "gui/help_viewer.h"
#include "gui/input_line_widget.h"
#include "gui/look_page_parts.h"
#include "gui/menu_bar_widget.h"
#include "gui/options_dialog.h"
#include "gui/popup_menu_widget.h"
#include "gui/splash_window.h"
#include "gui/touch_targets_widget.h"
#include "gui/whisper_attachment.h"
#include "commands/command_ids.h"
#include "commands/menu_commands.h"
#include "commands/popup_actions.h"
#include "commands/submit_input.h"
#include "favorites/favorite_commands.h"
#include "settings/settings_flags.h"
#include "settings/settings_paths.h"
#include "settings/settings_store.h"
#include "gui/color_text_widget.h"
#include "views/line_style.h"
#include "whispers/whisper_actions.h"
#include "gui/tab_strip_widget.h"

#include <QBoxLayout>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QInputMethod>
#include <QListView>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QSplitter>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr int kHoldMilliseconds = 600;
// Entries of "kolory" that colour the window rather than lines.
constexpr int kTextBackgroundEntry = 0;
constexpr int kInputColourEntry = 1;
constexpr int kNickBackgroundEntry = 2;
constexpr int kUserColourEntry = 3;
constexpr int kVoiceColourEntry = 4;
constexpr int kOperatorColourEntry = 5;

QColor SchemeColour(const SettingsStore& settings, int entry) {
  return ColourOf(ViewColour(settings, entry));
}

void SetBase(QWidget* widget, const QColor& colour) {
  QPalette palette = widget->palette();
  palette.setColor(QPalette::Base, colour);
  widget->setPalette(palette);
}

// A press held still on a list opens its menu, as a right click does: fingers have no
// second button.
class HoldForMenu : public QObject {
 public:
  HoldForMenu(QWidget* target, std::function<void(QPoint)> open)
      : QObject(target), target_(target), open_(std::move(open)) {
    timer_.setSingleShot(true);
    timer_.setInterval(kHoldMilliseconds);
    connect(&timer_, &QTimer::timeout, this, [this] { open_(target_->mapToGlobal(pressed_)); });
    target->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
        pressed_ = static_cast<QMouseEvent*>(event)->position().toPoint();
        timer_.start();
        break;
      case QEvent::MouseMove:
        if ((static_cast<QMouseEvent*>(event)->position().toPoint() - pressed_).manhattanLength() > 8)
          timer_.stop();
        break;
      case QEvent::MouseButtonRelease: timer_.stop(); break;
      case QEvent::ContextMenu:
        timer_.stop();
        open_(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
      default: break;
    }
    return false;
  }

 private:
  QWidget* target_;
  std::function<void(QPoint)> open_;
  QTimer timer_;
  QPoint pressed_;
};

QFont FontOf(const SettingsStore& settings, QStringView face, int pixels, bool bold = false) {
  QString family;
  settings.GetString(face, family, 35);
  QFont font(family.isEmpty() ? u"Tahoma"_s : family);
  font.setPixelSize(pixels);
  font.setBold(bold);
  return font;
}

QStringList FontFaces(const SettingsStore& settings) {
  QStringList faces;
  for (QStringView name : {u"TextFontName", u"ListFontName", u"EditFontName"}) {
    QString face;
    settings.GetString(name, face, 35);
    faces.append(face);
  }
  return faces;
}

}  // namespace

MainWindow::MainWindow(SettingsStore& settings, QWidget* parent)
    : QMainWindow(parent), shell_(this), ctx_(settings, shell_), session_(ctx_), nickModel_(ctx_.tabs) {
  setWindowTitle(u"Tolv"_s);
  setWindowIcon(AppIcon());
  BuildWidgets();
  ConnectModel();
  ctx_.favorites.SetFilePath(FavoritesPath(settings));
  ctx_.favorites.Load();
  menu_->ShowFavorites(ctx_.favorites.Sentences());
  resize(480, 640);
  ApplyScale();
  ApplyColours();
}

MainWindow::~MainWindow() {
  // The views watch the tab bar, which the context owns: they go first.
  for (auto& [id, view] : textViews_) delete view;
  textViews_.clear();
  for (auto& [id, page] : transferPages_) delete page;
  transferPages_.clear();
}

void MainWindow::BuildWidgets() {
  menu_ = new MenuBarWidget(this);
  setMenuBar(menu_);
  auto* central = new QWidget(this);
  auto* column = new QVBoxLayout(central);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  strip_ = new TabStripWidget(ctx_.tabs, central);
  splitter_ = new QSplitter(Qt::Horizontal, central);
  views_ = new QStackedWidget(splitter_);
  nickView_ = new QListView(splitter_);
  nickColours_.setSourceModel(&nickModel_);
  nickView_->setModel(&nickColours_);
  nickView_->setUniformItemSizes(true);
  nickView_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  splitter_->setChildrenCollapsible(false);
  splitter_->setStretchFactor(0, 1);
  auto* bottom = new QHBoxLayout;
  bottom->setSpacing(0);
  input_ = new InputLineWidget(central);
  input_->SetHistory(&ctx_.history.Model());
  inputWhispers_ = AttachWhispers(input_, ctx_, WhisperField::InputLine);
  input_->SetTabCompletion([this](const QString& text, int caret) {
    return nickCompleter_.Complete(text, caret, [this](QStringView prefix) {
      return CompletingNicks(ctx_, prefix, std::numeric_limits<int>::max());
    });
  });
  tabMenuButton_ = new QToolButton(central);
  tabMenuButton_->setText(u"\u2630"_s);
  tabMenuButton_->setToolTip(u"Menu of this tab"_s);
  nickToggle_ = new QToolButton(central);
  nickToggle_->setText(u"@"_s);
  nickToggle_->setCheckable(true);
  nickToggle_->setChecked(true);
  nickToggle_->setToolTip(u"Show or hide the nick list"_s);
  bottom->addWidget(input_, 1);
  bottom->addWidget(tabMenuButton_);
  bottom->addWidget(nickToggle_);
  column->addWidget(strip_);
  column->addWidget(splitter_, 1);
  column->addLayout(bottom);
  setCentralWidget(central);
  new HoldForMenu(nickView_->viewport(), [this](QPoint at) { ShowNickMenu(at); });
}

void MainWindow::ConnectModel() {
  connect(&ctx_.tabs, &TabBar::tabOpened, this, &MainWindow::OnTabOpened);
  connect(&ctx_.tabs, &TabBar::tabClosed, this, [this](TabId id, int) { OnTabClosed(id); });
  connect(&ctx_.tabs, &TabBar::currentChanged, this, &MainWindow::OnCurrentChanged);
  connect(&ctx_.tabs, &TabBar::attentionWanted, this,
          [this](int position, const QString& line) { NotifyUnlessActive(*this, ctx_, position, line); });
  connect(menu_, &MenuBarWidget::commandChosen, this, &MainWindow::RunCommand);
  connect(&ctx_.favorites, &FavoriteList::changed, this,
          [this] { menu_->ShowFavorites(ctx_.favorites.Sentences()); });
  connect(input_, &InputLineWidget::submitted, this, &MainWindow::OnSubmitted);
  connect(input_, &InputLineWidget::stepTab, &ctx_.tabs, &TabBar::StepTab);
  connect(tabMenuButton_, &QToolButton::clicked, this, [this] {
    ShowTabMenu(tabMenuButton_->mapToGlobal(QPoint(0, 0)));
  });
  connect(nickToggle_, &QToolButton::toggled, this, [this](bool shown) {
    nickPaneWanted_ = shown;
    ShowNickPane(shown);
  });
  connect(splitter_, &QSplitter::splitterMoved, this, [this] {
    if (nickView_->isVisible()) ctx_.tabs.SetNickPaneWidth(ctx_.tabs.Current(), splitter_->sizes().value(1));
  });
  shell_.SetConnectionStateHandler([this](bool connected) { menu_->ShowConnected(connected); });
  shell_.SetFieldHook([this](QLineEdit* field) { AttachWhispers(field, ctx_); });
  const auto followKeyboard = [this] {
    const QInputMethod* keyboard = QGuiApplication::inputMethod();
    FollowKeyboard(keyboard->keyboardRectangle(), keyboard->isVisible());
  };
  connect(QGuiApplication::inputMethod(), &QInputMethod::keyboardRectangleChanged, this, followKeyboard);
}

DccProgressWidget* MainWindow::TransferPageOf(TabId tab) const {
  const auto found = transferPages_.find(tab);
  return found == transferPages_.end() ? nullptr : found->second;
}

ColorTextWidget* MainWindow::TextViewOf(TabId tab) const {
  const auto found = textViews_.find(tab);
  return found == textViews_.end() ? nullptr : found->second;
}

void MainWindow::FinishStart(bool connectAtStart) {
  ctx_.tabs.OpenTab(u"Status", TabKind::Status);
  ctx_.tabs.ActivateTab(0);
  StartWhispers(ctx_);  // once Status is there to hear of a damaged dictionary
  input_->setFocus();
  if (TestOption(ctx_.settings, kOptSplash)) QTimer::singleShot(0, this, &MainWindow::ShowAbout);
  if (connectAtStart) session_.Connect();
}

// The factor follows the window's logical size; fonts and icons follow the factor.
void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  ApplyScale();
  // The text takes the change; the nick pane keeps its width once the layout has run.
  QMetaObject::invokeMethod(this, [this] { ShowNickPane(nickPaneWanted_); }, Qt::QueuedConnection);
}

void MainWindow::ApplyScale() {
  const int factor = ScreenFactor(width(), height());
  const FontHeights fonts = PlanFontHeights(ctx_.settings, factor);
  const QStringList faces = FontFaces(ctx_.settings);
  if (factor == factor_ && fonts.text == fonts_.text && fonts.list == fonts_.list && faces == fontFaces_) return;
  for (int i = 0; factor_ != 0 && factor != factor_ && i < ctx_.tabs.Count(); ++i) {
    ConversationTab* tab = ctx_.tabs.At(i);
    tab->nickPaneWidth = tab->nickPaneWidth * factor / factor_;
  }
  factor_ = factor;
  fonts_ = fonts;
  fontFaces_ = faces;
  ctx_.tabs.SetScaleFactor(factor);
  QFont tabFont(u"Tahoma"_s);  // the tab labels keep one face; the others are the user's
  tabFont.setPixelSize(fonts.tab);
  strip_->setFont(tabFont);
  strip_->SetScaleFactor(factor);
  input_->setFont(FontOf(ctx_.settings, u"EditFontName", fonts.input));
  input_->setMinimumHeight(TouchHeight(factor));
  input_->SetScaleFactor(factor);
  nickView_->setFont(FontOf(ctx_.settings, u"ListFontName", fonts.list));
  const QFont text = FontOf(ctx_.settings, u"TextFontName", fonts.text);
  for (auto& [id, view] : textViews_) view->SetTextFont(text);
  shell_.SetFieldFont(input_->font());
  shell_.SetScaleFactor(factor);
  FitForTouch(menu_, factor);
  // Square buttons as tall as a finger needs.
  for (QToolButton* button : {tabMenuButton_, nickToggle_}) {
    FitForTouch(button, factor);
    button->setFixedWidth(TouchHeight(factor));
  }
}

// A file transfer's page is its progress window; every other tab shows text.
void MainWindow::OnTabOpened(TabId id, int position) {
  if (IsTransfer(ctx_.tabs.At(position)->kind)) {
    auto* page = new DccProgressWidget(ctx_.dccEngine, id, views_);
    connect(page, &DccProgressWidget::menuRequested, this, &MainWindow::ShowTabMenu);
    transferPages_[id] = page;
    views_->addWidget(page);
    return;
  }
  auto* view = new ColorTextWidget(ctx_.tabs, id, ctx_.settings, views_);
  view->SetTextFont(FontOf(ctx_.settings, u"TextFontName", fonts_.text));
  connect(view, &ColorTextWidget::menuRequested, this, &MainWindow::ShowTabMenu);
  connect(view, &ColorTextWidget::linkActivated, this, [](const QString& url) { QDesktopServices::openUrl(QUrl(url)); });
  textViews_[id] = view;
  views_->addWidget(view);
}

void MainWindow::OnTabClosed(TabId id) {
  QWidget* view = TextViewOf(id);
  if (!view) view = TransferPageOf(id);
  if (!view) return;
  textViews_.erase(id);
  transferPages_.erase(id);
  views_->removeWidget(view);
  view->deleteLater();
}

void MainWindow::OnCurrentChanged(int position) {
  const ConversationTab* tab = ctx_.tabs.At(position);
  if (!tab) return;
  if (ColorTextWidget* view = TextViewOf(tab->id)) views_->setCurrentWidget(view);
  if (DccProgressWidget* page = TransferPageOf(tab->id)) views_->setCurrentWidget(page);
  const bool channel = tab->kind == TabKind::Channel;
  nickModel_.ShowTab(channel ? tab->id : 0);
  nickToggle_->setVisible(channel);
  ShowNickPane(channel && nickPaneWanted_);
}

// The pane keeps the width the user gave this channel.
void MainWindow::ShowNickPane(bool shown) {
  const ConversationTab* tab = ctx_.tabs.At(ctx_.tabs.Current());
  shown = shown && tab && tab->kind == TabKind::Channel;
  nickView_->setVisible(shown);
  if (!shown) return;
  const int total = splitter_->width();
  const int pane = std::min(tab->nickPaneWidth, std::max(total - 40, 20));
  splitter_->setSizes({total - pane, pane});
}

void MainWindow::OnSubmitted(const QString& text) {
  SubmitInputText(ctx_, text);
  inputWhispers_->Close();
}

void MainWindow::ShowTabMenu(QPoint globalPos) {
  const ConversationTab* tab = ctx_.tabs.At(ctx_.tabs.Current());
  if (!tab) return;
  if (const int command = ExecTabMenu(tab->kind, this, factor_, globalPos)) RunTabMenuCommand(command);
}

void MainWindow::ShowNickMenu(QPoint globalPos) {
  const QModelIndex index = nickView_->indexAt(nickView_->viewport()->mapFromGlobal(globalPos));
  if (!index.isValid()) return;
  const QString nick = index.data().toString();
  if (const int command = ExecNickMenu(this, factor_, globalPos)) RunNickMenuCommand(command, nick);
}

void MainWindow::RunTabMenuCommand(int command) {
  RunTabMenuAction(ctx_, command, ctx_.tabs.Current());
  input_->setFocus();
}

void MainWindow::RunNickMenuCommand(int command, const QString& shownNick) {
  RunNickListAction(ctx_, command, shownNick);
  input_->setFocus();
}

void MainWindow::RunCommand(int command) {
  switch (command) {
    case kCmdConnect: session_.ToggleConnection(); break;
    case kCmdExit: return Exit();
    case kCmdColoursDefault:
      ResetColourPalette(ctx_);
      ApplyColours();
      break;
    case kCmdHelpContents: OpenHelp(); break;
    case kCmdHelpAbout: ShowAbout(); break;
    case kCmdOptions: RunOptions(); break;
    default:
      if (command >= kFirstFavoriteCommand && command <= kCmdFavoriteRemove) {
        if (const auto text = RunFavoriteCommand(shell_, ctx_.favorites, command)) input_->InsertAtCaret(*text);
      } else {
        ::RunMenuCommand(ctx_, command);
      }
  }
  input_->setFocus();
}

// The notify poll waits while the dialog is open; afterwards everything read from the
// settings once (fonts, colours, the notify list) is read again. The lists of ignored
// and highlighted words are not: their matchers see a changed list on the next line.
void MainWindow::RunOptions() {
  menu_->hide();
  ctx_.optionsDialogOpen = true;
  {
    OptionsDialog dialog(ctx_, shell_, factor_, this);
    shell_.Run(dialog);
  }
  ctx_.optionsDialogOpen = false;
  ApplyScale();
  ApplyColours();
  ctx_.notify.Load(ctx_.settings);
  menu_->show();
}

void MainWindow::OpenHelp() {
  const QString file = QDir(GetInstallDir(ctx_.settings)).filePath(u"help/help.html"_s);
  if (!QFileInfo::exists(file))
    shell_.ShowMessage(u"ERROR!"_s, u"Can't open help file :-("_s);
  else
    OpenHelpPage(file, factor_, this);
}

void MainWindow::ShowAbout() {
  SplashWindow splash(factor_, size(), this);
  splash.exec();
}

// Exit says nothing to the server: the connection simply closes.
void MainWindow::Exit() {
  if (ctx_.session.serverSocket != kNoSocket) session_.Disconnect();
  close();
}

void MainWindow::ApplyColours() {
  const SettingsStore& settings = ctx_.settings;
  input_->SetTextColour(ViewColour(settings, kInputColourEntry));
  SetBase(views_, SchemeColour(settings, kTextBackgroundEntry));  // the text views take it
  SetBase(nickView_, SchemeColour(settings, kNickBackgroundEntry));
  nickColours_.SetColours(SchemeColour(settings, kUserColourEntry), SchemeColour(settings, kVoiceColourEntry),
                          SchemeColour(settings, kOperatorColourEntry));
  for (auto& [id, view] : textViews_) view->viewport()->update();
}

// The tab area gives way. The keyboard's rectangle is in the window's coordinates, as
// rect() is; geometry() is the window's place on the screen.
void MainWindow::FollowKeyboard(const QRectF& keyboard, bool shown) {
  const QRect covered = keyboard.toRect().intersected(rect());
  centralWidget()->layout()->setContentsMargins(0, 0, 0, shown ? covered.height() : 0);
}
