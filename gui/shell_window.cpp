#include "gui/shell_window.h"

#include "gui/dcc_dialogs.h"
#include "gui/fitted_message_box.h"
#include "gui/prompt_dialog.h"
#include "gui/touch_targets_widget.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSoundEffect>
#include <QUrl>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

// Enough for the sounds of a busy channel to overlap without one player per event.
constexpr size_t kSoundEffectCount = 4;

// The "fmt " fields the loader checks: PCM, 8 to 32 bits, some rate, some channels.
bool PlayableFormat(const QByteArray& fmt) {
  const auto* bytes = reinterpret_cast<const uchar*>(fmt.constData());
  const quint16 encoding = qFromLittleEndian<quint16>(bytes);
  const quint16 channels = qFromLittleEndian<quint16>(bytes + 2);
  const quint32 rate = qFromLittleEndian<quint32>(bytes + 4);
  const quint16 bits = qFromLittleEndian<quint16>(bytes + 14);
  return (encoding == 0 || encoding == 1) && channels > 0 && rate > 0 &&
         (bits == 8 || bits == 16 || bits == 24 || bits == 32);
}

}  // namespace

// Walks the RIFF chunks as the loader does: the first "fmt " chunk, whole, then a
// "data" chunk whose samples are all in the file.
bool IsPlayableWave(const QString& file) {
  QFile in(file);
  if (!in.open(QIODevice::ReadOnly)) return false;
  const qint64 size = in.size();
  const QByteArray riff = in.read(12);
  if (riff.size() < 12 || !riff.startsWith("RIFF") || riff.mid(8) != "WAVE") return false;
  bool haveFormat = false;
  for (qint64 pos = 12; pos + 8 <= size;) {
    if (!in.seek(pos)) return false;
    const QByteArray header = in.read(8);
    if (header.size() < 8) return false;
    const QByteArray id = header.left(4);
    const qint64 length =
        qFromLittleEndian<quint32>(reinterpret_cast<const uchar*>(header.constData()) + 4);
    const qint64 body = pos + 8;
    if (haveFormat && id == "data") return length > 0 && body + length <= size;
    if (!haveFormat && id == "fmt ") {
      if (length < 16 || body + length > size || !PlayableFormat(in.read(16))) return false;
      haveFormat = true;
    }
    pos = body + length + (length & 1);
  }
  return false;
}

WindowShell::WindowShell(QWidget* dialogParent) : parent_(dialogParent) {}

WindowShell::~WindowShell() {
  if (busy_) QGuiApplication::restoreOverrideCursor();
}

void WindowShell::SetConnectionStateHandler(std::function<void(bool)> handler) {
  connectionStateHandler_ = std::move(handler);
}

void WindowShell::SetFieldFont(const QFont& font) { fieldFont_ = font; }

void WindowShell::SetBeforeExecHook(std::function<void(QDialog*)> hook) {
  beforeExec_ = std::move(hook);
}

void WindowShell::PrepareField(QLineEdit* field) {
  if (fieldFont_) field->setFont(*fieldFont_);
  if (fieldHook_) fieldHook_(field);
}

int WindowShell::Run(QDialog& dialog) {
  FitForTouch(&dialog, factor_);
  if (beforeExec_) beforeExec_(&dialog);
  return dialog.exec();
}

// The buttons are added with their texts rather than as standard buttons, whose
// labels change with the desktop ("&OK", "_Yes").
void WindowShell::ShowMessage(const QString& title, const QString& text) {
  FittedMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::NoButton, parent_);
  QPushButton* ok = box.addButton(u"OK"_s, QMessageBox::AcceptRole);
  box.setDefaultButton(ok);
  box.setEscapeButton(ok);
  Run(box);
}

// A question may carry a certificate's fingerprint: it wraps inside the window.
bool WindowShell::AskYesNo(const QString& title, const QString& text) {
  FittedMessageBox box(QMessageBox::NoIcon, title, WrappableText(text), QMessageBox::NoButton, parent_);
  QPushButton* yes = box.addButton(u"Yes"_s, QMessageBox::YesRole);
  QPushButton* no = box.addButton(u"No"_s, QMessageBox::NoRole);
  box.setDefaultButton(yes);
  box.setEscapeButton(no);
  Run(box);
  return box.clickedButton() == yes;
}

std::optional<QString> WindowShell::AskText(const QString& title, const QString& label,
                                            const QString& initial, EmptyAnswer empty) {
  OneLinePromptDialog dialog(title, label, initial, empty, parent_);
  PrepareField(dialog.Field());
  if (Run(dialog) != QDialog::Accepted) return std::nullopt;
  return dialog.Text();
}

