#include "whispers/dict_file.h"

#include <QFile>
#include <QtEndian>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
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

DictFile::~DictFile() {
  Flush();
  Unmap();
  if (fd_ >= 0) ::close(fd_);  // closing drops the lock
}

void DictFile::Unmap() {
  if (mapped_) ::munmap(const_cast<char*>(mapped_), mappedSize_);
  mapped_ = nullptr;
  mappedSize_ = 0;
}

bool DictFile::Open(const QString& path, Access access) {
  const int flags = (access == Access::Write ? O_RDWR : O_RDONLY) | O_CREAT | O_CLOEXEC;
  fd_ = ::open(QFile::encodeName(path).constData(), flags, 0644);
  if (fd_ < 0) return false;
  // Another program with the same dictionary folder may be teaching this very moment.
  if (::flock(fd_, (access == Access::Write ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) return false;
  struct stat info {};
  if (::fstat(fd_, &info) != 0) return false;
  if (info.st_size >= (qint64(1) << 32)) return damaged_ = true;
  size_ = quint32(info.st_size);
  if (size_ == 0) return true;
  std::array<char, kDictHeaderSize> bytes{};
  if (size_ < kDictHeaderSize || (size_ - kDictHeaderSize) % kDictRecordSize != 0 ||
      ReadFully(fd_, bytes.data(), bytes.size(), 0) != qint64(bytes.size())) {
    damaged_ = true;
    return true;
  }
  for (int slot = 0; slot < kDictSlots; ++slot) {
    header_[slot] = qFromLittleEndian<quint32>(bytes.data() + 4 * slot);
    if (header_[slot] != 0 && (!IsRecordOffset(header_[slot]) || header_[slot] >= size_))
      damaged_ = true;
  }
  // Without a mapping the buffer does all the reading, only slower.
  void* map = access == Access::Write
                  ? ::mmap(nullptr, size_, PROT_READ, MAP_SHARED, fd_, 0)
                  : MAP_FAILED;
  if (map != MAP_FAILED) {
    mapped_ = static_cast<const char*>(map);
    mappedSize_ = size_;
  }
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
  if (const auto link = links_.find(offset); link != links_.end()) return link->second;
  const char* bytes = nullptr;
  if (!appended_.isEmpty() && offset >= appendStart_) {
    bytes = appended_.constData() + (offset - appendStart_);
  } else if (offset + kDictRecordSize <= mappedSize_) {
    bytes = mapped_ + offset;
  } else {
    const bool buffered = offset >= bufferStart_ &&
                          offset - bufferStart_ + kDictRecordSize <= bufferLength_;
    if (!buffered && !Fill(offset)) return std::nullopt;  // a read error: nothing to walk on
    bytes = buffer_.data() + (offset - bufferStart_);
  }
  const DictRecord record{qFromLittleEndian<quint32>(bytes), quint8(bytes[4])};
  if (record.alternative != 0 && record.alternative <= offset) {
    damaged_ = true;
    return std::nullopt;
  }
  return record;
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

bool DictFile::Flush() {
  if (!appended_.isEmpty() && !WriteAt(appendStart_, appended_.constData(), appended_.size())) {
    // Whatever part of the runs did reach the file would end it in half a record.
    if (::ftruncate(fd_, appendStart_) == 0) size_ = appendStart_;
    bufferLength_ = 0;
    appended_.clear();
    links_.clear();
    headerChanged_ = false;
    return false;
  }
  appended_.clear();
  bool written = true;
  for (const auto& [offset, record] : links_) {
    char bytes[kDictRecordSize];
    qToLittleEndian(record.alternative, bytes);
    bytes[4] = char(record.character);
    written = WriteAt(offset, bytes, kDictRecordSize) && written;
  }
  links_.clear();
  if (headerChanged_) {
    std::array<char, kDictHeaderSize> bytes{};
    for (int slot = 0; slot < kDictSlots; ++slot) qToLittleEndian(header_[slot], bytes.data() + 4 * slot);
    written = WriteAt(0, bytes.data(), bytes.size()) && written;
    headerChanged_ = false;
  }
  return written;
}

bool DictFile::WriteEmptyHeader() {
  header_.fill(0);
  const std::array<char, kDictHeaderSize> zeros{};
  return WriteAt(0, zeros.data(), zeros.size());
}

bool DictFile::Truncate() {
  Unmap();  // a mapping past the end of a file faults when touched
  if (::ftruncate(fd_, 0) != 0) return false;
  size_ = 0;
  bufferLength_ = 0;
  appended_.clear();
  links_.clear();
  headerChanged_ = false;
  damaged_ = false;
  return true;
}

bool DictFile::SetSlot(int slot, quint32 offset) {
  header_[slot] = offset;
  headerChanged_ = true;
  return true;
}

bool DictFile::SetAlternative(quint32 offset, DictRecord record) {
  if (!appended_.isEmpty() && offset >= appendStart_) {  // a run of this operation
    char* bytes = appended_.data() + (offset - appendStart_);
    qToLittleEndian(record.alternative, bytes);
    bytes[4] = char(record.character);
  } else {
    links_[offset] = record;
  }
  return true;
}

quint32 DictFile::AppendRun(QStringView characters) {
  const qsizetype length = (characters.size() + 1) * kDictRecordSize;
  if (quint64(size_) + quint64(length) >= (quint64(1) << 32)) return 0;  // offsets are 32 bits
  if (appended_.isEmpty()) appendStart_ = size_;
  const quint32 start = size_;
  const qsizetype at = appended_.size();
  appended_.resize(at + length, '\0');
  for (qsizetype i = 0; i < characters.size(); ++i)
    appended_[at + i * kDictRecordSize + 4] = char(characters[i].unicode() & 0xff);
  size_ += quint32(length);
  return start;
}
