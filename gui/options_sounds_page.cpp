// The "Sounds" page: sounds on or off, and the file each event plays. "Play" lets the
// user hear a file before choosing it, so it plays even while sounds are off. The desktop
// notifications' switch lives here too: both tell of news in other tabs.

#include "client/client_context.h"
#include "gui/options_page.h"
#include "gui/options_page_parts.h"
#include "gui/shell_window.h"
#include "gui/touch_targets_widget.h"
#include "settings/look_options.h"
#include "settings/settings_paths.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

class SoundsPage : public OptionsPage {
 public:
  SoundsPage(const OptionsPageEnv& env, QWidget* parent) : OptionsPage(parent), env_(env) {
    QVBoxLayout* column = StartPage(this);
    enable_ = AddCheck(column, u"Enable"_s);
    column->addWidget(BuildEventList());
    column->addLayout(BuildChooser());
    desktop_ = AddCheck(column, u"Desktop notifications"_s);
    FinishPage(this, column, env.factor);
  }

  void Load() override {
    const SoundOptions options = LoadSoundOptions(env_.ctx.settings);
    enable_->setChecked(options.enabled);
    desktop_->setChecked(options.desktopNotify);
    for (int i = 0; i < kSoundEventCount; ++i) events_->topLevelItem(i)->setText(1, options.files[size_t(i)]);
    sound_->clear();
    sound_->addItem(QString());
    sound_->addItems(ListInstallFiles(env_.ctx.settings, {u"*.wav"_s}));
    events_->setCurrentItem(events_->topLevelItem(0));
    ShowSelectedRow();
  }

  void Save() override {
    SoundOptions options;
    options.enabled = enable_->isChecked();
    options.desktopNotify = desktop_->isChecked();
    for (int i = 0; i < kSoundEventCount; ++i) options.files[size_t(i)] = events_->topLevelItem(i)->text(1);
    SaveSoundOptions(env_.ctx.settings, options);
  }

 private:
  QTreeWidget* BuildEventList() {
    events_ = new QTreeWidget;
    events_->setObjectName(u"events"_s);
    events_->setHeaderLabels({u"Action"_s, u"Sound"_s});
    events_->setRootIsDecorated(false);
    events_->setUniformRowHeights(true);
    events_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    events_->setFont(TouchFont(env_.factor));
    for (const SoundEvent& event : kSoundEvents) {
      auto* item = new QTreeWidgetItem(events_, {QString::fromUtf16(event.label), QString()});
      item->setSizeHint(0, QSize(0, TouchHeight(env_.factor)));
    }
    const QFontMetrics metrics(events_->font());
    events_->setColumnWidth(0, metrics.horizontalAdvance(u"Highlight"_s) + metrics.averageCharWidth() * 3);
    // All thirteen rows at once; the page scrolls, not the list.
    events_->setFixedHeight(kSoundEventCount * TouchHeight(env_.factor) +
                            events_->header()->sizeHint().height() + 2 * events_->frameWidth());
    connect(events_, &QTreeWidget::currentItemChanged, this, [this] { ShowSelectedRow(); });
    return events_;
  }

  QHBoxLayout* BuildChooser() {
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(u"Sound:"_s));
    sound_ = new QComboBox;
    sound_->setObjectName(u"sound"_s);
    sound_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    sound_->setMinimumContentsLength(4);
    row->addWidget(sound_, 1);
    auto* play = new QPushButton(u"Play"_s);
    play->setObjectName(u"play"_s);
    row->addWidget(play);
    // Only the user's choice writes the row; showing a row's file does not.
    connect(sound_, &QComboBox::activated, this, [this] {
      if (QTreeWidgetItem* item = events_->currentItem()) item->setText(1, sound_->currentText());
    });
    connect(play, &QPushButton::clicked, this, [this] {
      if (!sound_->currentText().isEmpty())
        env_.shell.PlaySound(GetInstallDir(env_.ctx.settings) + sound_->currentText());
    });
    return row;
  }

  // The combo shows the selected row's file, or the empty entry when it is not a file
  // of the folder.
  void ShowSelectedRow() {
    const QTreeWidgetItem* item = events_->currentItem();
    sound_->setCurrentIndex(item ? std::max(sound_->findText(item->text(1)), 0) : 0);
  }

  OptionsPageEnv env_;
  QCheckBox* enable_ = nullptr;
  QCheckBox* desktop_ = nullptr;
  QTreeWidget* events_ = nullptr;
  QComboBox* sound_ = nullptr;
};

}  // namespace

OptionsPage* MakeSoundsPage(const OptionsPageEnv& env, QWidget* parent) {
  return new SoundsPage(env, parent);
}
