#include "gui/touch_targets_widget.h"

#include <QAbstractButton>
#include <QApplication>
#include <QBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

namespace {

// The least height travels with the widget, so one style serves every factor.
constexpr char kTouchHeightProperty[] = "tolvTouchHeight";

// Menu items have no height of their own to set: the style is asked for their size.
class TouchStyle : public QProxyStyle {
 public:
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                         const QWidget* widget) const override {
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    const bool item = type == CT_MenuBarItem ||
                      (type == CT_MenuItem &&
                       static_cast<const QStyleOptionMenuItem*>(option)->menuItemType !=
                           QStyleOptionMenuItem::Separator);
    if (item && widget)
      size.setHeight(qMax(size.height(), widget->property(kTouchHeightProperty).toInt()));
    return size;
  }
};

// One style for the program's life; widgets do not own the style they are given.
QStyle* SharedTouchStyle() {
  static QPointer<QStyle> style;
  if (!style) {
    style = new TouchStyle;
    style->setParent(QCoreApplication::instance());
  }
  return style;
}

void FitMenu(QWidget* menu, int factor) {
  menu->setFont(TouchFont(factor));
  menu->setProperty(kTouchHeightProperty, TouchHeight(factor));
  if (menu->style() != SharedTouchStyle()) menu->setStyle(SharedTouchStyle());
}

void FitButton(QAbstractButton* button, int factor) {
  button->setFont(TouchFont(factor));
  button->setMinimumHeight(TouchHeight(factor));
}

}  // namespace

QFont TouchFont(int factor) {
  QFont font = QApplication::font();
  font.setPixelSize(13 * (factor < 1 ? 1 : factor));
  return font;
}

void FitForTouch(QWidget* root, int factor) {
  if (!root) return;
  if (qobject_cast<QMenu*>(root) || qobject_cast<QMenuBar*>(root))
    FitMenu(root, factor);
  else if (auto* button = qobject_cast<QAbstractButton*>(root))
    FitButton(button, factor);
  else
    root->setFont(TouchFont(factor));
  for (QMenu* menu : root->findChildren<QMenu*>()) FitMenu(menu, factor);
  for (QAbstractButton* button : root->findChildren<QAbstractButton*>()) FitButton(button, factor);
}

QLabel* AddWrappedLabel(QVBoxLayout* layout, const QString& text, QWidget* buddy) {
  auto* label = new QLabel(text);
  label->setWordWrap(true);
  if (buddy) label->setBuddy(buddy);
  layout->addWidget(label);
  return label;
}
