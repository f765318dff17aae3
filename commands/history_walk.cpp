#include "commands/history_walk.h"

std::optional<QString> HistoryWalk::Older(const QStringList& entries, const QString& current) {
  if (position_ + 1 >= entries.size()) return std::nullopt;
  if (position_ < 0) kept_ = current;
  return entries[++position_];
}

// The history may have shrunk under the walk (it never does today, but a walk must not
// index past it).
std::optional<QString> HistoryWalk::Newer(const QStringList& entries) {
  if (position_ < 0) return std::nullopt;
  position_ = std::min<int>(position_, int(entries.size())) - 1;
  return position_ < 0 ? kept_ : entries[position_];
}
