#pragma once
// What only a user can answer or only a screen can do. The core asks through this
// interface and waits for the answer (questions are modal); the window implements it
// with dialogs, the headless front end with lines on standard input and output, and
// tests with scripted answers.

#include <QString>
#include <optional>

class Shell {
 public:
  virtual ~Shell() = default;

  // A modal message box with an OK button ("Error!", "Warning", "ERROR!" titles).
  virtual void ShowMessage(const QString& title, const QString& text) = 0;
  // A Yes/No box; true for Yes.
  virtual bool AskYesNo(const QString& title, const QString& text) = 0;
  // A one-line prompt; nullopt when cancelled.
  virtual std::optional<QString> AskText(const QString& title, const QString& label,
                                         const QString& initial) = 0;
  // Plays a sound file without waiting; failures are ignored.
  virtual void PlaySound(const QString& file) = 0;
  // The wait cursor while something slow (resolving, connecting) runs.
  virtual void SetBusy(bool busy) = 0;
  // The Connect/Disconnect command shows "Disconnect" while connected.
  virtual void ShowConnectionState(bool connected) = 0;
};
