#pragma once
// Where the words the user sends are taught when "Self-teaching" is on. The whisper
// dictionary implements it; until one is attached nothing is taught.

#include <QStringView>

class WordTeacher {
 public:
  virtual ~WordTeacher() = default;
  // Splits a sent line into words and learns each.
  virtual void TeachText(QStringView text) = 0;
};
