#include "views/line_wrap.h"

#include <algorithm>
#include <vector>

FixedTextMeasure::FixedTextMeasure(int cellWidth, int boldCellWidth, int leftMargin)
    : cellWidth_(cellWidth), boldCellWidth_(boldCellWidth), leftMargin_(leftMargin) {}

qsizetype FixedTextMeasure::FitCount(QStringView text, int width, int face) const {
  const int cell = face & kFaceBold ? boldCellWidth_ : cellWidth_;
  qsizetype used = 0;
  qsizetype i = 0;
  for (; i < text.size(); ++i) {
    if (!text[i].isLowSurrogate()) used += cell;  // the pair's second half is free
    if (used > width) break;
  }
  return i;
}

int FixedTextMeasure::Width(QStringView text, int face) const {
  const auto chars = std::count_if(text.begin(), text.end(),
                                   [](QChar c) { return !c.isLowSurrogate(); });
  return int(chars) * (face & kFaceBold ? boldCellWidth_ : cellWidth_);
}

namespace {

// Only the face changes how text measures, so a row is measured in pieces of one face.
struct FaceSpan {
  qsizetype start;
  int face;
};

std::vector<FaceSpan> FaceSpans(const ParsedLine& line) {
  std::vector<FaceSpan> spans{{0, 0}};
  TextStyle style;
  for (const FormatRun& run : line.runs) {
    ApplyRun(style, run);
    const int face = style.Face();
    if (face == spans.back().face) continue;
    if (spans.back().start != run.position) {
      spans.push_back({run.position, face});
      continue;
    }
    spans.back().face = face;  // several codes at one position: the last one counts
    if (spans.size() > 1 && spans[spans.size() - 2].face == face) spans.pop_back();
  }
  return spans;
}

// Where a piece of a row starts, how far right, and in which face.
struct Piece {
  qsizetype start;
  int x;
  int face;
};

class RowBreaker {
 public:
  RowBreaker(const ParsedLine& line, int width, const TextMeasure& measure)
      : text_(line.text), measure_(measure), spans_(FaceSpans(line)),
        available_(width - measure.LeftMargin()) {}

  // The end of the row that starts at `start`.
  qsizetype RowEnd(qsizetype start);

 private:
  qsizetype PieceEnd(size_t span) const;
  qsizetype BreakAt(qsizetype start, qsizetype fit) const;
  int ExtentUpTo(qsizetype position) const;
  qsizetype OneCharacter(qsizetype start) const;

  QStringView text_;
  const TextMeasure& measure_;
  std::vector<FaceSpan> spans_;
  int available_;
  std::vector<Piece> pieces_;  // of the row being built
};

qsizetype RowBreaker::PieceEnd(size_t span) const {
  return span + 1 < spans_.size() ? std::min(spans_[span + 1].start, text_.size())
                                  : text_.size();
}

// Each piece starts where the previous one ended, with what is left of the width.
qsizetype RowBreaker::RowEnd(qsizetype start) {
  pieces_.clear();
  auto span = size_t(std::upper_bound(spans_.begin(), spans_.end(), start,
                                      [](qsizetype p, const FaceSpan& s) {
                                        return p < s.start;
                                      }) - spans_.begin() - 1);
  qsizetype p = start;
  int x = 0;
  for (; p < text_.size(); ++span) {
    const qsizetype end = PieceEnd(span);
    if (end <= p) continue;
    const int face = spans_[span].face;
    pieces_.push_back({p, x, face});
    const QStringView piece = text_.sliced(p, end - p);
    const qsizetype fit = measure_.FitCount(piece, available_ - x, face);
    if (fit < piece.size()) return BreakAt(start, p + fit);
    x += measure_.Width(piece, face);
    p = end;
  }
  return p;
}

// Walks back from the fit point for a blank, which then ends the row. The walk gives up
// once the row would be no more than half full, and the word is split at the fit point
// instead. Row extents only shrink walking back, so the last blank decides it.
qsizetype RowBreaker::BreakAt(qsizetype start, qsizetype fit) const {
  if (fit > start && text_[fit - 1].isHighSurrogate() && text_[fit].isLowSurrogate()) --fit;
  qsizetype blank = fit;
  while (blank >= start && text_[blank] != u' ') --blank;
  qsizetype end = fit;
  if (blank >= start && qint64(ExtentUpTo(blank)) * 2 > available_) end = blank + 1;
  return end > start ? end : OneCharacter(start);
}

int RowBreaker::ExtentUpTo(qsizetype position) const {
  auto piece = pieces_.rbegin();
  while (piece->start > position) ++piece;
  return piece->x + measure_.Width(text_.sliced(piece->start, position - piece->start),
                                   piece->face);
}

// Nothing fits at all: the row still takes one character so wrapping always ends.
qsizetype RowBreaker::OneCharacter(qsizetype start) const {
  const bool pair = start + 1 < text_.size() && text_[start].isHighSurrogate() &&
                    text_[start + 1].isLowSurrogate();
  return start + (pair ? 2 : 1);
}

template <typename OnRow>
void ForEachRow(const ParsedLine& line, int width, const TextMeasure* measure,
                OnRow onRow) {
  const qsizetype size = line.text.size();
  if (width <= 0 || !measure || size == 0) {
    onRow(TextRow{0, size});
    return;
  }
  RowBreaker breaker(line, width, *measure);
  for (qsizetype start = 0; start < size;) {
    const qsizetype end = breaker.RowEnd(start);
    onRow(TextRow{start, end});
    start = end;
  }
}

}  // namespace

QList<TextRow> WrapLine(const ParsedLine& line, int width, const TextMeasure* measure) {
  QList<TextRow> rows;
  ForEachRow(line, width, measure, [&](TextRow row) { rows.append(row); });
  return rows;
}

qsizetype CountRows(const ParsedLine& line, int width, const TextMeasure* measure) {
  qsizetype count = 0;
  ForEachRow(line, width, measure, [&](TextRow) { ++count; });
  return count;
}
