#include "gui/options_dialog.h"

#include "gui/touch_targets_widget.h"
#include "client/client_context.h"
#include "settings/settings_store.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kTitle = u"Settings";

struct PageKind {
  const char16_t* tab;
  OptionsPage* (*make)(const OptionsPageEnv&, QWidget*);
};

constexpr PageKind kPages[] = {
    {u"Connection", MakeConnectionPage}, {u"Options", MakeGeneralPage}, {u"View", MakeViewPage},
    {u"Screen", MakeScreenPage},         {u"Sounds", MakeSoundsPage},   {u"DCC", MakeDccPage},
    {u"Info", MakeInfoPage},             {u"Files", MakeFilesPage},
};

// A pocket screen shows a page's top; the rest scrolls up under the finger instead of
// being cut off. Pages never scroll sideways: their labels wrap.
QScrollArea* Scrolling(OptionsPage* page) {
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setWidget(page);
  return area;
}

}  // namespace

OptionsDialog::OptionsDialog(ClientContext& ctx, WindowShell& shell, int factor, QWidget* parent)
    : QDialog(parent), ctx_(ctx), tabs_(new QTabWidget) {
  setWindowTitle(QString::fromUtf16(kTitle));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  tabs_->setUsesScrollButtons(true);
  tabs_->setElideMode(Qt::ElideNone);
  const OptionsPageEnv env{ctx, shell, factor};
  for (const PageKind& kind : kPages) {
    OptionsPage* page = kind.make(env, nullptr);
    page->Load();
    pages_.push_back(page);
    tabs_->addTab(Scrolling(page), QString::fromUtf16(kind.tab));
  }
  layout->addWidget(tabs_, 1);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
  buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  FitForTouch(tabs_->tabBar(), factor);
  tabs_->tabBar()->setMinimumHeight(TouchHeight(factor));
  FitForTouch(buttons, factor);
  // Full screen over the window it belongs to.
  if (parent) setGeometry(QRect(parent->mapToGlobal(QPoint(0, 0)), parent->size()));
}

// One write of settings.reg for the whole dialog, however many values change.
void OptionsDialog::accept() {
  ctx_.settings.BeginBatch();
  for (OptionsPage* page : pages_) page->Save();
  ctx_.settings.EndBatch();
  QDialog::accept();
}
