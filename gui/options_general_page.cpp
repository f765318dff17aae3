// "Options": channel behaviour, the identd responder and the IRC switches.

#include "gui/options_page_parts.h"
#include "client/client_context.h"

#include <QCheckBox>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

// The port is kept as typed until saved, where text that is no number becomes 0.
constexpr int kPortLimit = 10;

class GeneralPage : public OptionsPage {
 public:
  GeneralPage(const OptionsPageEnv& env, QWidget* parent);
  void Load() override;
  void Save() override;

 private:
  OptionsPageEnv env_;
  CheckBoxes checks_;
  QLineEdit* idUser_;
  QLineEdit* idSystem_;
  QLineEdit* idPort_;
};

GeneralPage::GeneralPage(const OptionsPageEnv& env, QWidget* parent) : OptionsPage(parent), env_(env) {
  QVBoxLayout* page = StartPage(this);
  QVBoxLayout* channel = AddGroup(page, u"Channel"_s);
  for (const FlagCheck& check : kChannelChecks) checks_[check.control] = AddCheck(channel, check);
  QVBoxLayout* identd = AddGroup(page, u"Identd"_s);
  QCheckBox* enable = checks_[kIdentdEnableCheck.control] = AddCheck(identd, kIdentdEnableCheck);
  idUser_ = AddField(env, identd, u"User ID"_s, TextLimit(u"IdUser"));
  idSystem_ = AddField(env, identd, u"System"_s, TextLimit(u"IdSystem"));
  idPort_ = AddField(env, identd, u"Port"_s, kPortLimit);
  idPort_->setInputMethodHints(Qt::ImhDigitsOnly);
  QCheckBox* show = checks_[kIdentdShowCheck.control] = AddCheck(identd, kIdentdShowCheck);
  EnableWith(enable, {idUser_, idSystem_, idPort_, show});
  QVBoxLayout* irc = AddGroup(page, u"IRC"_s);
  for (const FlagCheck& check : kIrcChecks) checks_[check.control] = AddCheck(irc, check);
  FinishPage(this, page, env.factor);
}

void GeneralPage::Load() {
  const GeneralOptions o = LoadGeneralOptions(env_.ctx.settings);
  ShowChecks(checks_, o.checks);
  idUser_->setText(o.idUser);
  idSystem_->setText(o.idSystem);
  idPort_->setText(o.idPort);
}

void GeneralPage::Save() {
  SaveGeneralOptions(env_.ctx.settings, {ReadChecks(checks_), idUser_->text(), idSystem_->text(), idPort_->text()});
}

}  // namespace

OptionsPage* MakeGeneralPage(const OptionsPageEnv& env, QWidget* parent) { return new GeneralPage(env, parent); }
