#include "gui/look_page_parts.h"

#include <QPainter>
#include <QPixmap>

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
