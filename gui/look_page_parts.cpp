#include "gui/look_page_parts.h"

#include "gui/touch_targets_widget.h"

#include <QComboBox>
#include <QFrame>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QScrollArea>
#include <QSlider>
#include <QVBoxLayout>

QColor ColourOf(quint32 colourRef) {
  return QColor(int(colourRef & 0xff), int((colourRef >> 8) & 0xff), int((colourRef >> 16) & 0xff));
}

quint32 ColourRefOf(const QColor& colour) {
  return quint32(colour.red()) | quint32(colour.green()) << 8 | quint32(colour.blue()) << 16;
}

QIcon SwatchIcon(quint32 colourRef, int side) {
  QPixmap pixmap(side, side);
  pixmap.fill(ColourOf(colourRef));
  QPainter painter(&pixmap);
  painter.setPen(QColor(64, 64, 64));
  painter.drawRect(0, 0, side - 1, side - 1);
  return QIcon(pixmap);
}

QVBoxLayout* ScrollingColumn(QWidget* page, int factor) {
  auto* outer = new QVBoxLayout(page);
  outer->setContentsMargins(0, 0, 0, 0);
  auto* scroll = new QScrollArea(page);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  outer->addWidget(scroll);
  auto* body = new QWidget(scroll);
  scroll->setWidget(body);
  auto* column = new QVBoxLayout(body);
  const int margin = 4 * factor;
  column->setContentsMargins(margin, margin, margin, margin);
  column->setSpacing(margin);
  return column;
}

void FitControlsForTouch(QWidget* root, int factor) {
  FitForTouch(root, factor);
  const int height = TouchHeight(factor);
  for (QComboBox* combo : root->findChildren<QComboBox*>()) combo->setMinimumHeight(height);
  for (QLineEdit* field : root->findChildren<QLineEdit*>()) field->setMinimumHeight(height);
  for (QSlider* slider : root->findChildren<QSlider*>()) slider->setMinimumHeight(height);
}