std::optional<std::pair<QString, QString>> WindowShell::AskTwoTexts(
    const QString& title, const QString& firstLabel, const QString& secondLabel) {
  TwoLinePromptDialog dialog(title, firstLabel, secondLabel, parent_);
  PrepareField(dialog.FirstField());
  PrepareField(dialog.SecondField());
  if (Run(dialog) != QDialog::Accepted) return std::nullopt;
  return dialog.Texts();
}

std::optional<int> WindowShell::PickFromList(const QString& title, const QString& label,
                                             const QStringList& entries,
                                             const QString& acceptText) {
  ListPromptDialog dialog(title, label, entries, acceptText, parent_);
  if (Run(dialog) != QDialog::Accepted) return std::nullopt;
  return dialog.ChosenIndex();
}

// Closing a question without a button is its Cancel.
DccChoice WindowShell::AskDccChat(const QString& nick) {
  DccQuestionDialog dialog(u"Tolv DCC CHAT"_s,
                           u"User "_s + nick + u" is attempting to initiate a private chat session with you"_s,
                           {{u"Accept"_s, DccChoice::Accept}, {u"Ignore"_s, DccChoice::Ignore}, {u"Cancel"_s, DccChoice::Cancel}},
                           nullptr, parent_);
  return Run(dialog) == QDialog::Accepted ? dialog.Choice() : DccChoice::Cancel;
}

DccChoice WindowShell::AskDccReceive(const QString& nick, QString& destination) {
  DccQuestionDialog dialog(u"Tolv DCC Receiving"_s, u"User "_s + nick + u" is attempting to send you a file"_s,
                           {{u"Accept"_s, DccChoice::Accept}, {u"Ignore"_s, DccChoice::Ignore}, {u"Cancel"_s, DccChoice::Cancel}},
                           &destination, parent_);
  if (Run(dialog) != QDialog::Accepted) return DccChoice::Cancel;
  if (dialog.Choice() == DccChoice::Accept) destination = dialog.Destination();
  return dialog.Choice();
}

DccChoice WindowShell::AskDccExisting(const QString& destination, bool canResume) {
  DccQuestionDialog::Buttons buttons = {{u"Overwrite"_s, DccChoice::Overwrite}, {u"Cancel"_s, DccChoice::Cancel}};
  if (canResume) buttons.insert(buttons.begin(), {u"Resume"_s, DccChoice::Resume});
  DccQuestionDialog dialog(u"Tolv DCC Receiving"_s, u"File already exist"_s + u'\n' + destination, buttons,
                           nullptr, parent_);
  return Run(dialog) == QDialog::Accepted ? dialog.Choice() : DccChoice::Cancel;
}

std::optional<DccSendChoice> WindowShell::AskDccSend(const QString& nick) {
  DccSendDialog dialog(nick, parent_);
  if (fieldFont_) {
    dialog.NickField()->setFont(*fieldFont_);
    dialog.FileField()->setFont(*fieldFont_);
  }
  if (Run(dialog) != QDialog::Accepted) return std::nullopt;
  return dialog.Choice();
}

// A sound is a nicety: a missing or undecodable file, or a machine without audio,
// plays nothing and says nothing.
void WindowShell::PlaySound(const QString& file) {
  if (file.isEmpty() || !IsPlayableWave(file)) return;
  const QUrl source = QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath());
  QSoundEffect* effect = FreeSoundEffect(source);
  effect->stop();
  effect->setSource(source);  // the same file again keeps its decoded samples
  effect->play();             // plays once loaded; a load error leaves it silent
}

// An idle player that already holds `source`, else any idle one, else a new one while
// there are few, else the next one in turn, cutting its sound short.
QSoundEffect* WindowShell::FreeSoundEffect(const QUrl& source) {
  QSoundEffect* idle = nullptr;
  for (const auto& effect : soundEffects_) {
    if (effect->isPlaying()) continue;
    if (effect->source() == source) return effect.get();
    if (!idle) idle = effect.get();
  }
  if (idle) return idle;
  if (soundEffects_.size() < kSoundEffectCount) {
    soundEffects_.push_back(std::make_unique<QSoundEffect>());
    return soundEffects_.back().get();
  }
  QSoundEffect* oldest = soundEffects_[nextSoundEffect_].get();
  nextSoundEffect_ = (nextSoundEffect_ + 1) % soundEffects_.size();
  return oldest;
}

// The core may report "not busy" more than once (a failed connect, then the reset);
// Qt's cursor stack must see one restore per override.
void WindowShell::SetBusy(bool busy) {
  if (busy == busy_) return;
  busy_ = busy;
  if (busy)
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QGuiApplication::restoreOverrideCursor();
}

void WindowShell::ShowConnectionState(bool connected) {
  if (connectionStateHandler_) connectionStateHandler_(connected);
}
