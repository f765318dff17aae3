#include "whispers/dict_file.h"

#include "whispers/dict_writer.h"

#include <QFile>
#include <QtEndian>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A file can only be damaged so far: offsets are 32 bits, records follow the header.
bool IsRecordOffset(quint32 offset) {
  return offset >= kDictHeaderSize && (offset - kDictHeaderSize) % kDictRecordSize == 0;
}

ssize_t ReadFully(int fd, char* into, size_t count, off_t at) {
  ssize_t n;
  do n = ::pread(fd, into, count, at); while (n < 0 && errno == EINTR);
  return n;
}

}  // namespace

// The batch goes to the writer; it starts writing once the mutex is let go.
DictFile::~DictFile() {
  if (headerChanged_) {
    DictBatch& batch = Collect();
    batch.header = header_;
    batch.headerChanged = true;
  }
  if (lock_.owns_lock() && !writer_.Collecting().Empty()) writer_.Wake();
  if (lock_.owns_lock()) lock_.unlock();
  // Said in so many words: the mapping kept for the next operation holds on to this
  // opening, and with it the lock, after the descriptor is closed.
  if (fd_ >= 0) ::flock(fd_, LOCK_UN);
  if (fd_ >= 0) ::close(fd_);
}

// The mapping itself stays for the next operation.
void DictFile::ForgetMapping() {
  mapped_ = nullptr;
  mappedSize_ = 0;
}

