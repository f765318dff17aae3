// "Info": time stamps, the part and quit messages, and the ignore, highlight and notify
// lists, one inner tab each.

#include "gui/options_page_parts.h"
#include "gui/shell_window.h"
#include "client/client_context.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kAddLabel = u"Enter a nickname:";
constexpr auto kDeleteTitle = u"Delete from list";
constexpr auto kDeleteText = u"Are you sure?";
constexpr size_t kNotifyList = 2;

struct ListControls {
  QCheckBox* enable = nullptr;
  QComboBox* entries = nullptr;
};

class InfoPage : public OptionsPage {
 public:
  InfoPage(const OptionsPageEnv& env, QWidget* parent);
  void Load() override;
  void Save() override;

 private:
  QWidget* MakeListTab(size_t list);
  void Add(size_t list);
  void Delete(size_t list);

  OptionsPageEnv env_;
  QCheckBox* timestamps_;
  QLineEdit* partMsg_;
  QLineEdit* quitMsg_;
  std::array<ListControls, kInfoLists.size()> lists_;
  QCheckBox* whois_ = nullptr;
};

InfoPage::InfoPage(const OptionsPageEnv& env, QWidget* parent) : OptionsPage(parent), env_(env) {
  QVBoxLayout* page = StartPage(this);
  QVBoxLayout* messages = AddGroup(page, u"Messages"_s);
  timestamps_ = AddCheck(messages, u"Timestamps"_s);
  partMsg_ = AddField(env, messages, u"Part msg"_s, TextLimit(u"partmsg"));
  quitMsg_ = AddField(env, messages, u"Quit msg"_s, TextLimit(u"quitmsg"));
  auto* tabs = new QTabWidget;
  for (size_t i = 0; i < kInfoLists.size(); ++i) tabs->addTab(MakeListTab(i), QString::fromUtf16(kInfoLists[i].tab));
  page->addWidget(tabs);
  FinishPage(this, page, env.factor);
}

// "Enable", the entries, "/Whois" on the notify tab, then "Add" and "Del"; the box
// greys everything else of its tab.
QWidget* InfoPage::MakeListTab(size_t list) {
  auto* tab = new QWidget;
  auto* layout = new QVBoxLayout(tab);
  ListControls& c = lists_[list];
  c.enable = AddCheck(layout, u"Enable"_s);
  c.entries = AddCombo(layout, {});
  auto* row = new QHBoxLayout;
  auto* add = MakeRowButton(u"Add"_s);
  auto* del = MakeRowButton(u"Del"_s);
  row->addWidget(add);
  row->addWidget(del);
  connect(add, &QPushButton::clicked, this, [this, list] { Add(list); });
  connect(del, &QPushButton::clicked, this, [this, list] { Delete(list); });
  if (list == kNotifyList) {
    whois_ = AddCheck(layout, u"/Whois"_s);
    EnableWith(c.enable, {c.entries, whois_, add, del});
  } else {
    EnableWith(c.enable, {c.entries, add, del});
  }
  layout->addLayout(row);
  layout->addStretch();
  return tab;
}

void InfoPage::Load() {
  const InfoOptions o = LoadInfoOptions(env_.ctx.settings);
  timestamps_->setChecked(o.timestamps);
  partMsg_->setText(o.partMsg);
  quitMsg_->setText(o.quitMsg);
  for (size_t i = 0; i < lists_.size(); ++i) {
    lists_[i].enable->setChecked(o.enabled[i]);
    lists_[i].entries->clear();
    lists_[i].entries->addItems(o.entries[i]);
  }
  whois_->setChecked(o.notifyWhois);
}

void InfoPage::Save() {
  InfoOptions o;
  o.timestamps = timestamps_->isChecked();
  o.partMsg = partMsg_->text();
  o.quitMsg = quitMsg_->text();
  for (size_t i = 0; i < lists_.size(); ++i) {
    o.enabled[i] = lists_[i].enable->isChecked();
    for (int row = 0; row < lists_[i].entries->count(); ++row) o.entries[i].append(lists_[i].entries->itemText(row));
  }
  o.notifyWhois = whois_->isChecked();
  SaveInfoOptions(env_.ctx.settings, o);
}

void InfoPage::Add(size_t list) {
  const auto text = env_.shell.AskText(QString::fromUtf16(kInfoLists[list].promptTitle),
                                       QString::fromUtf16(kAddLabel), {}, EmptyAnswer::Refused);
  if (!text) return;
  QComboBox* combo = lists_[list].entries;
  QStringList entries;
  for (int row = 0; row < combo->count(); ++row) entries.append(combo->itemText(row));
  const int at = AddListEntry(entries, *text);
  if (at < 0) return;
  if (at == combo->count()) combo->addItem(entries[at]);
  combo->setCurrentIndex(at);
}

void InfoPage::Delete(size_t list) {
  QComboBox* combo = lists_[list].entries;
  if (combo->currentIndex() < 0) return;
  if (!env_.shell.AskYesNo(QString::fromUtf16(kDeleteTitle), QString::fromUtf16(kDeleteText))) return;
  combo->removeItem(combo->currentIndex());
  combo->setCurrentIndex(combo->count() > 0 ? 0 : -1);
}

}  // namespace

OptionsPage* MakeInfoPage(const OptionsPageEnv& env, QWidget* parent) { return new InfoPage(env, parent); }
