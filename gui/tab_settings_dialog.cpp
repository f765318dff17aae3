#include "gui/tab_settings_dialog.h"

#include "gui/touch_targets_widget.h"
#include "settings/settings_store.h"
#include "views/tab_bar.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kTabSettingsTitle = u"Tab Settings";
constexpr auto kBalloonSettingsTitle = u"Baloon Settings";
constexpr auto kBalloonsLabel = u"Show Baloons in Tabs:";
constexpr int kIndicatorSize = 14;  // pixels, before the screen factor

constexpr struct {
  TabLabelShow show;
  const char16_t* text;
} kLabelChoices[] = {
    {TabLabelShow::Icon, u"Icon"}, {TabLabelShow::Text, u"Text"}, {TabLabelShow::Both, u"Both"}};

quint32 TabSets(const TabBar& tabs) {
  return static_cast<quint32>(tabs.Settings().GetDword(u"TabSets"));
}

void SetTabSets(TabBar& tabs, quint32 value) {
  tabs.Settings().SetDword(u"TabSets", static_cast<qint32>(value));
}

// The rows go into a page that scrolls up and down when the screen is shorter than they
// are; OK and Cancel stay in sight below it.
QScrollArea* AddScrollingPage(QDialog* dialog, QVBoxLayout* layout) {
  auto* scroll = new QScrollArea(dialog);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setWidget(new QWidget);
  layout->addWidget(scroll, 1);
  return scroll;
}

// Once filled, the page is never narrower than its rows and a scroll bar beside them.
void KeepPageWidth(QScrollArea* scroll) {
  scroll->setMinimumWidth(scroll->widget()->sizeHint().width() +
                          scroll->verticalScrollBar()->sizeHint().width());
}

// Texts rather than standard buttons, whose labels change with the desktop ("&OK").
void AddButtons(QDialog* dialog, QVBoxLayout* layout) {
  auto* buttons = new QDialogButtonBox(dialog);
  buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole)->setDefault(true);
  buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
  QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  layout->addWidget(buttons);
}

// The style draws the round and square marks at one size for every screen; a finger
// needs them to grow with the text.
void ScaleIndicators(QDialog* dialog, int factor) {
  dialog->setStyleSheet(u"QRadioButton::indicator, QCheckBox::indicator { width: %1px; height: %1px; }"_s
                            .arg(kIndicatorSize * std::max(1, factor)));
}

}  // namespace

// One row per kind under the three choices as column heads: the rows stay narrow enough
// for a 240-pixel screen. A kind whose pair is 0 (neither) starts with no choice made and
// keeps 0 unless the user makes one.
TabSettingsDialog::TabSettingsDialog(TabBar& tabs, int factor, QWidget* parent)
    : QDialog(parent), tabs_(tabs) {
  setWindowTitle(QString::fromUtf16(kTabSettingsTitle));
  auto* layout = new QVBoxLayout(this);
  QScrollArea* scroll = AddScrollingPage(this, layout);
  auto* grid = new QGridLayout(scroll->widget());
  for (int column = 1; const auto& choice : kLabelChoices)
    grid->addWidget(new QLabel(QString::fromUtf16(choice.text)), 0, column++, Qt::AlignCenter);
  const quint32 sets = TabSets(tabs_);
  int row = 1;
  for (const TabSetsKind& kind : kTabSetsKinds) {
    const QString name = QString::fromUtf16(kind.name);
    grid->addWidget(new QLabel(name), row, 0);
    auto* group = new QButtonGroup(this);
    for (int column = 1; const auto& choice : kLabelChoices) {
      auto* radio = new QRadioButton;
      radio->setAccessibleName(name + u' ' + QString::fromUtf16(choice.text));
      group->addButton(radio, int(choice.show));
      radio->setChecked(LabelShowOf(sets, kind.kind) == choice.show);
      grid->addWidget(radio, row, column++, Qt::AlignCenter);
    }
    groups_[kind.kind] = group;
    ++row;
  }
  grid->setRowStretch(row, 1);
  AddButtons(this, layout);
  FitForTouch(this, factor);
  ScaleIndicators(this, factor);
  KeepPageWidth(scroll);
}

QAbstractButton* TabSettingsDialog::Choice(TabKind kind, TabLabelShow show) const {
  const auto found = groups_.find(kind);
  return found == groups_.end() ? nullptr : found->second->button(int(show));
}

void TabSettingsDialog::accept() {
  quint32 sets = TabSets(tabs_);
  for (const auto& [kind, group] : groups_)
    if (group->checkedId() >= 0) sets = WithLabelShow(sets, kind, TabLabelShow(group->checkedId()));
  SetTabSets(tabs_, sets);
  tabs_.RefreshTabLabels();
  QDialog::accept();
}

BalloonSettingsDialog::BalloonSettingsDialog(TabBar& tabs, int factor, QWidget* parent)
    : QDialog(parent), tabs_(tabs) {
  setWindowTitle(QString::fromUtf16(kBalloonSettingsTitle));
  auto* layout = new QVBoxLayout(this);
  QScrollArea* scroll = AddScrollingPage(this, layout);
  auto* column = new QVBoxLayout(scroll->widget());
  column->addWidget(new QLabel(QString::fromUtf16(kBalloonsLabel)));
  const quint32 sets = TabSets(tabs_);
  for (const TabSetsKind& kind : kTabSetsKinds) {
    auto* box = new QCheckBox(QString::fromUtf16(kind.name));
    box->setChecked(BalloonOn(sets, kind.kind));
    column->addWidget(box);
    switches_[kind.kind] = box;
  }
  column->addStretch(1);
  AddButtons(this, layout);
  FitForTouch(this, factor);
  ScaleIndicators(this, factor);
  KeepPageWidth(scroll);
}

QCheckBox* BalloonSettingsDialog::Switch(TabKind kind) const {
  const auto found = switches_.find(kind);
  return found == switches_.end() ? nullptr : found->second;
}

void BalloonSettingsDialog::accept() {
  quint32 sets = TabSets(tabs_);
  for (const auto& [kind, box] : switches_) sets = WithBalloon(sets, kind, box->isChecked());
  SetTabSets(tabs_, sets);
  QDialog::accept();
}
