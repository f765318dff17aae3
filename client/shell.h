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

// The buttons of the DCC questions.
enum class DccChoice { Accept, Ignore, Cancel, Resume, Overwrite };

// What the "Tolv DCC Sending" dialog hands back on "Send".
struct DccSendChoice {
  QString nick;
  int packetSize = 4096;  // 512, 1024, 2048, 4096 or 8192
  QString file;
};

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
  // "Tolv DCC CHAT": "User <nick> is attempting to initiate a private chat session with
  // you"; Accept, Ignore or Cancel.
  virtual DccChoice AskDccChat(const QString& nick) = 0;
  // "Tolv DCC Receiving": "User <nick> is attempting to send you a file" and the
  // "Destination file:", which the user may change; Accept (with the destination then
  // in `destination`), Ignore or Cancel.
  virtual DccChoice AskDccReceive(const QString& nick, QString& destination) = 0;
  // "File already exist" for `destination`: Resume (offered only when `canResume`),
  // Overwrite or Cancel.
  virtual DccChoice AskDccExisting(const QString& destination, bool canResume) = 0;
  // "Tolv DCC Sending", pre-filled with the nick: "Nickname:", "Packet:", "Source file:";
  // nullopt for Cancel.
  virtual std::optional<DccSendChoice> AskDccSend(const QString& nick) = 0;
  // Plays a sound file without waiting; failures are ignored.
  virtual void PlaySound(const QString& file) = 0;
  // The wait cursor while something slow (resolving, connecting) runs.
  virtual void SetBusy(bool busy) = 0;
  // The Connect/Disconnect command shows "Disconnect" while connected.
  virtual void ShowConnectionState(bool connected) = 0;
};
