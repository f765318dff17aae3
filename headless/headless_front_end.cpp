#include "headless/headless_front_end.h"

#include "commands/command_ids.h"
#include "commands/menu_commands.h"
#include "commands/popup_actions.h"
#include "commands/submit_input.h"
#include "dcc/dcc_transfer.h"
#include "favorites/favorite_commands.h"
#include "views/output_path.h"
#include "whispers/whisper_actions.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QScopeGuard>
#include <QTimer>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QChar kEsc = QChar(0x1b);

void Notice(const QString& word, const QStringList& fields) {
  WriteOutputLine(kEsc + word + u'\t' + fields.join(u'\t'));
}

}  // namespace

// Takes one complete line off the front of `pending`; false when there is none.
bool HeadlessShell::TakeLine(QByteArray& pending, QString& line) {
  const qsizetype end = pending.indexOf('\n');
  if (end < 0) return false;
  QByteArray bytes = pending.left(end);
  pending.remove(0, end + 1);
  if (bytes.endsWith('\r')) bytes.chop(1);
  line = QString::fromUtf8(bytes);
  return true;
}

// Scripts read the output live, so every line is flushed at once.
void WriteOutputLine(const QString& line) {
  const QByteArray bytes = line.toUtf8() + '\n';
  std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
  std::fflush(stdout);
}

void HeadlessShell::ShowMessage(const QString& title, const QString& text) {
  Notice(u"message"_s, {title, text});
}

bool HeadlessShell::AskYesNo(const QString& title, const QString& text) {
  const std::optional<QString> answer = WaitForAnswer(u"prompt"_s, {title, text});
  return answer && *answer == u"yes"_s;
}

// A dialog whose OK is greyed cannot be confirmed; neither can its script stand-in.
std::optional<QString> HeadlessShell::AskText(const QString& title, const QString& label,
                                              const QString&, EmptyAnswer empty) {
  while (true) {
    const std::optional<QString> answer = WaitForAnswer(u"prompt"_s, {title, label});
    if (!answer || !answer->startsWith(u"ok"_s)) return std::nullopt;
    const QString text = answer->mid(3).left(250);
    if (!text.isEmpty() || empty == EmptyAnswer::Allowed) return text;
    Notice(u"error"_s, {u"OK needs a text"_s});
  }
}

std::optional<std::pair<QString, QString>> HeadlessShell::AskTwoTexts(const QString& title,
                                                                      const QString& firstLabel,
                                                                      const QString& secondLabel) {
  while (true) {
    const std::optional<QString> answer =
        WaitForAnswer(u"prompt"_s, {title, firstLabel, secondLabel});
    if (!answer || !answer->startsWith(u"ok"_s)) return std::nullopt;
    const QString both = answer->mid(3);
    const QString first = both.section(u'\t', 0, 0).left(250);
    const QString second = both.section(u'\t', 1).left(250);
    if (!first.isEmpty() && !second.isEmpty()) return std::pair{first, second};
    Notice(u"error"_s, {u"OK needs both texts"_s});
  }
}

std::optional<int> HeadlessShell::PickFromList(const QString& title, const QString& label,
                                               const QStringList& entries,
                                               const QString& acceptText) {
  const std::optional<QString> answer =
      WaitForAnswer(u"list"_s, QStringList{title, label, acceptText} + entries);
  if (!answer || !answer->startsWith(u"pick "_s)) return std::nullopt;
  bool ok = false;
  const int index = answer->mid(5).toInt(&ok);
  if (!ok || index < 0 || index >= entries.size()) return std::nullopt;
  return index;
}

QString HeadlessShell::WaitForButton(const QStringList& fields, const QStringList& buttons, QString* rest) {
  while (true) {
    const std::optional<QString> answer = WaitForAnswer(u"prompt"_s, fields);
    if (!answer) return u"cancel"_s;
    const QString word = answer->section(u' ', 0, 0);
    if (rest) *rest = answer->section(u' ', 1);
    if (word == u"ok"_s) return buttons.front();
    if (buttons.contains(word)) return word;
    Notice(u"error"_s, {u"answer "_s + buttons.join(u", "_s)});
  }
}

