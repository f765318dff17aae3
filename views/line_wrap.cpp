#include "views/line_wrap.h"

#include <algorithm>
#include <vector>

FixedTextMeasure::FixedTextMeasure(int cellWidth, int boldCellWidth, int leftMargin)
    : cellWidth_(cellWidth), boldCellWidth_(boldCellWidth), leftMargin_(leftMargin) {}

qsizetype FixedTextMeasure::FitCount(QStringView text, int width, bool bold) const {
  const int cell = bold ? boldCellWidth_ : cellWidth_;
  qsizetype used = 0;
  qsizetype i = 0;
  for (; i < text.size(); ++i) {
    if (!text[i].isLowSurrogate()) used += cell;  // the pair's second half is free
    if (used > width) break;
  }
  return i;
}

int FixedTextMeasure::Width(QStringView text, bool bold) const {
  const auto chars = std::count_if(text.begin(), text.end(),
                                   [](QChar c) { return !c.isLowSurrogate(); });
  return int(chars) * (bold ? boldCellWidth_ : cellWidth_);
}

namespace {

// Only bold changes how text measures, so a row is measured in pieces of equal boldness.
struct BoldSpan {
  qsizetype start;
  bool bold;
};

std::vector<BoldSpan> BoldSpans(const ParsedLine& line) {
  std::vector<BoldSpan> spans{{0, false}};
  TextStyle style;
  for (const FormatRun& run : line.runs) {
    ApplyRun(style, run);
    if (style.bold == spans.back().bold) continue;
    if (spans.back().start != run.position) {
      spans.push_back({run.position, style.bold});
      continue;
    }
    spans.back().bold = style.bold;  // several codes at one position: the last one counts
    if (spans.size() > 1 && spans[spans.size() - 2].bold == style.bold) spans.pop_back();
  }
  return spans;
}

// Where a piece of a row starts, how far right, and in which weight.
struct Piece {
  qsizetype start;
  int x;
  bool bold;
};

class RowBreaker {
 public:
  RowBreaker(const ParsedLine& line, int width, const TextMeasure& measure)
      : text_(line.text), measure_(measure), spans_(BoldSpans(line)),
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
  std::vector<BoldSpan> spans_;
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
                                      [](qsizetype p, const BoldSpan& s) {
                                        return p < s.start;
                                      }) - spans_.begin() - 1);
  qsizetype p = start;
  int x = 0;
  for (; p < text_.size(); ++span) {
    const qsizetype end = PieceEnd(span);
    if (end <= p) continue;
    const bool bold = spans_[span].bold;
    pieces_.push_back({p, x, bold});
    const QStringView piece = text_.sliced(p, end - p);
    const qsizetype fit = measure_.FitCount(piece, available_ - x, bold);
    if (fit < piece.size()) return BreakAt(start, p + fit);
    x += measure_.Width(piece, bold);
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
                                   piece->bold);
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
