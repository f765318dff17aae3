#pragma once
// dict.dat for the length of one operation. The file is a header of 256 little-endian
// 32-bit offsets (one slot per low byte of a word's first character) followed by 5-byte
// records: a 32-bit alternative offset, low byte first, and one character byte (0 ends
// a word). It is never read whole: a walk reads through one small buffer, refilled at
// each jump, so a lookup on every keystroke costs a few reads however big the tree is.
//
// The file also checks what it reads: an offset outside the records, a record cut short,
// a file shorter than its header, or an alternative that points back (branches are only
// ever appended, so every link points forward) marks it damaged, and the walk stops
// there instead of following garbage. As every step goes forward, no walk can loop.
//
// The records on disk at opening are read through a mapping kept between operations
// (dict_mapping.h) rather than jump by jump: a 200-word line jumps thousands of times
// across a big tree, and a system call per jump cost milliseconds. Only the pages a walk
// touches are read. Without a mapping the buffer reads, only slower.
//
// Teaching writes behind (see dict_writer.h): new runs, links and slots go into the
// writer's collecting batch, and every read looks there first, so what is taught is seen
// at once. The operation holds the writer's mutex from opening to the end.

#include <QByteArray>
#include <QString>

#include <array>
#include <mutex>
#include <optional>

inline constexpr quint32 kDictHeaderSize = 1024;
inline constexpr quint32 kDictRecordSize = 5;
inline constexpr int kDictSlots = 256;

struct DictRecord {
  quint32 alternative = 0;  // another character at the same place; 0 = none
  quint8 character = 0;     // the low 8 bits of the UTF-16 unit; 0 ends a word
};

class DictWriter;
struct DictBatch;

// Which file a batch of changes was worked out on.
struct DictIdentity {
  quint64 device = 0;
  quint64 inode = 0;
  friend bool operator==(const DictIdentity&, const DictIdentity&) = default;
};

class DictFile {
 public:
  enum class Access { Read, Write };

  explicit DictFile(DictWriter& writer) : writer_(writer) {}
  ~DictFile();
  DictFile(const DictFile&) = delete;
  DictFile& operator=(const DictFile&) = delete;

  // Opens (creating it when missing) and locks the file against other processes; false
  // when it cannot be opened or another process holds it. Reads the header: a file
  // shorter than it is damaged, unless it is empty (a fresh file has no header yet).
  // What the writer still holds for another file (the folder changed, the file was
  // replaced) is written out first.
  bool Open(const QString& path, Access access);
  bool Damaged() const { return damaged_; }
  // A walker that met garbage says so here.
  void MarkDamaged() { damaged_ = true; }
  quint32 Size() const { return size_; }
  bool HasHeader() const { return size_ >= kDictHeaderSize; }
  quint32 Slot(int slot) const { return header_[slot]; }

  // The record at `offset`; nothing when the offset is not a record of this file or the
  // record links backwards (the file is then damaged, unless `mayEnd` says that running
  // off its end is allowed there).
  std::optional<DictRecord> Read(quint32 offset, bool mayEnd = false);

  // Written at once, with nothing left for the writer.
  bool WriteEmptyHeader();
  bool Truncate();
  // Handed to the writer, seen at once by Read and Slot.
  bool SetSlot(int slot, quint32 offset);
  bool SetAlternative(quint32 offset, DictRecord record);
  // Appends one record per character (its low byte) and the terminating record; returns
  // the offset of the first, or 0 when the write failed.
  quint32 AppendRun(QStringView characters);

 private:
  // The writer's collecting batch, made this file's when it starts.
  DictBatch& Collect();
  bool ReadHeader();
  std::optional<DictRecord> ReadOnDisk(quint32 offset);
  bool Fill(quint32 offset);
  void ForgetMapping();
  bool WriteAt(quint32 offset, const char* bytes, qint64 count);

  DictWriter& writer_;
  std::unique_lock<std::mutex> lock_;
  QString path_;
  DictIdentity identity_;
  int fd_ = -1;
  const char* mapped_ = nullptr;  // the file's first mappedSize_ bytes, read only, not ours
  quint32 mappedSize_ = 0;
  quint32 size_ = 0;  // with what the writer still holds
  bool damaged_ = false;
  std::array<quint32, kDictSlots> header_{};
  bool headerChanged_ = false;
  // The walk's window on the file: 256 records read at once.
  std::array<char, 1280> buffer_{};
  quint32 bufferStart_ = 0;
  quint32 bufferLength_ = 0;
};
