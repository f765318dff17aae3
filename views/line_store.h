#pragma once
// The stored lines of one tab, oldest first, with their wrapped row counts.
//
// A tab keeps every line it is given, so a busy channel can hold millions: the text is
// kept as UTF-8 in large chunks with a small fixed record per line, and decoded to a
// QString only when a line is drawn or copied. A line is parsed and wrapped once, when it
// is appended; everything is re-wrapped only when the width or the font changes. The
// records keep cumulative row counts, so finding the line of a row is a binary search.

#include <QString>
#include <QStringView>
#include <memory>
#include <vector>

class TextMeasure;

struct StoredLine {
  QString text;         // as received, formatting codes included
  quint32 colour = 0;   // 0x00BBGGRR; 0 is the view's default colour
};

// A row of the view as the line it belongs to and the row within that line.
struct RowPosition {
  qsizetype line = -1;  // -1 when the row does not exist
  qsizetype row = 0;
};

class LineStore {
 public:
  LineStore();
  ~LineStore();
  LineStore(const LineStore&) = delete;
  LineStore& operator=(const LineStore&) = delete;

  // Returns the new row count, or 0 when the line could not be stored.
  qsizetype Append(QStringView text, quint32 colour);
  void Clear();
  // Wraps every line anew for this width and measurer (kept, not owned; null or a
  // width <= 0 gives one row per line).
  void SetLayout(int width, const TextMeasure* measure);

  qsizetype LineCount() const { return count_; }
  qsizetype RowCount() const;
  StoredLine Line(qsizetype index) const;
  qsizetype RowsOf(qsizetype line) const;
  qsizetype FirstRowOf(qsizetype line) const;
  RowPosition RowToLine(qsizetype row) const;

  // Bytes held by the store, for benchmarks.
  qsizetype MemoryBytes() const;

 private:
  struct Record;
  struct Arena;

  Record& At(qsizetype index);
  const Record& At(qsizetype index) const;
  qsizetype RowsOf(QStringView text) const;
  bool Store(QStringView text, Record& record);

  std::unique_ptr<Arena> arena_;
  std::vector<std::unique_ptr<Record[]>> blocks_;
  qsizetype count_ = 0;
  int width_ = 0;
  const TextMeasure* measure_ = nullptr;
};
