#pragma once
// Gives a text field the whisper pop-up. One call per field:
//
//   AttachWhispers(field, ctx);                          // a dialog's field: one whisper
//   AttachWhispers(inputLine, ctx, WhisperField::InputLine);  // "No. of whispers", nicks
//
// From then on every change of the field refreshes the pop-up (when "Enable whispers"
// is on and a conversation tab exists), moving the caret before the word or the focus
// to another widget closes it, and a tapped pick icon puts the completion in. The
// attachment lives as long as the field; the pop-up is a child of the field's window.

#include "whispers/whisper_refresh.h"

#include <QObject>
#include <QPointer>

class ClientContext;
class QComboBox;
class QLineEdit;
class WhisperPopup;

enum class WhisperField {
  Other,      // one whisper, dictionary words only
  InputLine,  // "No. of whispers" of them, then the channel's nicks
};

class WhisperAttachment : public QObject {
  Q_OBJECT

 public:
  // `placed` is the widget the pop-up stands above: the field, or the box around it.
  WhisperAttachment(QLineEdit* edit, QWidget* placed, ClientContext& ctx, WhisperField kind);
  ~WhisperAttachment() override;

  WhisperPopup* Popup() const;
  // The host's close: the pop-up goes, the field keeps the focus.
  void Close();
  void Refresh();

 private:
  void DropPopup();
  void FollowCaret();
  void FollowFocus(QWidget* old, QWidget* now);
  void Pick(int row);
  QStringList NicksFor(QStringView word, int limit) const;

  QLineEdit* edit_;
  QWidget* placed_;
  ClientContext& ctx_;
  WhisperField kind_;
  QPointer<WhisperPopup> popup_;
  qsizetype wordStart_ = 0;
};

WhisperAttachment* AttachWhispers(QLineEdit* field, ClientContext& ctx,
                                  WhisperField kind = WhisperField::Other);
WhisperAttachment* AttachWhispers(QComboBox* field, ClientContext& ctx,
                                  WhisperField kind = WhisperField::Other);
