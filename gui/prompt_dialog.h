#pragma once
// The small prompts the menus and pop-up items ask through: one text, two texts, or one
// entry of a list. Each keeps its confirming button greyed until the answer is usable, so
// the core never has to reject what the user typed. They are laid out to fit a 240 x 320
// screen and grow with a larger one.

#include "client/shell.h"

#include <QDialog>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

// The longest answer a prompt field takes.
inline constexpr int kPromptMaxLength = 250;

// A label, one field and "OK" / "Cancel". OK needs a text unless `empty` allows none.
class OneLinePromptDialog : public QDialog {
  Q_OBJECT

 public:
  OneLinePromptDialog(const QString& title, const QString& label, const QString& initial,
                      EmptyAnswer empty, QWidget* parent = nullptr);

  QString Text() const;
  QLineEdit* Field() const { return field_; }
  QPushButton* OkButton() const { return ok_; }

 private:
  void UpdateOk();

  QLineEdit* field_;
  QPushButton* ok_;
  EmptyAnswer empty_;
};

// Two labelled fields and "OK" / "Cancel"; OK needs both filled.
class TwoLinePromptDialog : public QDialog {
  Q_OBJECT

 public:
  TwoLinePromptDialog(const QString& title, const QString& firstLabel,
                      const QString& secondLabel, QWidget* parent = nullptr);

  // The answers in field order: the first field's, then the second's.
  std::pair<QString, QString> Texts() const;
  QLineEdit* FirstField() const { return first_; }
  QLineEdit* SecondField() const { return second_; }
  QPushButton* OkButton() const { return ok_; }

 private:
  void UpdateOk();

  QLineEdit* first_;
  QLineEdit* second_;
  QPushButton* ok_;
};

// A label, a list and a confirming button named by the caller ("OK", "Remove") beside
// "Cancel"; the confirming button needs a chosen entry.
class ListPromptDialog : public QDialog {
  Q_OBJECT

 public:
  ListPromptDialog(const QString& title, const QString& label, const QStringList& entries,
                   const QString& acceptText, QWidget* parent = nullptr);

  // The chosen entry's index, nothing while none is chosen.
  std::optional<int> ChosenIndex() const;
  QListWidget* List() const { return list_; }
  QPushButton* AcceptButton() const { return accept_; }

 private:
  void UpdateAccept();

  QListWidget* list_;
  QPushButton* accept_;
};
