#include "gui/startup_notice_dialog.h"

#include <QMessageBox>

void ShowStartupNotice(const QString& text) {
  QMessageBox::warning(nullptr, QStringLiteral("Warning"), text);
}
