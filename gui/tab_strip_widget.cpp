#include "gui/tab_strip_widget.h"

#include "commands/command_ids.h"
#include "commands/tab_list_menu.h"
#include "gui/popup_menu_widget.h"
#include "gui/tab_settings_dialog.h"
#include "views/tab_bar.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QToolButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// A small badge of our own per kind: what the conversation is at a glance.
QIcon KindIcon(TabKind kind, int factor) {
  static constexpr struct {
    TabKind kind;
    char16_t mark;
    QRgb colour;
  } kBadges[] = {
      {TabKind::Status, u'S', 0x3b6ea5}, {TabKind::Channel, u'#', 0x2e8b57},
      {TabKind::Chat, u'@', 0xb8860b},   {TabKind::DccChat, u'D', 0x8b3a8b},
      {TabKind::DccRecv, u'\u2193', 0x555555}, {TabKind::DccSend, u'\u2191', 0x555555},
  };
  const int size = 12 * factor;
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  for (const auto& badge : kBadges) {
    if (badge.kind != kind) continue;
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(badge.colour));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(0, 0, size, size), 2.5 * factor, 2.5 * factor);
    QFont font = painter.font();
    font.setPixelSize(10 * factor);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, 0, size, size), Qt::AlignCenter, QString(QChar(badge.mark)));
  }
  return QIcon(pixmap);
}

constexpr int kFrameMilliseconds = 16;
constexpr int kBalloonMilliseconds = 10000;
constexpr int kHoldMilliseconds = 600;
// Where the balloon stands on the strip, and how much narrower than the strip it is,
// before the screen factor.
constexpr QPoint kBalloonOffset(10, 20);
constexpr int kBalloonNarrower = 20;
constexpr int kMostShownUnread = 999;

QString UnreadText(int unread) {
  if (unread <= 0) return {};
  return unread > kMostShownUnread ? QString::number(kMostShownUnread) + u'+'
                                   : QString::number(unread);
}

// White figures on a red pill, a little smaller than the label.
QLabel* MakeUnreadBadge(const QString& text, int factor) {
  auto* badge = new QLabel(text);
  badge->setObjectName(u"unreadBadge"_s);
  badge->setAlignment(Qt::AlignCenter);
  QFont font = badge->font();
  font.setPixelSize(10 * factor);
  font.setBold(true);
  badge->setFont(font);
  badge->setStyleSheet(u"QLabel { background: #c0392b; color: white; border-radius: %1px;"
                       " padding: 0 %2px; }"_s.arg(6 * factor).arg(3 * factor));
  badge->setMinimumWidth(12 * factor);
  badge->resize(badge->sizeHint().expandedTo(badge->minimumSize()));
  return badge;
}

}  // namespace

QColor ColourFromRef(quint32 colourRef) {
  return QColor(int(colourRef & 0xff), int((colourRef >> 8) & 0xff), int((colourRef >> 16) & 0xff));
}

TabStripWidget::TabStripWidget(TabBar& tabs, QWidget* parent) : QTabBar(parent), tabs_(tabs) {
  setExpanding(false);
  setUsesScrollButtons(true);
  setElideMode(Qt::ElideNone);
  setDocumentMode(true);
  setDrawBase(false);
  connect(&tabs_, &TabBar::tabOpened, this, &TabStripWidget::OnOpened);
  connect(&tabs_, &TabBar::tabClosed, this, &TabStripWidget::OnClosed);
  connect(&tabs_, &TabBar::currentChanged, this, &TabStripWidget::OnModelCurrent);
  connect(&tabs_, &TabBar::labelColourChanged, this, &TabStripWidget::ShowLabelColour);
  connect(&tabs_, &TabBar::labelsChanged, this, [this] {
    for (int i = 0; i < count(); ++i) ShowLabel(i);
  });
  connect(this, &QTabBar::currentChanged, this, &TabStripWidget::OnUserChoice);
  unreadTimer_.setSingleShot(true);
  unreadTimer_.setInterval(kFrameMilliseconds);
  connect(&unreadTimer_, &QTimer::timeout, this, [this] {
    for (int i = 0; i < count(); ++i) ShowUnread(i);
  });
  connect(&tabs_, &TabBar::unreadChanged, this, [this] {
    if (!unreadTimer_.isActive()) unreadTimer_.start();
  });
  for (int i = 0; i < tabs_.Count(); ++i) OnOpened(tabs_.At(i)->id, i);
  OnModelCurrent(tabs_.Current());

  connect(&tabs_, &TabBar::balloonRequested, this, &TabStripWidget::OnBalloonRequested);
  balloonTimer_.setSingleShot(true);
  balloonTimer_.setTimerType(Qt::PreciseTimer);  // ten seconds, not nine and a half
  balloonTimer_.setInterval(kBalloonMilliseconds);
  connect(&balloonTimer_, &QTimer::timeout, this, &TabStripWidget::CloseBalloon);
  holdTimer_.setSingleShot(true);
  holdTimer_.setInterval(kHoldMilliseconds);
  connect(&holdTimer_, &QTimer::timeout, this, &TabStripWidget::OnHeld);
  // The scroll arrows take their own presses; those close the balloon too.
  for (QToolButton* arrow : findChildren<QToolButton*>()) arrow->installEventFilter(this);
}

