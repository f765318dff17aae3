#include "gui/folder_browser_dialog.h"

#include "gui/touch_targets_widget.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kTitle = u"Select destination path";
constexpr auto kRootLabel = u"My Device";
constexpr int kPathRole = Qt::UserRole;
constexpr int kFilledRole = Qt::UserRole + 1;

QTreeWidgetItem* MakeItem(const QString& label, const QString& path) {
  auto* item = new QTreeWidgetItem({label});
  item->setData(0, kPathRole, path);
  item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);  // until its branch is read
  return item;
}

QString Joined(const QString& folder, const QString& name) {
  return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

}  // namespace

FolderBrowserDialog::FolderBrowserDialog(const QString& initial, int factor, QWidget* parent)
    : QDialog(parent), tree_(new QTreeWidget) {
  setWindowTitle(QString::fromUtf16(kTitle));
  auto* layout = new QVBoxLayout(this);
  tree_->setHeaderHidden(true);
  tree_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  tree_->setUniformRowHeights(true);
  tree_->setStyleSheet(u"QTreeView::item { min-height: %1px; }"_s.arg(TouchHeight(factor)));
  tree_->setFont(TouchFont(factor));  // a widget with a sheet takes no font from its parent
  layout->addWidget(tree_, 1);
  auto* buttons = new QDialogButtonBox;
  QPushButton* ok = buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
  buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  connect(tree_, &QTreeWidget::itemExpanded, this, &FolderBrowserDialog::Fill);
  connect(tree_, &QTreeWidget::currentItemChanged, this,
          [ok](QTreeWidgetItem* now) { ok->setEnabled(now != nullptr); });
  QTreeWidgetItem* root = MakeItem(QString::fromUtf16(kRootLabel), QDir::rootPath());
  tree_->addTopLevelItem(root);
  root->setExpanded(true);
  tree_->setCurrentItem(root);
  if (!initial.isEmpty()) SelectPath(initial);
  ok->setEnabled(tree_->currentItem() != nullptr);
}

// Read once, when the branch first opens. Hidden folders are shown: the home folder,
// where the logs and downloads go by default, is one of them.
void FolderBrowserDialog::Fill(QTreeWidgetItem* item) {
  if (item->data(0, kFilledRole).toBool()) return;
  item->setData(0, kFilledRole, true);
  const QString folder = item->data(0, kPathRole).toString();
  const QStringList names =
      QDir(folder).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase);
  for (const QString& name : names) item->addChild(MakeItem(name, Joined(folder, name)));
  item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

bool FolderBrowserDialog::SelectPath(const QString& path) {
  const QString target = QDir::cleanPath(QDir(path).absolutePath());
  if (!QDir(target).exists()) return false;
  QTreeWidgetItem* item = tree_->topLevelItem(0);
  const QStringList parts = target.split(u'/', Qt::SkipEmptyParts);
  for (const QString& part : parts) {
    item->setExpanded(true);
    QTreeWidgetItem* next = nullptr;
    for (int i = 0; i < item->childCount() && !next; ++i)
      if (item->child(i)->text(0) == part) next = item->child(i);
    if (!next) break;  // unreadable on the way: the nearest folder shown is chosen
    item = next;
  }
  tree_->setCurrentItem(item);
  tree_->scrollToItem(item);
  return item->data(0, kPathRole).toString() == target;
}

QString FolderBrowserDialog::ChosenPath() const {
  const QTreeWidgetItem* item = tree_->currentItem();
  if (!item) return {};
  const QString path = item->data(0, kPathRole).toString();
  return path.endsWith(u'/') ? path : path + u'/';
}
