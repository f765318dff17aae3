#pragma once
// The input line's history: earlier lines, most recent first, each text once whatever
// its case. The input line's drop-down shows the model.

#include <QStringListModel>

class InputHistory {
 public:
  // Enough for a drop-down a thumb can scroll; older lines fall off the end.
  static constexpr int kMaxEntries = 200;

  // Puts the text on top after removing every earlier entry equal to it ignoring case.
  void Add(const QString& text);
  QStringList Entries() const { return model_.stringList(); }
  QStringListModel& Model() { return model_; }

 private:
  QStringListModel model_;
};
