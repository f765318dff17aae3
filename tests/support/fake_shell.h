#pragma once
// A Shell for tests: records every request the core makes and answers questions from
// scripts the test fills beforehand. An empty script answers No / Cancel, so a test
// that forgets to script a question sees the careful answer, and `calls` tells it what
// was asked.

#include "app/shell.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class FakeShell : public Shell {
 public:
  struct Message {
    QString title;
    QString text;
    bool operator==(const Message&) const = default;
  };

  // Scripted answers, taken from the front one call at a time.
  QList<bool> yesNoAnswers;
  QList<std::optional<QString>> textAnswers;  // nullopt: Cancel

  // What the core asked for, in order.
  QList<Message> messages;   // ShowMessage
  QList<Message> questions;  // AskYesNo
  QList<Message> prompts;    // AskText: title and label
  QStringList promptInitials;  // AskText: the initial text
  QStringList sounds;
  QList<bool> busyStates;
  QList<bool> connectionStates;
  QStringList calls;  // every call's name, in order: "ShowMessage", "AskYesNo", ...

  void ShowMessage(const QString& title, const QString& text) override {
    calls << QStringLiteral("ShowMessage");
    messages.append({title, text});
  }

  bool AskYesNo(const QString& title, const QString& text) override {
    calls << QStringLiteral("AskYesNo");
    questions.append({title, text});
    return !yesNoAnswers.isEmpty() && yesNoAnswers.takeFirst();
  }

  std::optional<QString> AskText(const QString& title, const QString& label,
                                 const QString& initial) override {
    calls << QStringLiteral("AskText");
    prompts.append({title, label});
    promptInitials << initial;
    if (textAnswers.isEmpty()) return std::nullopt;
    return textAnswers.takeFirst();
  }

  void PlaySound(const QString& file) override {
    calls << QStringLiteral("PlaySound");
    sounds << file;
  }

  void SetBusy(bool busy) override {
    calls << QStringLiteral("SetBusy");
    busyStates.append(busy);
  }

  void ShowConnectionState(bool connected) override {
    calls << QStringLiteral("ShowConnectionState");
    connectionStates.append(connected);
  }
};
