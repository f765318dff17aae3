#pragma once
// Runs the client without a window: each line on standard input is a line typed into
// the input line, and every line shown in a tab is written to standard output as the
// tab's name, a TAB and the text. Scripts, tests and benchmarks drive the real program
// this way.
//
// Control lines start with the ESC character (0x1B), which nobody types into an input
// line, so they never collide with what a user says:
//   ESC "menu " number [nick] run a menu command by its number: a main-menu command, the
//                            current tab's pop-up item, or with a nick the nick list's
//   ESC "tab " name          make the tab of that name current
//   ESC "nicks " channel     print the channel's nick list (ESC "nicks" TAB channel TAB nicks)
//   ESC "answer ok " text    answer the waiting prompt with OK and a text (a two-line
//                            prompt takes both texts, TAB between them)
//   ESC "answer pick " index answer the waiting list with the entry at index (from 0)
//   ESC "answer yes" / ESC "answer no" / ESC "answer cancel"
//   ESC "answer " button [text]   a DCC question's button by its name in lower case
//                            ("accept", "ignore", "resume", "overwrite"; "ok" is the first)
// The program's own notices start with ESC too, then a word and TAB-separated fields:
//   ESC "message" TAB title TAB text      a message box
//   ESC "prompt" TAB title TAB label...   a question waits for an answer line
//   ESC "list" TAB title TAB label TAB button TAB entries...   a list waits for a pick
//   ESC "sound" TAB file                  a sound would play
//   ESC "state" TAB "connected" | "disconnected"
//   ESC "insert" TAB text                 a favourite would go into the input line
//   ESC "error" TAB text                  a control line could not be carried out
//   ESC "transfer" TAB tab TAB status TAB bytes TAB size   a file transfer moved or changed

#include "client/client_context.h"
#include "client/shell.h"
#include "net/session_control.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>

#include <map>
#include <memory>

class SettingsStore;

class HeadlessShell : public Shell {
 public:
  void ShowMessage(const QString& title, const QString& text) override;
  bool AskYesNo(const QString& title, const QString& text) override;
  std::optional<QString> AskText(const QString& title, const QString& label,
                                 const QString& initial, EmptyAnswer empty) override;
  std::optional<std::pair<QString, QString>> AskTwoTexts(const QString& title,
                                                         const QString& firstLabel,
                                                         const QString& secondLabel) override;
  std::optional<int> PickFromList(const QString& title, const QString& label,
                                  const QStringList& entries, const QString& acceptText) override;
  DccChoice AskDccChat(const QString& nick) override;
  DccChoice AskDccReceive(const QString& nick, QString& destination) override;
  DccChoice AskDccExisting(const QString& destination, bool canResume) override;
  std::optional<DccSendChoice> AskDccSend(const QString& nick) override;
  void PlaySound(const QString& file) override;
  void SetBusy(bool) override {}
  void ShowConnectionState(bool connected) override;

  // Lines read while a prompt waited for its answer, to be handled afterwards.
  QStringList TakeDeferredLines();
  // Bytes of standard input not yet cut into lines, shared with the front end.
  QByteArray& InputBuffer() { return pending_; }
  static bool TakeLine(QByteArray& pending, QString& line);
  // True while a question waits: the front end leaves standard input to it then.
  bool Waiting() const { return waiting_ > 0; }
  // Called when the last waiting question has its answer, so that what was read with it
  // is handled even when no more input comes.
  std::function<void()> answered;

 private:
  std::optional<QString> WaitForAnswer(const QString& kind, const QStringList& fields);
  // The answer's first word, one of `buttons`, with the rest of the line in `rest`;
  // another word is refused and the question asked again. "cancel" at the end of input.
  QString WaitForButton(const QStringList& fields, const QStringList& buttons, QString* rest = nullptr);
  // Reads standard input up to a complete line, keeping the client's events going
  // meanwhile (the server's pings, transfers); false at end of input.
  bool ReadLineWhileRunning(QString& line);
  QByteArray pending_;
  QStringList deferred_;
  int waiting_ = 0;  // questions can nest: a server line handled meanwhile may ask another
};

void WriteOutputLine(const QString& line);

class HeadlessFrontEnd : public QObject {
  Q_OBJECT

 public:
  explicit HeadlessFrontEnd(SettingsStore& settings, QObject* parent = nullptr);
  ~HeadlessFrontEnd() override;

  void Start(bool connectAtStart);

 private:
  void ReadInput();
  void HandleLine(const QString& line);
  void HandleControl(QStringView command);
  void RunMenuCommand(int command, QStringView nick);
  void PrintNicks(QStringView channel);
  void PrintAppended(int position);
  void EndOfInput();
  void ShowTransfer(TabId tab);

  HeadlessShell shell_;
  ClientContext ctx_;
  SessionControl session_;
  std::unique_ptr<QSocketNotifier> input_;
  struct Shown {
    QString status;
    int state = 0;
    qint64 at = 0;  // milliseconds since the epoch
  };
  std::map<TabId, Shown> transfersShown_;
};
