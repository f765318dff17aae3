#pragma once
// Up and Down in the input line step through the earlier lines, newest first, as in
// every shell and IRC client; the line being typed is kept and comes back after the
// newest entry.

#include <QString>
#include <QStringList>

#include <optional>

class HistoryWalk {
 public:
  // Up: the next older entry; nothing at the oldest. Leaving the typed line keeps
  // `current`, the field's text, to come back to.
  std::optional<QString> Older(const QStringList& entries, const QString& current);
  // Down: the next newer entry, then the kept line; nothing when on the typed line.
  std::optional<QString> Newer(const QStringList& entries);
  // The user typed or sent a line: the walk starts again from the typed line.
  void Reset() { position_ = -1; }

 private:
  int position_ = -1;  // -1: the typed line
  QString kept_;
};
