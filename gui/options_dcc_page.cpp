// "DCC": how offers are answered, where received files go, and the address announced.

#include "gui/options_page_parts.h"
#include "client/client_context.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

class DccPage : public OptionsPage {
 public:
  DccPage(const OptionsPageEnv& env, QWidget* parent);
  void Load() override;
  void Save() override;

 private:
  OptionsPageEnv env_;
  QButtonGroup* chat_;
  QButtonGroup* send_;
  QLineEdit* path_;
  QLineEdit* address_;
  QCheckBox* auto_;
  QButtonGroup* lookup_;  // 0 "Normal", 1 "Server"
};

DccPage::DccPage(const OptionsPageEnv& env, QWidget* parent) : OptionsPage(parent), env_(env) {
  QVBoxLayout* page = StartPage(this);
  QVBoxLayout* responding = AddGroup(page, u"Responding"_s);
  chat_ = AddRadioRow(responding, u"Chat:"_s, {u"Ask", u"Auto", u"Ignore"});
  send_ = AddRadioRow(responding, u"Send:"_s, {u"Ask", u"Auto", u"Ignore"});
  path_ = AddPathRow(env, responding, u"Downloads path:"_s, TextLimit(u"DCCpath"));
  QVBoxLayout* local = AddGroup(page, u"Local Info"_s);
  address_ = AddField(env, local, u"Address:"_s, TextLimit(u"LocalHost"));
  auto_ = AddCheck(local, kDccAutoAddressCheck);
  lookup_ = AddRadioRow(local, u"Lookup:"_s, {u"Normal", u"Server"});
  // How the address is looked up matters only when it is looked up.
  EnableWith(auto_, {lookup_->button(0), lookup_->button(1)});
  FinishPage(this, page, env.factor);
}

void DccPage::Load() {
  const DccOptions o = LoadDccOptions(env_.ctx.settings);
  chat_->button(static_cast<int>(o.chat))->setChecked(true);
  send_->button(static_cast<int>(o.send))->setChecked(true);
  path_->setText(o.downloadsPath);
  address_->setText(o.localHost);
  auto_->setChecked(o.autoAddress);
  lookup_->button(o.serverLookup ? 1 : 0)->setChecked(true);
}

void DccPage::Save() {
  DccOptions o;
  o.chat = static_cast<DccPolicy>(std::max(chat_->checkedId(), 0));
  o.send = static_cast<DccPolicy>(std::max(send_->checkedId(), 0));
  o.downloadsPath = path_->text();
  o.localHost = address_->text();
  o.autoAddress = auto_->isChecked();
  o.serverLookup = lookup_->checkedId() == 1;
  SaveDccOptions(env_.ctx.settings, o);
}

}  // namespace

OptionsPage* MakeDccPage(const OptionsPageEnv& env, QWidget* parent) { return new DccPage(env, parent); }
