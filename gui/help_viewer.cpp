#include "gui/help_viewer.h"

#include "gui/touch_targets_widget.h"

#include <QDesktopServices>
#include <QPushButton>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {
const QString kTitle = u"Help"_s;
const QString kClose = u"Close"_s;
}  // namespace

HelpViewer::HelpViewer(const QString& file, int factor, QWidget* parent)
    : QDialog(parent), browser_(new QTextBrowser(this)) {
  setWindowTitle(kTitle);
  setAttribute(Qt::WA_DeleteOnClose);
  browser_->setFont(TouchFont(factor));
  // Links leaving the page go to whatever the desktop has; anchors stay here.
  browser_->setOpenExternalLinks(true);
  browser_->setSource(QUrl::fromLocalFile(file));

  auto* close = new QPushButton(kClose, this);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(browser_);
  layout->addWidget(close);
  FitForTouch(this, factor);
}

HelpViewer* OpenHelpPage(const QString& file, int factor, QWidget* window) {
  if (QDesktopServices::openUrl(QUrl::fromLocalFile(file))) return nullptr;
  auto* viewer = window->findChild<HelpViewer*>();
  if (!viewer) viewer = new HelpViewer(file, factor, window);
  // Over the window, the same size: on a pocket screen that is the whole screen.
  viewer->setGeometry(window->geometry());
  viewer->show();
  viewer->raise();
  viewer->activateWindow();
  return viewer;
}
