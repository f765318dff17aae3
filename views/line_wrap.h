#pragma once
// Wrapping a parsed line into rows. The same rule serves measuring (row counts of the
// line store), painting and hit-testing, so all three agree on where a row ends.

#include <QList>
#include <QStringView>

#include "views/formatted_text.h"

// How the view's fonts measure text. The widget implements it with its font metrics;
// tests and benchmarks use FixedTextMeasure. Text measures differently in each face
// (kFaceBold, kFaceItalic, kFaceMonospace bits), hence the argument. Widths are in pixels.
class TextMeasure {
 public:
  virtual ~TextMeasure() = default;
  // Space left free at the start of every row.
  virtual int LeftMargin() const = 0;
  // How many UTF-16 units from the start of `text` fit into `width` (0 when the width is
  // negative). The text can be very long: stop measuring once the width is exceeded, and
  // never end between the halves of a surrogate pair.
  virtual qsizetype FitCount(QStringView text, int width, int face) const = 0;
  virtual int Width(QStringView text, int face) const = 0;
};

// Every character one cell wide (a surrogate pair is one character); the bold cell for
// any face with the bold bit.
class FixedTextMeasure final : public TextMeasure {
 public:
  FixedTextMeasure(int cellWidth, int boldCellWidth, int leftMargin = 0);
  int LeftMargin() const override { return leftMargin_; }
  qsizetype FitCount(QStringView text, int width, int face) const override;
  int Width(QStringView text, int face) const override;

 private:
  int cellWidth_;
  int boldCellWidth_;
  int leftMargin_;
};

// One row of a line: [start, end) of the plain text.
struct TextRow {
  qsizetype start = 0;
  qsizetype end = 0;

  friend bool operator==(const TextRow&, const TextRow&) = default;
};

// At least one row, also for an empty line. A width <= 0 or no measurer gives the whole
// line as one row.
QList<TextRow> WrapLine(const ParsedLine& line, int width, const TextMeasure* measure);
inline QList<TextRow> WrapLine(const ParsedLine& line, int width,
                               const TextMeasure& measure) {
  return WrapLine(line, width, &measure);
}
// The number of rows WrapLine would give, without building them.
qsizetype CountRows(const ParsedLine& line, int width, const TextMeasure* measure);