bool DictFile::Open(const QString& path, Access access) {
  lock_ = std::unique_lock(writer_.Mutex());
  const int flags = (access == Access::Write ? O_RDWR : O_RDONLY) | O_CREAT | O_CLOEXEC;
  fd_ = ::open(QFile::encodeName(path).constData(), flags, 0644);
  if (fd_ < 0) return false;
  // Another program with the same dictionary folder may be teaching this very moment.
  if (::flock(fd_, (access == Access::Write ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) return false;
  struct stat info {};
  if (::fstat(fd_, &info) != 0) return false;
  path_ = path;
  identity_ = {quint64(info.st_dev), quint64(info.st_ino)};
  if (!writer_.Holds(path_, identity_)) {
    lock_.unlock();
    writer_.Drain();
    lock_.lock();
  }
  if (info.st_size >= (qint64(1) << 32)) return damaged_ = true;
  const quint32 onDisk = quint32(info.st_size);
  size_ = writer_.Pending() ? std::max(onDisk, writer_.End()) : onDisk;
  if (size_ == 0) return true;
  if (size_ < kDictHeaderSize || (size_ - kDictHeaderSize) % kDictRecordSize != 0 || !ReadHeader()) {
    damaged_ = true;
    return true;
  }
  for (quint32 offset : header_)
    if (offset != 0 && (!IsRecordOffset(offset) || offset >= size_)) damaged_ = true;
  // Without a mapping the buffer does all the reading, only slower.
  mapped_ = writer_.Mapping().Of(fd_, identity_, onDisk);
  mappedSize_ = mapped_ ? onDisk : 0;
  return true;
}

// The writer's copy when it still holds a changed one, else the file's.
bool DictFile::ReadHeader() {
  if (const auto* pending = writer_.Header()) {
    header_ = *pending;
    return true;
  }
  std::array<char, kDictHeaderSize> bytes{};
  if (ReadFully(fd_, bytes.data(), bytes.size(), 0) != qint64(bytes.size())) return false;
  for (int slot = 0; slot < kDictSlots; ++slot) header_[slot] = qFromLittleEndian<quint32>(bytes.data() + 4 * slot);
  return true;
}

bool DictFile::Fill(quint32 offset) {
  const ssize_t n = ReadFully(fd_, buffer_.data(), buffer_.size(), offset);
  bufferStart_ = offset;
  bufferLength_ = n > 0 ? quint32(n) : 0;
  return bufferLength_ >= kDictRecordSize;
}

std::optional<DictRecord> DictFile::Read(quint32 offset, bool mayEnd) {
  if (damaged_) return std::nullopt;
  if (!IsRecordOffset(offset) || quint64(offset) + kDictRecordSize > size_) {
    damaged_ = !(mayEnd && offset == size_);
    return std::nullopt;
  }
  std::optional<DictRecord> record = writer_.Find(offset);
  if (!record) record = ReadOnDisk(offset);
  if (record && record->alternative != 0 && record->alternative <= offset) {
    damaged_ = true;
    return std::nullopt;
  }
  return record;
}

std::optional<DictRecord> DictFile::ReadOnDisk(quint32 offset) {
  const char* bytes = nullptr;
  if (offset + kDictRecordSize <= mappedSize_) {
    bytes = mapped_ + offset;
  } else {
    const bool buffered = offset >= bufferStart_ &&
                          offset - bufferStart_ + kDictRecordSize <= bufferLength_;
    if (!buffered && !Fill(offset)) return std::nullopt;  // a read error: nothing to walk on
    bytes = buffer_.data() + (offset - bufferStart_);
  }
  return DictRecord{qFromLittleEndian<quint32>(bytes), quint8(bytes[4])};
}

bool DictFile::WriteAt(quint32 offset, const char* bytes, qint64 count) {
  qint64 done = 0;
  while (done < count) {
    const ssize_t n = ::pwrite(fd_, bytes + done, size_t(count - done), off_t(offset + done));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += n;
  }
  // What the buffer holds of these bytes must read back as written.
  for (qint64 i = 0; i < count; ++i) {
    const quint32 at = offset + quint32(i);
    if (at >= bufferStart_ && at < bufferStart_ + bufferLength_) buffer_[at - bufferStart_] = bytes[i];
  }
  size_ = std::max(size_, offset + quint32(count));
  return true;
}

bool DictFile::WriteEmptyHeader() {
  header_.fill(0);
  const std::array<char, kDictHeaderSize> zeros{};
  return WriteAt(0, zeros.data(), zeros.size());
}

bool DictFile::Truncate() {
  ForgetMapping();  // the emptied records are not to be read through it
  if (::ftruncate(fd_, 0) != 0) return false;
  size_ = 0;
  bufferLength_ = 0;
  writer_.Collecting() = DictBatch{};
  headerChanged_ = false;
  damaged_ = false;
  return true;
}

DictBatch& DictFile::Collect() {
  DictBatch& batch = writer_.Collecting();
  if (batch.Empty()) {
    batch.path = path_;
    batch.file = identity_;
  }
  return batch;
}

bool DictFile::SetSlot(int slot, quint32 offset) {
  header_[slot] = offset;
  headerChanged_ = true;
  return true;
}

bool DictFile::SetAlternative(quint32 offset, DictRecord record) {
  DictBatch& batch = Collect();
  if (offset >= batch.runsStart && offset < batch.End()) {  // a run still to be written
    char* bytes = batch.runs.data() + (offset - batch.runsStart);
    qToLittleEndian(record.alternative, bytes);
    bytes[4] = char(record.character);
  } else {
    batch.links[offset] = record;
  }
  return true;
}

quint32 DictFile::AppendRun(QStringView characters) {
  const qsizetype length = (characters.size() + 1) * kDictRecordSize;
  if (quint64(size_) + quint64(length) >= (quint64(1) << 32)) return 0;  // offsets are 32 bits
  DictBatch& batch = Collect();
  if (batch.runs.isEmpty()) batch.runsStart = size_;
  const quint32 start = size_;
  const qsizetype at = batch.runs.size();
  batch.runs.resize(at + length, '\0');
  for (qsizetype i = 0; i < characters.size(); ++i)
    batch.runs[at + i * kDictRecordSize + 4] = char(characters[i].unicode() & 0xff);
  size_ += quint32(length);
  return start;
}
