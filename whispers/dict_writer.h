#pragma once
// What teaching has decided about dict.dat but the disk does not hold yet, and the one
// thread that writes it. Teaching a line of new words ends in a write of its runs and a
// 5-byte write per link, several microseconds each: done on the user's thread that took
// longer than the line's walk. So teaching puts its changes here and returns; every
// walk (teaching or lookup) reads through them, so the next keystroke already offers the
// new words, and the thread writes them behind.
//
// Two batches at most: the one being written, which nobody changes, and the one being
// collected, which takes every later change. A batch goes out runs first, then links,
// then the header, so the file never holds a link into nothing; the order of batches is
// the order of teaching. (Links set through a writable mapping cost a write fault per
// page, more than a write each.) The mutex guards both batches; a walk holds it for its whole
// length, the thread only to take a batch and to let it go, never while writing.
//
// Whoever replaces or copies the file (flush, restore, backup) drains first, as does
// the destructor: no taught word is lost on the way out. A batch the disk refuses is
// dropped with everything after it (a later run may hang from it); the file is cut back
// to where it was, and the failure is told once, at the next operation.

#include "whispers/dict_file.h"
#include "whispers/dict_mapping.h"

#include <QString>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <unordered_map>

struct DictBatch {
  QString path;
  DictIdentity file;        // the file the offsets were worked out on
  quint32 runsStart = 0;    // where the runs go: the file's end when they were appended
  QByteArray runs;
  std::unordered_map<quint32, DictRecord> links;  // into records before the runs
  bool headerChanged = false;
  std::array<quint32, kDictSlots> header{};

  bool Empty() const { return runs.isEmpty() && links.empty() && !headerChanged; }
  quint32 End() const { return runsStart + quint32(runs.size()); }
};

class DictWriter {
 public:
  DictWriter() = default;
  ~DictWriter();
  DictWriter(const DictWriter&) = delete;
  DictWriter& operator=(const DictWriter&) = delete;

  std::mutex& Mutex() { return mutex_; }
  // With the mutex held: the file's mapping, kept between operations.
  DictMapping& Mapping() { return mapping_; }

  // With the mutex held.
  bool Pending() const { return !queued_.Empty() || !writing_.Empty(); }
  bool Holds(const QString& path, DictIdentity file) const;
  quint32 End() const;  // the file's end once everything is written; with Pending() only
  const std::array<quint32, kDictSlots>* Header() const;
  // The record at `offset` as it will be written, if it is still to be written.
  std::optional<DictRecord> Find(quint32 offset) const;
  // The batch that takes changes; the caller names the file when it starts one.
  DictBatch& Collecting() { return queued_; }
  // Lets the thread write what was collected (started at the first call).
  void Wake();

  // Without the mutex held: returns when nothing is left to write.
  void Drain();
  // The failure line not said yet, once per run of failures.
  QString TakeFailure();

 private:
  void Run();
  // The batch taken from the collecting side; the failure text, empty when written.
  static QString Write(const DictBatch& batch);

  std::mutex mutex_;
  std::condition_variable wake_;     // the thread: something to write, or stop
  std::condition_variable drained_;  // Drain: nothing left
  DictBatch queued_;
  DictBatch writing_;
  bool stopping_ = false;
  bool failing_ = false;
  QString unsaid_;
  DictMapping mapping_;
  std::thread thread_;
};