DccChoice HeadlessShell::AskDccChat(const QString& nick) {
  const QString button = WaitForButton(
      {u"Tolv DCC CHAT"_s, u"User "_s + nick + u" is attempting to initiate a private chat session with you"_s},
      {u"accept"_s, u"ignore"_s, u"cancel"_s});
  if (button == u"accept"_s) return DccChoice::Accept;
  return button == u"ignore"_s ? DccChoice::Ignore : DccChoice::Cancel;
}

// "accept" keeps the destination shown; "accept PATH" (or "ok PATH") chooses another.
DccChoice HeadlessShell::AskDccReceive(const QString& nick, QString& destination) {
  QString path;
  const QString button = WaitForButton({u"Tolv DCC Receiving"_s, u"User "_s + nick + u" is attempting to send you a file"_s,
                                        u"Destination file:"_s, destination},
                                       {u"accept"_s, u"ignore"_s, u"cancel"_s}, &path);
  if (button == u"ignore"_s) return DccChoice::Ignore;
  if (button != u"accept"_s) return DccChoice::Cancel;
  if (!path.isEmpty()) destination = path;
  return DccChoice::Accept;
}

DccChoice HeadlessShell::AskDccExisting(const QString& destination, bool canResume) {
  QStringList buttons = {u"overwrite"_s, u"cancel"_s};
  if (canResume) buttons.prepend(u"resume"_s);
  const QString button = WaitForButton({u"Tolv DCC Receiving"_s, u"File already exist"_s, destination}, buttons);
  if (button == u"resume"_s) return DccChoice::Resume;
  return button == u"overwrite"_s ? DccChoice::Overwrite : DccChoice::Cancel;
}

// "ok nick TAB packet TAB file": an empty nick keeps the one given, an empty packet 4096.
std::optional<DccSendChoice> HeadlessShell::AskDccSend(const QString& nick) {
  static const QList<int> kPackets = {512, 1024, 2048, 4096, 8192};
  while (true) {
    const std::optional<QString> answer =
        WaitForAnswer(u"prompt"_s, {u"Tolv DCC Sending"_s, u"Nickname:"_s, u"Packet:"_s, u"Source file:"_s, nick});
    if (!answer || !answer->startsWith(u"ok "_s)) return std::nullopt;
    const QStringList fields = answer->mid(3).split(u'\t');
    DccSendChoice choice;
    choice.nick = fields.value(0).isEmpty() ? nick : fields.value(0);
    choice.packetSize = fields.value(1).isEmpty() ? 4096 : fields.value(1).toInt();
    choice.file = fields.value(2);
    if (!choice.nick.isEmpty() && !choice.file.isEmpty() && kPackets.contains(choice.packetSize))
      return choice;
    Notice(u"error"_s, {u"Send needs a nick, a packet of 512, 1024, 2048, 4096 or 8192, and a file"_s});
  }
}

void HeadlessShell::PlaySound(const QString& file) { Notice(u"sound"_s, {file}); }

void HeadlessShell::ShowConnectionState(bool connected) {
  Notice(u"state"_s, {connected ? u"connected"_s : u"disconnected"_s});
}

QStringList HeadlessShell::TakeDeferredLines() { return std::exchange(deferred_, {}); }

