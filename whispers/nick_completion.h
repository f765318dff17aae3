#pragma once
// Completing nicks, as irssi and HexChat users expect: Tab completes the word before the
// caret from the current channel's nicks, Tab again at once offers the next one, and a
// nick completed at the start of the line is addressed ("alice: "). The whisper pop-up
// offers the same nicks to fingers.

#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>

class ClientContext;

// The nicks of the current tab that begin with `prefix` (ignoring case), alphabetical,
// at most `limit`: a channel's nick list, or the other side of a chat.
QStringList CompletingNicks(ClientContext& ctx, QStringView prefix, int limit);

struct CompletedLine {
  QString text;
  qsizetype caret = 0;
};

class NickCompleter {
 public:
  using NickSource = std::function<QStringList(QStringView prefix)>;

  // The line after one Tab, or nothing when there is no word before the caret or no
  // nick completes it. A Tab on the very line the previous one left cycles on.
  std::optional<CompletedLine> Complete(QStringView text, qsizetype caret, const NickSource& nicks);

 private:
  QStringList candidates_;
  int next_ = 0;
  qsizetype wordStart_ = 0;
  CompletedLine left_;  // what the previous Tab made
};
