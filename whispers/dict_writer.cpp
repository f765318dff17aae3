#include "whispers/dict_writer.h"

#include <QFile>
#include <QtEndian>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Said once on Status when the disk refuses a batch (a full disk, a removed file).
constexpr QStringView kFailureHead = u"* The whispers dictionary ";
constexpr QStringView kFailureMiddle = u" could not be written (";
constexpr QStringView kFailureTail = u"); the words taught just before are not kept";
constexpr QStringView kReplaced = u"it was removed or replaced meanwhile";

QString FailureLine(const QString& path, const QString& reason) {
  return kFailureHead.toString() + path + kFailureMiddle.toString() + reason + kFailureTail.toString();
}

// 0 when all of it is written, else the error.
int WriteAll(int fd, quint32 offset, const char* bytes, qint64 count) {
  qint64 done = 0;
  while (done < count) {
    const ssize_t n = ::pwrite(fd, bytes + done, size_t(count - done), off_t(offset + done));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return errno;
    if (n == 0) return ENOSPC;
    done += n;
  }
  return 0;
}

// Runs first, so that nothing points at a record before it is there; a run cut short
// would end the file in half a record, so the file is cut back to where it ended.
int WriteBatch(int fd, const DictBatch& batch) {
  if (const int error = WriteAll(fd, batch.runsStart, batch.runs.constData(), batch.runs.size())) {
    (void)::ftruncate(fd, batch.runsStart);
    return error;
  }
  int error = 0;
  for (const auto& [offset, record] : batch.links) {
    char bytes[kDictRecordSize];
    qToLittleEndian(record.alternative, bytes);
    bytes[4] = char(record.character);
    if (const int failed = WriteAll(fd, offset, bytes, kDictRecordSize)) error = failed;
  }
  if (batch.headerChanged) {
    std::array<char, kDictHeaderSize> bytes{};
    for (int slot = 0; slot < kDictSlots; ++slot) qToLittleEndian(batch.header[slot], bytes.data() + 4 * slot);
    if (const int failed = WriteAll(fd, 0, bytes.data(), bytes.size())) error = failed;
  }
  return error;
}

}  // namespace

DictWriter::~DictWriter() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
    if (!queued_.Empty()) Wake();
  }
  wake_.notify_one();
  if (thread_.joinable()) thread_.join();  // it writes what is left before it ends
}

bool DictWriter::Holds(const QString& path, DictIdentity file) const {
  for (const DictBatch* batch : {&queued_, &writing_})
    if (!batch->Empty() && (batch->file != file || batch->path != path)) return false;
  return true;
}

quint32 DictWriter::End() const {
  quint32 end = 0;
  for (const DictBatch* batch : {&queued_, &writing_})
    if (!batch->runs.isEmpty()) end = std::max(end, batch->End());
  return end;
}

const std::array<quint32, kDictSlots>* DictWriter::Header() const {
  if (queued_.headerChanged) return &queued_.header;
  if (writing_.headerChanged) return &writing_.header;
  return nullptr;
}

// The collecting batch is newer: its links win over what is being written.
std::optional<DictRecord> DictWriter::Find(quint32 offset) const {
  for (const DictBatch* batch : {&queued_, &writing_}) {
    if (!batch->links.empty())
      if (const auto link = batch->links.find(offset); link != batch->links.end()) return link->second;
    if (offset >= batch->runsStart && offset < batch->End()) {
      const char* bytes = batch->runs.constData() + (offset - batch->runsStart);
      return DictRecord{qFromLittleEndian<quint32>(bytes), quint8(bytes[4])};
    }
  }
  return std::nullopt;
}

void DictWriter::Wake() {
  if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
  wake_.notify_one();
}

void DictWriter::Drain() {
  std::unique_lock lock(mutex_);
  if (!queued_.Empty()) Wake();
  drained_.wait(lock, [this] { return !Pending(); });
}

QString DictWriter::TakeFailure() {
  std::lock_guard lock(mutex_);
  return std::exchange(unsaid_, QString());
}

void DictWriter::Run() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return stopping_ || !queued_.Empty(); });
    if (queued_.Empty()) return;  // stopping, and everything is written
    writing_ = std::exchange(queued_, DictBatch{});
    lock.unlock();
    const QString failure = Write(writing_);
    lock.lock();
    writing_ = DictBatch{};
    if (!failure.isEmpty()) {
      queued_ = DictBatch{};  // its runs start where the lost ones would have ended
      if (!failing_) unsaid_ = failure;
    }
    failing_ = !failure.isEmpty();
    if (!Pending()) drained_.notify_all();
  }
}

// The file is opened by name for each batch: one removed or replaced since the batch
// was worked out gets nothing, rather than runs at offsets that mean nothing there.
QString DictWriter::Write(const DictBatch& batch) {
  const int fd = ::open(QFile::encodeName(batch.path).constData(), O_RDWR | O_CLOEXEC);
  if (fd < 0) return FailureLine(batch.path, qt_error_string(errno));
  QString failure;
  struct stat info {};
  if (::fstat(fd, &info) != 0) {
    failure = FailureLine(batch.path, qt_error_string(errno));
  } else if (DictIdentity{quint64(info.st_dev), quint64(info.st_ino)} != batch.file || info.st_nlink == 0 ||
             (!batch.runs.isEmpty() && info.st_size != batch.runsStart)) {
    failure = FailureLine(batch.path, kReplaced.toString());
  } else if (const int error = WriteBatch(fd, batch)) {
    failure = FailureLine(batch.path, qt_error_string(error));
  }
  ::close(fd);
  return failure;
}
