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
// The program's own notices start with ESC too, then a word and TAB-separated fields:
//   ESC "message" TAB title TAB text      a message box
//   ESC "prompt" TAB title TAB label...   a question waits for an answer line
//   ESC "list" TAB title TAB label TAB button TAB entries...   a list waits for a pick
//   ESC "sound" TAB file                  a sound would play
//   ESC "state" TAB "connected" | "disconnected"
//   ESC "insert" TAB text                 a favourite would go into the input line
//   ESC "error" TAB text                  a control line could not be carried out

#include "client/client_context.h"
#include "client/shell.h"
#include "net/session_control.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>

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
  void PlaySound(const QString& file) override;
  void SetBusy(bool) override {}
  void ShowConnectionState(bool connected) override;

  // Lines read while a prompt waited for its answer, to be handled afterwards.
  QStringList TakeDeferredLines();
  // Bytes of standard input not yet cut into lines, shared with the front end.
  QByteArray& InputBuffer() { return pending_; }
  static bool TakeLine(QByteArray& pending, QString& line);
  // Reads standard input up to a complete line; false at end of input.
  static bool ReadLineBlocking(QByteArray& pending, QString& line);

 private:
  std::optional<QString> WaitForAnswer(const QString& kind, const QStringList& fields);
  QByteArray pending_;
  QStringList deferred_;
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

  HeadlessShell shell_;
  ClientContext ctx_;
  SessionControl session_;
  std::unique_ptr<QSocketNotifier> input_;
};
