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
// For teaching, the records present at opening are mapped for the operation rather than
// read jump by jump: a 200-word line jumps thousands of times across a big tree, and a
// system call per jump cost milliseconds. Only the pages a walk touches are read. A lookup
// jumps a few dozen times, and setting up a mapping would cost it more than it saves.
//
// Teaching writes behind: new runs collect in memory and go out in one write when the
// operation ends, then the links to them are set; a line of new words wrote twice per
// word before. (Links set through a writable mapping cost a write fault per page, more
// than a write each.) The order is kept: a run is in the file before anything points at
// it, so a crash leaves unreachable records, never a link into nothing; runs that cannot
// be written are cut off again and no link is set.

#include <QByteArray>
#include <QString>

#include <array>
#include <unordered_map>
#include <optional>

inline constexpr quint32 kDictHeaderSize = 1024;
inline constexpr quint32 kDictRecordSize = 5;
inline constexpr int kDictSlots = 256;

struct DictRecord {
  quint32 alternative = 0;  // another character at the same place; 0 = none
  quint8 character = 0;     // the low 8 bits of the UTF-16 unit; 0 ends a word
};

class DictFile {
 public:
  enum class Access { Read, Write };

  DictFile() = default;
  ~DictFile();
  DictFile(const DictFile&) = delete;
  DictFile& operator=(const DictFile&) = delete;

  // Opens (creating it when missing) and locks the file for this process alone; false
  // when it cannot be opened or another process holds it. Reads the header: a file
  // shorter than it is damaged, unless it is empty (a fresh file has no header yet).
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

  // Writes, seen at once by Read and Slot; runs and links reach the file at Flush.
  bool WriteEmptyHeader();
  bool Truncate();
  bool SetSlot(int slot, quint32 offset);
  bool SetAlternative(quint32 offset, DictRecord record);
  // Appends one record per character (its low byte) and the terminating record; returns
  // the offset of the first, or 0 when the write failed.
  quint32 AppendRun(QStringView characters);

 private:
  // Writes what teaching collected, on destruction. False when the runs could not be
  // written: the file is then as it was at opening.
  bool Flush();
  bool Fill(quint32 offset);
  void Unmap();
  bool WriteAt(quint32 offset, const char* bytes, qint64 count);

  int fd_ = -1;
  const char* mapped_ = nullptr;  // the file's first mappedSize_ bytes, read only
  quint32 mappedSize_ = 0;
  quint32 size_ = 0;
  bool damaged_ = false;
  std::array<quint32, kDictSlots> header_{};
  // The walk's window on the file: 256 records read at once.
  std::array<char, 1280> buffer_{};
  quint32 bufferStart_ = 0;
  quint32 bufferLength_ = 0;
  // Written behind: runs appended from appendStart_ on, links into the records present
  // at opening, and whether the header's slots changed.
  QByteArray appended_;
  quint32 appendStart_ = 0;
  std::unordered_map<quint32, DictRecord> links_;
  bool headerChanged_ = false;
};
