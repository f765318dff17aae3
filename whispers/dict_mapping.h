#pragma once
// dict.dat mapped read only for as long as it stays the same file, shared by the
// operations on it (under the writer's mutex). A mapping made for each operation paid a
// page fault for every page its walk touched, every time: most of a line's teaching.
// The mapping reaches past the end, so the pages of a growing file come into it as the
// file grows; only what the operation found on disk at opening is ever read through it.

#include "whispers/dict_file.h"

class DictMapping {
 public:
  DictMapping() = default;
  ~DictMapping() { Drop(); }
  DictMapping(const DictMapping&) = delete;
  DictMapping& operator=(const DictMapping&) = delete;

  // The first `size` bytes of the file open as `fd`, mapped anew only when it is another
  // file or has outgrown the mapping; nullptr when the system refuses.
  const char* Of(int fd, DictIdentity file, quint32 size);
  void Drop();

 private:
  char* bytes_ = nullptr;
  size_t length_ = 0;
  DictIdentity file_;
};
