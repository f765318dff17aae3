#pragma once
// The whisper pop-up ("tolv_whisp"): a small list just above a text field with the
// completions of the word being typed. Each row has a pick icon; the first row also has
// a close icon. It sits in its host window's coordinates, grows upwards from its bottom
// edge as rows are added, and never takes the focus from the field.
//
// It decides nothing: a tap on an icon is reported, and the field's attachment
// (gui/whisper_attachment.h) puts the completion in and closes it.

#include "whispers/whisper_refresh.h"

#include <QList>
#include <QWidget>

class WhisperPopup : public QWidget {
  Q_OBJECT

 public:
  // Placed just above `fieldRect` (host coordinates), one row high, 230 pixels wide.
  WhisperPopup(QWidget* host, const QRect& fieldRect, int factor, const QFont& font);

  // Empties the list and adds the rows, growing upwards from the bottom edge.
  void SetRows(const QList<WhisperRow>& rows);
  const QList<WhisperRow>& Rows() const { return rows_; }
  int RowHeight() const;
  // Where a finger taps to pick row `row` or to close; in the pop-up's coordinates.
  QPoint PickPoint(int row) const;
  QPoint ClosePoint() const;

 signals:
  void picked(int row);
  void closeRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  int IconColumnWidth() const;
  int TextColumnWidth() const;

  int factor_;
  QList<WhisperRow> rows_;
};
