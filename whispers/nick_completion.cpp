#include "whispers/nick_completion.h"

#include "client/client_context.h"

using namespace Qt::StringLiterals;

QStringList CompletingNicks(ClientContext& ctx, QStringView prefix, int limit) {
  TabKind kind = TabKind::Status;
  const std::optional<QString> name = ctx.tabs.CurrentTabName(&kind);
  if (!name || limit <= 0) return {};
  if (kind == TabKind::Channel) {
    const NickList* list = ctx.tabs.ChannelNickList(*name);
    return list ? list->StartingWith(prefix, limit) : QStringList();
  }
  if (kind == TabKind::Chat && name->startsWith(prefix, Qt::CaseInsensitive)) return {*name};
  return {};
}

std::optional<CompletedLine> NickCompleter::Complete(QStringView text, qsizetype caret,
                                                     const NickSource& nicks) {
  caret = std::clamp<qsizetype>(caret, 0, text.size());
  const bool cycling = !candidates_.isEmpty() && text == left_.text && caret == left_.caret;
  if (!cycling) {
    wordStart_ = caret == 0 ? 0 : text.first(caret).lastIndexOf(u' ') + 1;
    const QStringView word = text.sliced(wordStart_, caret - wordStart_);
    candidates_ = word.isEmpty() ? QStringList() : nicks(word);
    next_ = 0;
    if (candidates_.isEmpty()) return std::nullopt;
  }
  const QString completed = candidates_[next_] + (wordStart_ == 0 ? u": "_s : u" "_s);
  next_ = (next_ + 1) % candidates_.size();
  left_.text = text.first(wordStart_).toString();
  left_.text.append(completed).append(text.sliced(caret));
  left_.caret = wordStart_ + completed.size();
  return left_;
}
