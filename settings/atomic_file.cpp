#include "settings/atomic_file.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool WriteAll(int fd, const QByteArray& content) {
  const char* data = content.constData();
  qsizetype left = content.size();
  while (left > 0) {
    ssize_t n = ::write(fd, data, static_cast<size_t>(left));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    data += n;
    left -= n;
  }
  return true;
}

// The rename is only durable once the folder's entry is on disk too.
void SyncFolder(const QString& folder) {
  int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

}  // namespace

bool WriteFileAtomically(const QString& path, const QByteArray& content, int mode) {
  const QByteArray target = QFile::encodeName(path);
  const QByteArray temp = target + ".tmp-" + QByteArray::number(::getpid());
  int fd = ::open(temp.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
  if (fd < 0) return false;
  ::fchmod(fd, mode);  // the umask must not widen or narrow what the file is meant to be
  bool ok = WriteAll(fd, content) && ::fsync(fd) == 0;
  ok = (::close(fd) == 0) && ok;
  if (ok) ok = ::rename(temp.constData(), target.constData()) == 0;
  if (!ok) {
    ::unlink(temp.constData());
    return false;
  }
  SyncFolder(QFileInfo(path).absolutePath());
  return true;
}