bool HeadlessShell::ReadLineWhileRunning(QString& line) {
  while (!TakeLine(pending_, line)) {
    char buffer[4096];
    const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (n > 0) {
      pending_.append(buffer, n);
    } else if (n == 0 || (errno != EINTR && errno != EAGAIN)) {
      return false;
    } else {
      pollfd input{STDIN_FILENO, POLLIN, 0};
      ::poll(&input, 1, 20);
      QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
  }
  return true;
}

// Questions are modal, as the window's dialogs are: the core waits here until the answer
// line comes, while the connection and transfers keep running. Anything else read
// meanwhile is kept and handled after the answer.
std::optional<QString> HeadlessShell::WaitForAnswer(const QString& kind,
                                                   const QStringList& fields) {
  Notice(kind, fields);
  const QString marker = kEsc + u"answer "_s;
  QString line;
  ++waiting_;
  const auto done = qScopeGuard([this] {
    if (--waiting_ == 0 && answered) answered();
  });
  while (ReadLineWhileRunning(line)) {
    if (line.startsWith(marker)) return line.mid(marker.size());
    deferred_ << line;
  }
  return std::nullopt;  // end of input cancels
}

HeadlessFrontEnd::HeadlessFrontEnd(SettingsStore& settings, QObject* parent)
    : QObject(parent), ctx_(settings, shell_), session_(ctx_) {
  connect(&ctx_.tabs, &TabBar::linesAppended, this,
          [this](TabId, int position) { PrintAppended(position); });
  connect(&ctx_.dccEngine, &DccEngine::transferChanged, this, &HeadlessFrontEnd::ShowTransfer);
  connect(&ctx_.tabs, &TabBar::tabClosed, this, [this](TabId tab, int) { transfersShown_.erase(tab); });
  shell_.answered = [this] { QTimer::singleShot(0, this, &HeadlessFrontEnd::ReadInput); };
}

// A change of state or status at once, the bytes at most once a second.
void HeadlessFrontEnd::ShowTransfer(TabId tab) {
  const DccTransfer* transfer = ctx_.dccEngine.TransferOf(tab);
  const int position = ctx_.tabs.FindTabByView(tab);
  if (!transfer || position >= ctx_.tabs.Count()) return;
  Shown& shown = transfersShown_[tab];
  const qint64 now = QDateTime::currentMSecsSinceEpoch();
  const int state = int(transfer->State());
  if (shown.status == transfer->Status() && shown.state == state && now - shown.at < 1000) return;
  shown = {transfer->Status(), state, now};
  Notice(u"transfer"_s, {ctx_.tabs.At(position)->name, transfer->Status(), QString::number(transfer->Position()),
                         QString::number(transfer->size)});
}

HeadlessFrontEnd::~HeadlessFrontEnd() = default;

void HeadlessFrontEnd::Start(bool connectAtStart) {
  ctx_.tabs.OpenTab(u"Status", TabKind::Status);
  ctx_.tabs.ActivateTab(0);
  StartWhispers(ctx_);
  ctx_.favorites.SetFilePath(FavoritesPath(ctx_.settings));
  ctx_.favorites.Load();
  ::fcntl(STDIN_FILENO, F_SETFL, ::fcntl(STDIN_FILENO, F_GETFL) | O_NONBLOCK);
  input_ = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
  connect(input_.get(), &QSocketNotifier::activated, this, &HeadlessFrontEnd::ReadInput);
  if (connectAtStart) session_.Connect();
}

void HeadlessFrontEnd::PrintAppended(int position) {
  const ConversationTab* tab = ctx_.tabs.At(position);
  const LineStore& lines = *tab->lines;
  WriteOutputLine(tab->name + u'\t' + lines.Line(lines.LineCount() - 1).text);
}

void HeadlessFrontEnd::ReadInput() {
  if (shell_.Waiting()) return;  // the waiting question reads the input itself
  char buffer[65536];
  ssize_t n = 0;
  while ((n = ::read(STDIN_FILENO, buffer, sizeof buffer)) > 0)
    shell_.InputBuffer().append(buffer, n);
  const bool ended = n == 0 || (n < 0 && errno != EAGAIN && errno != EINTR);
  QString line;
  for (;;) {
    for (const QString& deferred : shell_.TakeDeferredLines()) HandleLine(deferred);
    if (!HeadlessShell::TakeLine(shell_.InputBuffer(), line)) break;
    HandleLine(line);
  }
  if (ended) EndOfInput();
}

void HeadlessFrontEnd::HandleLine(const QString& line) {
  if (line.startsWith(kEsc)) return HandleControl(QStringView(line).sliced(1));
  SubmitInputText(ctx_, line);
}

void HeadlessFrontEnd::HandleControl(QStringView command) {
  if (command.startsWith(u"menu ")) {
    const QStringView arguments = command.sliced(5).trimmed();
    const qsizetype blank = arguments.indexOf(u' ');
    bool ok = false;
    const int number = arguments.first(blank < 0 ? arguments.size() : blank).toInt(&ok);
    if (!ok) return Notice(u"error"_s, {u"not a menu command number"_s});
    return RunMenuCommand(number, blank < 0 ? QStringView() : arguments.sliced(blank + 1));
  }
  if (command.startsWith(u"tab ")) {
    const QStringView name = command.sliced(4);
    for (int i = 0; i < ctx_.tabs.Count(); ++i)
      if (name.compare(ctx_.tabs.At(i)->name, Qt::CaseInsensitive) == 0) return ctx_.tabs.ActivateTab(i);
    return Notice(u"error"_s, {u"no tab named "_s + name.toString()});
  }
  if (command.startsWith(u"nicks ")) return PrintNicks(command.sliced(6));
  if (command.startsWith(u"answer")) return Notice(u"error"_s, {u"no prompt is waiting"_s});
  Notice(u"error"_s, {u"unknown control line"_s});
}

// The nick list a window would show beside the channel, in its order.
void HeadlessFrontEnd::PrintNicks(QStringView channel) {
  const NickList* list = ctx_.tabs.ChannelNickList(channel);
  if (!list) return Notice(u"error"_s, {u"no channel tab named "_s + channel.toString()});
  QStringList shown;
  for (int i = 0; i < list->Count(); ++i) shown << list->At(i).shown;
  Notice(u"nicks"_s, {channel.toString(), shown.join(u' ')});
}

// The main menu's commands by number; with a nick, the nick list's item for that nick in
// the current channel; otherwise the current tab's pop-up item.
void HeadlessFrontEnd::RunMenuCommand(int command, QStringView nick) {
  switch (command) {
    case kCmdConnect: return session_.ToggleConnection();
    case kCmdExit: return EndOfInput();
    case kCmdColoursDefault: return ResetColourPalette(ctx_);
  }
  if (command >= kFirstFavoriteCommand && command <= kCmdFavoriteRemove) {
    const std::optional<QString> text = RunFavoriteCommand(shell_, ctx_.favorites, command);
    if (text) return Notice(u"insert"_s, {*text});
    if (command < kCmdFavoriteAdd)
      Notice(u"error"_s, {u"no favourite "_s + QString::number(command - kFirstFavoriteCommand)});
    return;
  }
  if (command == kCmdCancel && RunTabMenuAction(ctx_, command, ctx_.tabs.Current())) return;
  if (command >= kCmdJoin && command <= kCmdUserhost && nick.isEmpty()) {
    ::RunMenuCommand(ctx_, command);
    return;
  }
  if (!nick.isEmpty()) return RunNickListAction(ctx_, command, nick);
  const bool popupItem = command >= kCmdPing && command <= kCmdUnaway;
  if (popupItem && RunTabMenuAction(ctx_, command, ctx_.tabs.Current())) return;
  Notice(u"error"_s, {u"menu command "_s + QString::number(command) + u" is not available"_s});
}

// Like Exit: the connection closes without a QUIT line.
void HeadlessFrontEnd::EndOfInput() {
  input_->setEnabled(false);
  if (ctx_.session.serverSocket != kNoSocket) session_.Disconnect();
  QCoreApplication::quit();
}
