#include "views/line_store.h"

#include "views/text_decoding.h"

#include <QStringEncoder>
#include <cstring>
#include <limits>
#include <new>

#include "views/formatted_text.h"
#include "views/line_wrap.h"

namespace {
constexpr qsizetype kBlockShift = 12;  // records are allocated 4096 at a time
constexpr qsizetype kBlockSize = qsizetype(1) << kBlockShift;
constexpr qsizetype kChunkBytes = qsizetype(1) << 20;
// The top bit of a record's size marks text kept as raw UTF-16: a line holding a lone
// surrogate would not come back from UTF-8 unchanged.
constexpr quint32 kRawUtf16 = 0x80000000u;
// Longer texts are refused rather than overflowing the record's size field.
constexpr qsizetype kMaxLineUnits = qsizetype(1) << 28;
}  // namespace

struct LineStore::Record {
  quint32 chunk;
  quint32 offset;
  quint32 size;     // bytes, with kRawUtf16
  quint32 colour;
  quint32 rowsEnd;  // rows of this line and all before it
};

// Text goes into large chunks, each line in one piece; a line longer than a chunk gets a
// chunk of its own size.
struct LineStore::Arena {
  std::vector<std::unique_ptr<char[]>> chunks;
  qsizetype allocated = 0;  // bytes of all chunks
  qsizetype used = 0;       // of the last chunk
  qsizetype capacity = 0;   // of the last chunk

  char* Reserve(qsizetype bytes, Record& record) {
    if (capacity - used < bytes) {
      const qsizetype size = std::max(kChunkBytes, bytes);
      chunks.push_back(std::make_unique_for_overwrite<char[]>(size_t(size)));
      allocated += size;
      capacity = size;
      used = 0;
    }
    record.chunk = quint32(chunks.size() - 1);
    record.offset = quint32(used);
    return chunks.back().get() + used;
  }
  void Commit(qsizetype bytes) { used += bytes; }
  const char* Data(const Record& record) const {
    return chunks[record.chunk].get() + record.offset;
  }
};

LineStore::LineStore() : arena_(std::make_unique<Arena>()) {}
LineStore::~LineStore() = default;

LineStore::Record& LineStore::At(qsizetype index) {
  return blocks_[size_t(index >> kBlockShift)][index & (kBlockSize - 1)];
}

const LineStore::Record& LineStore::At(qsizetype index) const {
  return blocks_[size_t(index >> kBlockShift)][index & (kBlockSize - 1)];
}

bool LineStore::Store(QStringView text, Record& record) {
  if (!text.isValidUtf16()) {
    const qsizetype bytes = text.size() * qsizetype(sizeof(char16_t));
    std::memcpy(arena_->Reserve(bytes, record), text.data(), size_t(bytes));
    arena_->Commit(bytes);
    record.size = quint32(bytes) | kRawUtf16;
    return true;
  }
  QStringEncoder encoder(QStringEncoder::Utf8, QStringConverter::Flag::Stateless);
  char* start = arena_->Reserve(encoder.requiredSpace(text.size()), record);
  const qsizetype bytes = encoder.appendToBuffer(start, text) - start;
  arena_->Commit(bytes);
  record.size = quint32(bytes);
  return !encoder.hasError();
}

qsizetype LineStore::RowsOf(QStringView text) const {
  if (width_ <= 0 || !measure_) return 1;
  return CountRows(ParseFormatting(text), width_, measure_);
}

qsizetype LineStore::Append(QStringView text, quint32 colour) {
  if (text.size() > kMaxLineUnits) return 0;
  const qsizetype rows = RowCount() + RowsOf(text);
  if (rows > std::numeric_limits<quint32>::max()) return 0;
  try {
    if (count_ == qsizetype(blocks_.size()) * kBlockSize)
      blocks_.push_back(std::make_unique_for_overwrite<Record[]>(size_t(kBlockSize)));
    Record& record = At(count_);
    if (!Store(text, record)) return 0;
    record.colour = colour;
    record.rowsEnd = quint32(rows);
  } catch (const std::bad_alloc&) {
    return 0;  // the line is dropped, as any line that cannot be kept
  }
  ++count_;
  return rows;
}

void LineStore::Clear() {
  blocks_.clear();
  blocks_.shrink_to_fit();
  arena_ = std::make_unique<Arena>();
  count_ = 0;
}

void LineStore::SetLayout(int width, const TextMeasure* measure) {
  width_ = width;
  measure_ = measure;
  qsizetype rows = 0;
  for (qsizetype i = 0; i < count_; ++i) {
    rows += RowsOf(Line(i).text);
    At(i).rowsEnd = quint32(std::min<qsizetype>(rows, std::numeric_limits<quint32>::max()));
  }
}

qsizetype LineStore::RowCount() const { return count_ ? At(count_ - 1).rowsEnd : 0; }

StoredLine LineStore::Line(qsizetype index) const {
  if (index < 0 || index >= count_) return {};
  const Record& record = At(index);
  const char* data = arena_->Data(record);
  if (!(record.size & kRawUtf16)) return {DecodeUtf8Exactly(QByteArrayView(data, record.size)), record.colour};
  const qsizetype units = (record.size & ~kRawUtf16) / qsizetype(sizeof(char16_t));
  QString text(units, Qt::Uninitialized);
  std::memcpy(text.data(), data, size_t(units) * sizeof(char16_t));
  return {text, record.colour};
}

qsizetype LineStore::FirstRowOf(qsizetype line) const {
  if (line <= 0) return 0;
  return line > count_ ? RowCount() : At(line - 1).rowsEnd;
}

qsizetype LineStore::RowsOf(qsizetype line) const {
  if (line < 0 || line >= count_) return 0;
  return At(line).rowsEnd - FirstRowOf(line);
}

// The line of a row is the first whose cumulative count goes past it.
RowPosition LineStore::RowToLine(qsizetype row) const {
  if (row < 0 || row >= RowCount()) return {};
  qsizetype low = 0;
  qsizetype high = count_ - 1;
  while (low < high) {
    const qsizetype middle = low + (high - low) / 2;
    if (At(middle).rowsEnd > row) high = middle; else low = middle + 1;
  }
  return {low, row - FirstRowOf(low)};
}

qsizetype LineStore::MemoryBytes() const {
  return qsizetype(sizeof(*this) + sizeof(Arena)) + arena_->allocated +
         qsizetype(arena_->chunks.capacity() * sizeof(std::unique_ptr<char[]>)) +
         qsizetype(blocks_.size()) * kBlockSize * qsizetype(sizeof(Record)) +
         qsizetype(blocks_.capacity() * sizeof(std::unique_ptr<Record[]>));
}
