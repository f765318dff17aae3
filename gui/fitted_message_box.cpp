#include "gui/fitted_message_box.h"

#include <QLabel>
#include <QEvent>
#include <QLayout>

namespace {

constexpr qsizetype kLongRun = 24;
constexpr QChar kWrapHere = QChar(0x200B);  // zero width space: a break, nothing drawn

}  // namespace

bool FittedMessageBox::event(QEvent* event) {
  const bool handled = QMessageBox::event(event);
  if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show) FitWindow();
  return handled;
}

void FittedMessageBox::FitWindow() {
  const QWidget* owner = parentWidget() ? parentWidget()->window() : nullptr;
  if (!owner || width() <= owner->width()) return;
  for (QLabel* label : findChildren<QLabel*>()) label->setWordWrap(true);
  const int width = owner->width();
  setFixedSize(width, qMax(height(), layout()->totalHeightForWidth(width)));
}

QString WrappableText(const QString& text) {
  QString out;
  qsizetype run = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    run = text[i].isSpace() ? 0 : run + 1;
    out += text[i];
    if (run >= kLongRun / 2 && (text[i] == u':' || text[i] == u'/' || text[i] == u',')) {
      // Look ahead: only a run that really is long gets breaks.
      qsizetype end = i;
      while (end < text.size() && !text[end].isSpace()) ++end;
      if (run + (end - i) > kLongRun) out += kWrapHere;
    }
  }
  return out;
}
