#pragma once
// The DCC dialogs: "Tolv DCC Sending" (whom to send which file, in what packets) and the
// questions about a peer's offer ("Tolv DCC CHAT", "Tolv DCC Receiving", "File already
// exist"). They only collect the answer; the core decides what it means.

#include "client/shell.h"

#include <QDialog>

#include <utility>
#include <vector>

class QComboBox;
class QLineEdit;
class QPushButton;

// The packet sizes offered, in this order, 4096 chosen at first.
inline constexpr int kDccPacketSizes[] = {512, 1024, 2048, 4096, 8192};

class DccSendDialog : public QDialog {
  Q_OBJECT

 public:
  explicit DccSendDialog(const QString& nick, QWidget* parent = nullptr);

  DccSendChoice Choice() const;
  QLineEdit* NickField() const { return nick_; }
  QComboBox* PacketList() const { return packet_; }
  QLineEdit* FileField() const { return file_; }
  QPushButton* SendButton() const { return send_; }

 private:
  void Browse();
  void UpdateSend();

  QLineEdit* nick_;
  QComboBox* packet_;
  QLineEdit* file_;
  QPushButton* send_;
};

// A text, an optional destination field with a browse button, and one button per choice.
class DccQuestionDialog : public QDialog {
  Q_OBJECT

 public:
  using Buttons = std::vector<std::pair<QString, DccChoice>>;
  DccQuestionDialog(const QString& title, const QString& text, const Buttons& buttons,
                    const QString* destination = nullptr, QWidget* parent = nullptr);

  DccChoice Choice() const { return choice_; }
  QString Destination() const;
  QPushButton* Button(DccChoice choice) const;

 private:
  DccChoice choice_ = DccChoice::Cancel;
  QLineEdit* destination_ = nullptr;
  std::vector<std::pair<QPushButton*, DccChoice>> buttons_;
};