// The balloon is the window's child; it goes with the strip.
TabStripWidget::~TabStripWidget() { delete balloon_; }

void TabStripWidget::SetScaleFactor(int factor) {
  factor_ = factor;
  setIconSize(QSize(12 * factor, 12 * factor));
  for (int i = 0; i < count(); ++i) {
    ShowLabel(i);
    ShowUnread(i, true);
  }
}

QLabel* TabStripWidget::UnreadBadge(int position) const {
  return qobject_cast<QLabel*>(tabButton(position, QTabBar::RightSide));
}

void TabStripWidget::OnOpened(TabId, int position) {
  const bool was = std::exchange(mirroring_, true);
  insertTab(position, QString());
  mirroring_ = was;
  ShowLabel(position);
  ShowLabelColour(position);
}

void TabStripWidget::OnClosed(TabId, int position) {
  const bool was = std::exchange(mirroring_, true);
  removeTab(position);
  setCurrentIndex(tabs_.Current());
  mirroring_ = was;
}

void TabStripWidget::OnModelCurrent(int position) {
  const bool was = std::exchange(mirroring_, true);
  setCurrentIndex(position);
  mirroring_ = was;
  for (int i = 0; i < count(); ++i) ShowLabelColour(i);  // the one left behind turns grey
}

// With "TabSets" showing neither, the label is empty and narrow, as the user asked.
void TabStripWidget::ShowLabel(int position) {
  const ConversationTab* tab = tabs_.At(position);
  if (!tab || position >= count()) return;
  const TabLabel label = tabs_.LabelOf(position);
  setTabText(position, QString(label.text).replace(u'&', u"&&"_s));
  setTabIcon(position, label.showIcon ? KindIcon(tab->kind, factor_) : QIcon());
  setTabToolTip(position, tab->name);
}

void TabStripWidget::ShowLabelColour(int position) {
  const ConversationTab* tab = tabs_.At(position);
  if (!tab || position >= count()) return;
  setTabTextColor(position, position == tabs_.Current() ? palette().color(QPalette::WindowText)
                                                        : ColourFromRef(tab->labelColour));
}

// A new badge each time its text changes: the strip lays a tab out again only when one
// of its buttons is set.
void TabStripWidget::ShowUnread(int position, bool redraw) {
  const ConversationTab* tab = tabs_.At(position);
  if (!tab || position >= count()) return;
  const QString text = UnreadText(tab->unreadLines);
  QLabel* badge = UnreadBadge(position);
  if (!redraw && (badge ? badge->text() : QString()) == text) return;
  setTabButton(position, QTabBar::RightSide, nullptr);
  delete badge;
  if (!text.isEmpty()) setTabButton(position, QTabBar::RightSide, MakeUnreadBadge(text, factor_));
}

void TabStripWidget::OnUserChoice(int position) {
  if (mirroring_ || position < 0 || position == tabs_.Current()) return;
  tabs_.ActivateTab(position);
}

// --- The balloon -------------------------------------------------------------------------

// The output path asks only for a tab in the back whose kind has balloons switched on.
void TabStripWidget::OnBalloonRequested(int position, const QString& line, quint32 colour) {
  const ConversationTab* tab = tabs_.At(position);
  if (!tab) return;
  request_ = BalloonRequest{tab->name, line, colour};
  ShowBalloon();
  balloonTimer_.start();
}

