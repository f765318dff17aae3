#include "gui/whisper_popup_widget.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

using namespace Qt::StringLiterals;

namespace {

// Sizes in units of the 240-pixel screen, multiplied by the screen factor.
constexpr int kRowUnits = 18;
constexpr int kIconColumnUnits = 18;
constexpr int kIconUnits = 16;
constexpr int kFirstWidth = 230;
constexpr int kBorder = 1;
const QColor kBackground(255, 255, 224);
const QColor kNickText(0, 0, 128);  // nicks read apart from dictionary words
const QColor kPickColour(46, 139, 87);
const QColor kCloseColour(178, 34, 34);

// Our pick icon: an arrow bending into the line, as the completion goes in.
void PaintPick(QPainter& painter, const QRectF& box) {
  QPainterPath path;
  path.moveTo(box.left() + box.width() * 0.8, box.top() + box.height() * 0.2);
  path.lineTo(box.left() + box.width() * 0.8, box.top() + box.height() * 0.6);
  path.lineTo(box.left() + box.width() * 0.25, box.top() + box.height() * 0.6);
  painter.setPen(QPen(kPickColour, box.width() / 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
  QPainterPath head;
  head.moveTo(box.left() + box.width() * 0.1, box.top() + box.height() * 0.6);
  head.lineTo(box.left() + box.width() * 0.4, box.top() + box.height() * 0.35);
  head.lineTo(box.left() + box.width() * 0.4, box.top() + box.height() * 0.85);
  head.closeSubpath();
  painter.fillPath(head, kPickColour);
}

// Our close icon: a cross in a ring.
void PaintClose(QPainter& painter, const QRectF& box) {
  const QRectF ring = box.adjusted(box.width() * 0.1, box.height() * 0.1, -box.width() * 0.1, -box.height() * 0.1);
  painter.setPen(QPen(kCloseColour, box.width() / 10));
  painter.drawEllipse(ring);
  const QRectF cross = ring.adjusted(ring.width() * 0.3, ring.height() * 0.3, -ring.width() * 0.3, -ring.height() * 0.3);
  painter.setPen(QPen(kCloseColour, box.width() / 8, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(cross.topLeft(), cross.bottomRight());
  painter.drawLine(cross.topRight(), cross.bottomLeft());
}

}  // namespace

WhisperPopup::WhisperPopup(QWidget* host, const QRect& fieldRect, int factor, const QFont& font)
    : QWidget(host), factor_(std::max(factor, 1)) {
  setObjectName(u"tolv_whisp"_s);
  setFont(font);
  setFocusPolicy(Qt::NoFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  const int height = kRowUnits * factor_;
  const int x = fieldRect.left() + fieldRect.width() * 3 / 10;
  const int y = fieldRect.top() > height ? fieldRect.top() - height : 0;
  setGeometry(x, y, kFirstWidth, height);
  raise();
  show();
}

int WhisperPopup::RowHeight() const { return kRowUnits * factor_; }

int WhisperPopup::IconColumnWidth() const { return kIconColumnUnits * factor_; }

int WhisperPopup::TextColumnWidth() const {
  const QFontMetrics metrics(font());
  int widest = 0;
  for (const WhisperRow& row : rows_) widest = std::max(widest, metrics.horizontalAdvance(row.text));
  return widest + 2 * 3 * factor_;  // a little air on both sides, as an autosized column has
}

// Every row grows the list upwards from where its bottom edge is now.
void WhisperPopup::SetRows(const QList<WhisperRow>& rows) {
  rows_ = rows;
  const int bottom = geometry().bottom();
  const int height = int(rows_.size()) * RowHeight() + 2 * kBorder;
  const int width = TextColumnWidth() + 2 * IconColumnWidth() + 4;
  setGeometry(x(), bottom + 1 - height, width, height);
  update();
}

QPoint WhisperPopup::PickPoint(int row) const {
  return {kBorder + TextColumnWidth() + IconColumnWidth() / 2, kBorder + row * RowHeight() + RowHeight() / 2};
}

QPoint WhisperPopup::ClosePoint() const {
  return {kBorder + TextColumnWidth() + IconColumnWidth() * 3 / 2, kBorder + RowHeight() / 2};
}

void WhisperPopup::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), kBackground);
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  painter.setRenderHint(QPainter::Antialiasing);
  const int textWidth = TextColumnWidth();
  const int icon = kIconUnits * factor_;
  for (int i = 0; i < rows_.size(); ++i) {
    const QRect row(kBorder, kBorder + i * RowHeight(), width() - 2 * kBorder, RowHeight());
    painter.setPen(rows_[i].nick ? kNickText : palette().color(QPalette::Text));
    painter.drawText(QRect(row.left() + 3 * factor_, row.top(), textWidth - 3 * factor_, row.height()),
                     Qt::AlignVCenter | Qt::AlignLeft, rows_[i].text);
    const int iconTop = row.top() + (row.height() - icon) / 2;
    PaintPick(painter, QRectF(row.left() + textWidth + (IconColumnWidth() - icon) / 2, iconTop, icon, icon));
    if (i == 0)
      PaintClose(painter, QRectF(row.left() + textWidth + IconColumnWidth() + (IconColumnWidth() - icon) / 2,
                                 iconTop, icon, icon));
  }
}

// Only the icons act: the text column is there to be read.
void WhisperPopup::mousePressEvent(QMouseEvent* event) {
  const QPoint at = event->position().toPoint();
  event->accept();
  const int row = (at.y() - kBorder) / RowHeight();
  if (at.y() < kBorder || row >= rows_.size()) return;
  const int column = (at.x() - kBorder - TextColumnWidth());
  if (column < 0) return;
  if (column < IconColumnWidth()) return emit picked(row);
  if (column < 2 * IconColumnWidth() && row == 0) emit closeRequested();
}
