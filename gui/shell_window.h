#pragma once
// The window's answer to the core's questions: message boxes and prompts as modal
// dialogs over the main window, sounds through Qt Multimedia, the wait cursor, and the
// connection state handed to whoever names the Connect/Disconnect command.

#include "client/shell.h"

#include <QFont>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QDialog;
class QLineEdit;
class QSoundEffect;
class QUrl;

// Whether `file` is a complete PCM wave file that Qt's sample loader can finish reading.
// A truncated header or a data chunk longer than the file makes that loader wait for
// bytes that never come, and the next change of sound then blocks the window for good;
// such files are refused here and stay silent.
bool IsPlayableWave(const QString& file);

class WindowShell : public Shell {
 public:
  // `dialogParent` owns and centres the dialogs; it may be null.
  explicit WindowShell(QWidget* dialogParent = nullptr);
  ~WindowShell() override;

  WindowShell(const WindowShell&) = delete;
  WindowShell& operator=(const WindowShell&) = delete;

  void ShowMessage(const QString& title, const QString& text) override;
  bool AskYesNo(const QString& title, const QString& text) override;
  std::optional<QString> AskText(const QString& title, const QString& label,
                                 const QString& initial, EmptyAnswer empty) override;
  std::optional<std::pair<QString, QString>> AskTwoTexts(const QString& title,
                                                         const QString& firstLabel,
                                                         const QString& secondLabel) override;
  std::optional<int> PickFromList(const QString& title, const QString& label,
                                  const QStringList& entries,
                                  const QString& acceptText) override;
  DccChoice AskDccChat(const QString& nick) override;
  DccChoice AskDccReceive(const QString& nick, QString& destination) override;
  DccChoice AskDccExisting(const QString& destination, bool canResume) override;
  std::optional<DccSendChoice> AskDccSend(const QString& nick) override;
  void PlaySound(const QString& file) override;
  void SetBusy(bool busy) override;
  void ShowConnectionState(bool connected) override;

  // The main window renames its Connect/Disconnect command here.
  void SetConnectionStateHandler(std::function<void(bool)> handler);
  // The prompts' fields use the input line's font when one is set.
  void SetFieldFont(const QFont& font);
  // Called with every prompt field as its dialog is made (the window gives it whispers).
  void SetFieldHook(std::function<void(QLineEdit*)> hook) { fieldHook_ = std::move(hook); }
  // Dialogs' texts and buttons are sized for a finger at this screen factor.
  void SetScaleFactor(int factor) { factor_ = factor; }
  // Called with every dialog just before it runs modally. Tests answer dialogs from
  // here (through a zero-time timer, since the dialog's loop has not started yet).
  void SetBeforeExecHook(std::function<void(QDialog*)> hook);
  // Runs a dialog of the window modally, touch-sized and seen by the hook above.
  int Run(QDialog& dialog);

 private:
  void PrepareField(QLineEdit* field);
  QSoundEffect* FreeSoundEffect(const QUrl& source);

  QPointer<QWidget> parent_;
  std::function<void(bool)> connectionStateHandler_;
  std::function<void(QDialog*)> beforeExec_;
  std::optional<QFont> fieldFont_;
  std::function<void(QLineEdit*)> fieldHook_;
  int factor_ = 1;
  bool busy_ = false;
  // A few players, so that a join sound does not cut off the query sound before it.
  std::vector<std::unique_ptr<QSoundEffect>> soundEffects_;
  size_t nextSoundEffect_ = 0;
};