// The strip is only as tall as its labels, so the balloon is a child of the window,
// standing where it would on a strip that covered the window.
void TabStripWidget::ShowBalloon() {
  rebuildQueued_ = false;
  delete balloon_;
  QWidget* host = window();
  if (!request_ || !host) return;
  // Showing a child lays out its parents first, as Qt does: done here, the strip has its
  // final place and width before the balloon is measured, and the showing moves nothing.
  // The strip can still move with its parents later (the menu bar grows with the screen
  // factor).
  for (QWidget* parent = parentWidget(); parent; parent = parent->parentWidget()) {
    if (!parent->isWindow()) parent->installEventFilter(this);
    if (parent->layout()) parent->layout()->activate();
    if (parent == host) break;
  }
  const QPoint at = mapTo(host, kBalloonOffset * factor_);
  const int width = std::max(1, this->width() - kBalloonNarrower * factor_);
  balloon_ = new BalloonWidget(tabs_.Settings(), *request_, font(), factor_, width,
                               host->height() - at.y(), host);
  balloon_->move(at);
  connect(balloon_, &BalloonWidget::closeRequested, this, &TabStripWidget::CloseBalloon);
  balloon_->show();
  balloon_->raise();
}

// Called from the balloon's own release too, hence deleteLater.
void TabStripWidget::CloseBalloon() {
  balloonTimer_.stop();
  request_.reset();
  if (!balloon_) return;
  balloon_->hide();
  balloon_->deleteLater();
  balloon_ = nullptr;
}

// A turned screen: the same balloon, as wide as the strip now is; its time runs on.
// Rebuilt from the event loop: the strip can be resized while a balloon is being shown or
// pressed, and that balloon must not be deleted under its own feet.
void TabStripWidget::resizeEvent(QResizeEvent* event) {
  QTabBar::resizeEvent(event);
  if (!balloon_ || std::exchange(rebuildQueued_, true)) return;
  QMetaObject::invokeMethod(this, [this] {
    if (std::exchange(rebuildQueued_, false) && balloon_) ShowBalloon();
  }, Qt::QueuedConnection);
}

// The strip or a parent moved: so does the balloon.
void TabStripWidget::moveEvent(QMoveEvent* event) {
  QTabBar::moveEvent(event);
  FollowStrip();
}

void TabStripWidget::FollowStrip() {
  if (balloon_) balloon_->move(mapTo(window(), kBalloonOffset * factor_));
}

// --- Presses and the menu ----------------------------------------------------------------

void TabStripWidget::mousePressEvent(QMouseEvent* event) {
  CloseBalloon();
  if (event->button() != Qt::LeftButton) return QTabBar::mousePressEvent(event);
  pendingPress_.reset(event->clone());
  holdTimer_.start();
}

void TabStripWidget::mouseMoveEvent(QMouseEvent* event) {
  if (pendingPress_ && (event->position() - pendingPress_->position()).manhattanLength() >
                           QApplication::startDragDistance())
    holdTimer_.stop();
  QTabBar::mouseMoveEvent(event);
}

// A tap reaches the tab bar as its press and release; after a hold the release is the
// menu's.
void TabStripWidget::mouseReleaseEvent(QMouseEvent* event) {
  holdTimer_.stop();
  if (event->button() == Qt::LeftButton && !pendingPress_) return;
  if (event->button() == Qt::LeftButton) {
    QTabBar::mousePressEvent(pendingPress_.get());
    pendingPress_.reset();
  }
  QTabBar::mouseReleaseEvent(event);
}

void TabStripWidget::OnHeld() {
  const QPoint at = pendingPress_->position().toPoint();
  pendingPress_.reset();
  OpenMenu(mapToGlobal(at));
}

void TabStripWidget::contextMenuEvent(QContextMenuEvent* event) {
  holdTimer_.stop();
  pendingPress_.reset();
  OpenMenu(event->globalPos());
}

// The scroll arrows' presses, and the moves of the strip's parents.
bool TabStripWidget::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Move) FollowStrip();
  if (event->type() == QEvent::MouseButtonPress && watched->parent() == this) CloseBalloon();
  return QTabBar::eventFilter(watched, event);
}

void TabStripWidget::OpenMenu(QPoint globalPos) {
  if (const int command = ExecTabStripMenu(TabListMenu(tabs_), this, factor_, globalPos))
    RunMenuCommand(command);
}

// The dialogs are never larger than the window on a pocket screen; their rows scroll.
void TabStripWidget::RunMenuCommand(int command) {
  if (RunTabListCommand(tabs_, command)) return;
  std::unique_ptr<QDialog> dialog;
  if (command == kCmdTabSettings) dialog = std::make_unique<TabSettingsDialog>(tabs_, factor_, window());
  if (command == kCmdBalloonSettings)
    dialog = std::make_unique<BalloonSettingsDialog>(tabs_, factor_, window());
  if (!dialog) return;
  dialog->resize(dialog->sizeHint().boundedTo(window()->size()));
  dialog->exec();
}
