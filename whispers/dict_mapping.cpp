#include "whispers/dict_mapping.h"

#include <sys/mman.h>

namespace {

// Room to grow before the file is mapped again: a line of new words adds a few kB.
constexpr size_t kGrowth = size_t(1) << 20;

}  // namespace

const char* DictMapping::Of(int fd, DictIdentity file, quint32 size) {
  if (bytes_ && file_ == file && size <= length_) return bytes_;
  Drop();
  if (size == 0) return nullptr;
  const size_t length = size_t(size) + kGrowth;
  void* map = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, 0);
  if (map == MAP_FAILED) return nullptr;
  bytes_ = static_cast<char*>(map);
  length_ = length;
  file_ = file;
  return bytes_;
}

void DictMapping::Drop() {
  if (bytes_) ::munmap(bytes_, length_);
  bytes_ = nullptr;
  length_ = 0;
}
