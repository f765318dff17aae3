#pragma once
// One file transfer as its progress window shows it: the transfer record (peer, file,
// size, position, state) and the status text. The bytes move on the pump's thread; this
// object lives on the window's thread, drives the pump, and announces every change.

#include "dcc/dcc_pump.h"
#include "views/conversation_tab.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

// The numbers of the transfer record.
enum class TransferState { Waiting = 1, Transferring = 2, Finished = 3, Cancelled = 4, Closing = 5 };

// Texts of the "Status:" field.
inline constexpr char16_t kStatusWaitingResume[] = u"Waiting for resume...";
inline constexpr char16_t kStatusSendTimeout[] = u"Send DCC Timeout...";
inline constexpr char16_t kStatusConnectionError[] = u"Connection error!";
inline constexpr char16_t kStatusUnableToOpen[] = u"Unable to open a file";
inline constexpr char16_t kStatusPathNotFound[] = u"Path not found";
inline constexpr char16_t kStatusIncomplete[] = u"Transfer incomplete!";
inline constexpr char16_t kStatusCancelled[] = u"Operation cancelled!";
inline constexpr char16_t kStatusClosing[] = u"Closing window...";
inline constexpr char16_t kStatusSent[] = u"File sent!";
inline constexpr char16_t kStatusReceived[] = u"File received!";

class DccTransfer : public QObject {
  Q_OBJECT

 public:
  DccTransfer(TabId tab, bool sending, QObject* parent = nullptr);
  ~DccTransfer() override;  // stops the pump and closes the file

  // The record, filled in by the engine before Start.
  const TabId tab;
  const bool sending;
  QString nick;
  QString address;    // the peer's, dotted
  quint32 peerAddress = 0;  // the same, host order: where a receive connects to
  int port = 0;       // the port the offer named (RESUME and ACCEPT find it by this)
  QString token;      // passive DCC
  QString fileName;   // as offered
  QString folder;     // ends in "/"
  QString localName;  // the file's name in the folder
  qint64 size = 0;
  int packetSize = 4096;
  int file = -1;      // owned: closed when the transfer ends
  qint64 resumeFrom = -1;  // the position a RESUME asked for, while waiting for ACCEPT
  bool createdFile = false;  // a new file that nothing reached is removed again

  TransferState State() const { return state_; }
  const QString& Status() const { return status_; }
  qint64 Position() const;
  // Bytes per second since the data began to flow; 0 before.
  qint64 Rate() const;
  // Seconds to go at the current rate; -1 when unknown.
  qint64 SecondsLeft() const;

  // Runs the plan (its file, size and packet size are taken from the record).
  void Start(PumpPlan plan);
  void SetStatus(const QString& status);
  void SetState(TransferState state) { state_ = state; }
  // Cancel: in states 1 and 2 "Operation cancelled!", state 4, the connection closes.
  void Cancel();
  // The transfer cannot start (a file, a socket): state 3 with `why` as its status.
  void Fail(const QString& why);
  // Close: true when the tab may close now; in state 2 the end of the pump closes it.
  bool Close();
  // Where the bytes start: a resumed receive, or a RESUME agreed before the peer connects.
  void SetPosition(qint64 position);

 signals:
  void changed();
  // The transfer is over (finished, failed or cancelled): `status` says how.
  void ended(const QString& status);
  // A window closed while the bytes were moving: the tab may go now.
  void closeTab();

 private:
  void Linked();
  void Finished(PumpResult result);
  QString EndText(PumpResult result) const;
  void CloseFile();

  TransferState state_ = TransferState::Waiting;
  QString status_;
  qint64 position_ = 0;
  qint64 startPosition_ = 0;
  QElapsedTimer flowing_;
  QTimer refresh_;
  std::unique_ptr<DccPump> pump_;
};
