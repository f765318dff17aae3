#include "dcc/dcc_transfer.h"

#include <QFile>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int kRefreshMilliseconds = 500;  // the progress fields, while bytes move

}  // namespace

DccTransfer::DccTransfer(TabId tabId, bool isSending, QObject* parent)
    : QObject(parent), tab(tabId), sending(isSending) {
  refresh_.setInterval(kRefreshMilliseconds);
  connect(&refresh_, &QTimer::timeout, this, &DccTransfer::changed);
}

// The pump goes first: its thread writes into the file until it has stopped.
DccTransfer::~DccTransfer() {
  if (pump_) {
    pump_->Stop();
    pump_->Join();
    position_ = std::max(position_, pump_->Position());
    pump_.reset();
  }
  CloseFile();
}

// A connection that never came leaves no empty file behind in the download folder.
void DccTransfer::CloseFile() {
  if (file < 0) return;
  ::close(std::exchange(file, -1));
  if (createdFile && position_ == 0 && pump_ == nullptr)
    QFile::remove(folder + localName);
}

qint64 DccTransfer::Position() const {
  return pump_ && state_ == TransferState::Transferring ? pump_->Position() : position_;
}

qint64 DccTransfer::Rate() const {
  if (!flowing_.isValid()) return 0;
  return (Position() - startPosition_) * 1000 / std::max<qint64>(flowing_.elapsed(), 1);
}

qint64 DccTransfer::SecondsLeft() const {
  const qint64 rate = Rate();
  return rate > 0 ? (size - Position()) / rate : -1;
}

void DccTransfer::SetStatus(const QString& status) {
  status_ = status;
  emit changed();
}

void DccTransfer::SetPosition(qint64 position) {
  position_ = startPosition_ = position;
  if (pump_) pump_->SetStart(position);
  emit changed();
}

void DccTransfer::Start(PumpPlan plan) {
  plan.sending = sending;
  plan.file = file;
  plan.start = startPosition_ = position_;
  plan.size = size;
  plan.packetSize = packetSize;
  pump_ = std::make_unique<DccPump>();
  // Posted to this object: if it is gone by then, Qt drops the call with it.
  pump_->Start(
      plan, [this] { QMetaObject::invokeMethod(this, &DccTransfer::Linked, Qt::QueuedConnection); },
      [this](PumpResult result) {
        QMetaObject::invokeMethod(this, [this, result] { Finished(result); }, Qt::QueuedConnection);
      });
  emit changed();  // the record is complete now: its page can show it while it waits
}

void DccTransfer::Linked() {
  if (state_ != TransferState::Waiting) return;
  state_ = TransferState::Transferring;
  flowing_.start();
  refresh_.start();
  emit changed();
}

void DccTransfer::Finished(PumpResult result) {
  refresh_.stop();
  position_ = pump_->Position();
  pump_.reset();  // the thread has reported: this only joins it
  CloseFile();
  const bool closing = state_ == TransferState::Closing;
  if (state_ != TransferState::Cancelled) {
    state_ = TransferState::Finished;
    status_ = EndText(result);
  }
  emit changed();
  emit ended(status_);
  if (closing) emit closeTab();
}

QString DccTransfer::EndText(PumpResult result) const {
  switch (result.end) {
    case PumpEnd::Complete: return QString::fromUtf16(sending ? kStatusSent : kStatusReceived);
    case PumpEnd::NoPeer: return QString::fromUtf16(sending ? kStatusSendTimeout : kStatusConnectionError);
    case PumpEnd::ConnectFailed: return QString::fromUtf16(kStatusConnectionError);
    case PumpEnd::FileError: return u"File error: "_s + QString::number(result.error);
    case PumpEnd::Cancelled: return QString::fromUtf16(kStatusCancelled);
    default: return QString::fromUtf16(kStatusIncomplete);
  }
}

void DccTransfer::Cancel() {
  if (state_ != TransferState::Waiting && state_ != TransferState::Transferring) return;
  state_ = TransferState::Cancelled;
  status_ = QString::fromUtf16(kStatusCancelled);
  if (pump_) return pump_->Stop();  // Finished follows from the pump's thread
  CloseFile();
  emit changed();
  emit ended(status_);
}

void DccTransfer::Fail(const QString& why) {
  pump_.reset();
  CloseFile();
  state_ = TransferState::Finished;
  status_ = why;
  emit changed();
  emit ended(status_);
}

bool DccTransfer::Close() {
  status_ = QString::fromUtf16(kStatusClosing);
  if (!pump_ || (state_ != TransferState::Transferring && state_ != TransferState::Waiting)) return true;
  if (state_ == TransferState::Waiting && !sending) return true;
  state_ = TransferState::Closing;
  pump_->Stop();
  emit changed();
  return false;
}
