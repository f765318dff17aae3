#include "commands/input_history.h"

void InputHistory::Add(const QString& text) {
  QStringList entries = model_.stringList();
  entries.removeIf([&](const QString& entry) {
    return entry.compare(text, Qt::CaseInsensitive) == 0;
  });
  entries.prepend(text);
  if (entries.size() > kMaxEntries) entries.resize(kMaxEntries);
  model_.setStringList(entries);
}
