#pragma once
// What only a user can answer or only a screen can do. The core asks through this
// interface and waits for the answer (questions are modal); the window implements it
// with dialogs, the headless front end with lines on standard input and output, and
// tests with scripted answers.

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

// Whether OK may confirm an empty field (only the quit prompt allows it).
enum class EmptyAnswer { Refused, Allowed };

class Shell {
 public:
  virtual ~Shell() = default;

  // A modal message box with an OK button ("Error!", "Warning", "ERROR!" titles).
  virtual void ShowMessage(const QString& title, const QString& text) = 0;
  // A Yes/No box; true for Yes.
  virtual bool AskYesNo(const QString& title, const QString& text) = 0;
  // A one-line prompt (at most 250 characters); nullopt when cancelled.
  virtual std::optional<QString> AskText(const QString& title, const QString& label,
                                         const QString& initial, EmptyAnswer empty) = 0;
  // A two-line prompt whose OK needs both fields filled; the answers in field order.
  virtual std::optional<std::pair<QString, QString>> AskTwoTexts(const QString& title,
                                                                 const QString& firstLabel,
                                                                 const QString& secondLabel) = 0;
  // A list to pick one entry from; `acceptText` names the confirming button ("OK",
  // "Remove"). The chosen entry's index, or nullopt for Cancel or no choice.
  virtual std::optional<int> PickFromList(const QString& title, const QString& label,
                                          const QStringList& entries,
                                          const QString& acceptText) = 0;
  // Plays a sound file without waiting; failures are ignored.
  virtual void PlaySound(const QString& file) = 0;
  // The wait cursor while something slow (resolving, connecting) runs.
  virtual void SetBusy(bool busy) = 0;
  // The Connect/Disconnect command shows "Disconnect" while connected.
  virtual void ShowConnectionState(bool connected) = 0;
};
