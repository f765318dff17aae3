// "Files": which tabs are logged and where, and the whispers' switches and upkeep.

#include "gui/options_page_parts.h"
#include "client/client_context.h"
#include "whispers/whisper_actions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

class FilesPage : public OptionsPage {
 public:
  FilesPage(const OptionsPageEnv& env, QWidget* parent);
  void Load() override;
  void Save() override;

 private:
  OptionsPageEnv env_;
  CheckBoxes checks_;
  QLineEdit* logPath_;
  QComboBox* count_;  // "1" to "15": the position plus one
};

FilesPage::FilesPage(const OptionsPageEnv& env, QWidget* parent) : OptionsPage(parent), env_(env) {
  QVBoxLayout* page = StartPage(this);
  QVBoxLayout* logs = AddGroup(page, u"Logs"_s);
  for (const FlagCheck& check : kLogChecks) checks_[check.control] = AddCheck(logs, check);
  logPath_ = AddPathRow(env, logs, u"Destination path:"_s, TextLimit(u"logpath"));
  QVBoxLayout* whispers = AddGroup(page, u"Whispers"_s);
  QCheckBox* enable = checks_[kWhispersEnableCheck.control] = AddCheck(whispers, kWhispersEnableCheck);
  for (const FlagCheck& check : kWhisperChecks) checks_[check.control] = AddCheck(whispers, check);
  count_ = AddCombo(whispers, u"No. of whispers"_s);
  for (int n = 1; n <= kMaxWhispers; ++n) count_->addItem(QString::number(n));
  EnableWith(enable, {checks_[kWhisperChecks[0].control], checks_[kWhisperChecks[1].control], count_});
  // The dictionary's upkeep acts at once, whatever becomes of the dialog.
  auto* row = new QHBoxLayout;
  auto* flush = MakeRowButton(u"Flush"_s);
  auto* previous = MakeRowButton(u"Previous"_s);
  connect(flush, &QPushButton::clicked, this, [this] { AskAndFlushWhispers(env_.ctx); });
  connect(previous, &QPushButton::clicked, this, [this] { AskAndRestoreWhispers(env_.ctx); });
  row->addWidget(flush);
  row->addWidget(previous);
  whispers->addLayout(row);
  FinishPage(this, page, env.factor);
}

void FilesPage::Load() {
  const FilesOptions o = LoadFilesOptions(env_.ctx.settings);
  ShowChecks(checks_, o.checks);
  logPath_->setText(o.logPath);
  count_->setCurrentIndex(o.whisperCount - 1);
}

void FilesPage::Save() {
  SaveFilesOptions(env_.ctx.settings, {ReadChecks(checks_), logPath_->text(), count_->currentIndex() + 1});
}

}  // namespace

OptionsPage* MakeFilesPage(const OptionsPageEnv& env, QWidget* parent) { return new FilesPage(env, parent); }
