#include "whispers/whisper_dictionary.h"

#include "settings/settings_paths.h"
#include "whispers/dict_file.h"
#include "whispers/dict_writer.h"

#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView kSeedWords =
    u"/join /part /msg /me /invite /list /names /whois /whowas /who /nick /quit /topic "
    u"/kick /mode /ping /notice /query /away /ison";

// Said once on Status. It holds before the options dialog offers Flush: a file deleted
// while Tolv is stopped is made afresh at the next start.
constexpr QStringView kDamagedTail =
    u" is damaged and left alone until it is flushed, or deleted before the next start";

qint8 LowByte(QChar c) { return qint8(c.unicode() & 0xff); }

// The copy is made beside the target and renamed over it, so a full disk or a crash
// leaves the old file rather than half a tree.
void CopyOver(const QString& from, const QString& to) {
  if (!QFile::exists(from)) return;
  const QString temporary = to + u".part"_s;
  QFile::remove(temporary);
  if (!QFile::copy(from, temporary)) return;
  if (std::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(to).constData()) != 0)
    QFile::remove(temporary);
}

}  // namespace

WhisperDictionary::WhisperDictionary(const SettingsStore& settings,
                                     std::function<void(const QString&)> report)
    : settings_(settings), report_(std::move(report)), writer_(std::make_unique<DictWriter>()) {}

WhisperDictionary::~WhisperDictionary() = default;

void WhisperDictionary::WaitForWrites() const {
  writer_->Drain();
  SayWriteFailure();
}

void WhisperDictionary::SayWriteFailure() const {
  if (const QString line = writer_->TakeFailure(); !line.isEmpty() && report_) report_(line);
}

QString WhisperDictionary::FilePath() const { return GetDictDir(settings_) + u"dict.dat"_s; }

QString WhisperDictionary::BackupPath() const { return GetDictDir(settings_) + u"dict_old.dat"_s; }

// A file known to be damaged is not written to until Flush or Previous replaces it: a
// new branch could hang from garbage.
bool WhisperDictionary::Open(DictFile& file, bool write) {
  SayWriteFailure();
  if (write && damageReported_) return false;
  if (!file.Open(FilePath(), write ? DictFile::Access::Write : DictFile::Access::Read)) return false;
  NoteDamage(file);
  return !file.Damaged();
}

void WhisperDictionary::NoteDamage(const DictFile& file) {
  if (!file.Damaged() || damageReported_) return;
  damageReported_ = true;
  if (report_)
    report_(u"* The whispers dictionary "_s + FilePath() + kDamagedTail.toString());
}

void WhisperDictionary::TeachText(QStringView text) {
  DictFile file(*writer_);  // one opening for the whole line
  if (!Open(file, true)) return;
  for (QStringView piece : text.tokenize(u' ')) {
    if (piece.size() >= 2) TeachInto(file, piece.first(std::min<qsizetype>(piece.size(), kMaxTaughtWord)));
    if (file.Damaged()) return NoteDamage(file);
  }
}

void WhisperDictionary::TeachWord(QStringView word) {
  DictFile file(*writer_);
  if (!Open(file, true)) return;
  TeachInto(file, word.first(std::min<qsizetype>(word.size(), kMaxTaughtWord)));
  NoteDamage(file);
}

// The new branch is appended before anything points at it: stopped half-way, the file
// holds an unreachable run instead of a link into nothing.
void WhisperDictionary::TeachInto(DictFile& file, QStringView word) {
  const qsizetype n = word.size();
  if (n < 2) return;
  if (!file.HasHeader() && !file.WriteEmptyHeader()) return;
  const int slot = word[0].unicode() & 0xff;
  if (file.Slot(slot) == 0) {
    if (const quint32 run = file.AppendRun(word.sliced(1))) file.SetSlot(slot, run);
    return;
  }
  quint32 at = file.Slot(slot);
  qsizetype i = 1;
  bool afterEnd = false;  // a character whose low byte is 0 matched an end record
  std::optional<DictRecord> record;
  while ((record = file.Read(at, afterEnd))) {
    const qint8 wanted = i < n ? LowByte(word[i]) : 0;
    if (qint8(record->character) == wanted) {
      if (i == n) return;  // already there
      afterEnd = record->character == 0;
      ++i;
      at += kDictRecordSize;
    } else if (record->alternative == 0) {
      break;
    } else {
      afterEnd = false;
      at = record->alternative;
    }
  }
  if (!record) return;  // damaged, or walked off the end behind an end record
  if (const quint32 run = file.AppendRun(word.sliced(i)))
    file.SetAlternative(at, {run, record->character});
}

void WhisperDictionary::EnsureDictionary(bool recreate) {
  if (!recreate && damageReported_) return;
  if (recreate) writer_->Drain();  // nothing may land in the emptied file
  DictFile file(*writer_);
  if (!file.Open(FilePath(), DictFile::Access::Write)) return;
  if (recreate) {
    if (!file.Truncate()) return;
    damageReported_ = false;
  }
  NoteDamage(file);
  if (file.Damaged()) return;
  if (!file.HasHeader() && !file.WriteEmptyHeader()) return;
  for (QStringView seed : kSeedWords.tokenize(u' ')) TeachInto(file, seed);
  NoteDamage(file);
}

void WhisperDictionary::BackupDictionary() {
  WaitForWrites();
  CopyOver(FilePath(), BackupPath());
}

void WhisperDictionary::RestoreDictionary() {
  WaitForWrites();
  CopyOver(BackupPath(), FilePath());
  damageReported_ = false;
}
