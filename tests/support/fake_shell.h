#pragma once
// A Shell for tests: records every request the core makes and answers questions from
// scripts filled beforehand; an empty script answers No / Cancel.

#include "client/shell.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class FakeShell : public Shell {
 public:
  struct Message {
    QString title, text;
    bool operator==(const Message&) const = default;
  };

  // Scripted answers, taken from the front; what the core asked for, in order.
  QList<bool> yesNoAnswers;
  QList<std::optional<QString>> textAnswers;  // nullopt: Cancel
  QList<std::optional<std::pair<QString, QString>>> twoTextAnswers;
  QList<std::optional<int>> listAnswers;

  QList<Message> messages;   // ShowMessage
  QList<Message> questions;  // AskYesNo
  QList<Message> prompts;    // AskText: title and label
  QList<QStringList> twoTextPrompts;    // AskTwoTexts: title, first label, second label
  struct ListPrompt {
    QString title, label;
    QStringList entries;
    QString acceptText;
    bool operator==(const ListPrompt&) const = default;
  };
  QList<ListPrompt> listPrompts;
  QStringList sounds;
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
                                 const QString&, EmptyAnswer) override {
    calls << QStringLiteral("AskText");
    prompts.append({title, label});
    if (textAnswers.isEmpty()) return std::nullopt;
    return textAnswers.takeFirst();
  }

  std::optional<std::pair<QString, QString>> AskTwoTexts(const QString& title,
                                                         const QString& firstLabel,
                                                         const QString& secondLabel) override {
    calls << QStringLiteral("AskTwoTexts");
    twoTextPrompts << QStringList{title, firstLabel, secondLabel};
    if (twoTextAnswers.isEmpty()) return std::nullopt;
    return twoTextAnswers.takeFirst();
  }

  std::optional<int> PickFromList(const QString& title, const QString& label,
                                  const QStringList& entries, const QString& acceptText) override {
    calls << QStringLiteral("PickFromList");
    listPrompts.append({title, label, entries, acceptText});
    if (listAnswers.isEmpty()) return std::nullopt;
    return listAnswers.takeFirst();
  }

  // DCC questions: scripted answers (an empty script answers Cancel) and what was asked,
  // as "chat bob", "receive bob <destination>", "existing <destination> resume|no-resume",
  // "send bob".
  QList<DccChoice> dccChatAnswers;
  QList<DccChoice> dccReceiveAnswers;
  QStringList dccReceiveDestinations;  // taken with each Accept; empty keeps the proposal
  QList<DccChoice> dccExistingAnswers;
  QList<std::optional<DccSendChoice>> dccSendAnswers;
  QStringList dccAsked;

  DccChoice AskDccChat(const QString& nick) override {
    calls << QStringLiteral("AskDccChat");
    dccAsked << QStringLiteral("chat ") + nick;
    return dccChatAnswers.isEmpty() ? DccChoice::Cancel : dccChatAnswers.takeFirst();
  }

  DccChoice AskDccReceive(const QString& nick, QString& destination) override {
    calls << QStringLiteral("AskDccReceive");
    dccAsked << QStringLiteral("receive ") + nick + u' ' + destination;
    const DccChoice choice = dccReceiveAnswers.isEmpty() ? DccChoice::Cancel : dccReceiveAnswers.takeFirst();
    if (choice == DccChoice::Accept && !dccReceiveDestinations.isEmpty()) {
      const QString chosen = dccReceiveDestinations.takeFirst();
      if (!chosen.isEmpty()) destination = chosen;
    }
    return choice;
  }

  DccChoice AskDccExisting(const QString& destination, bool canResume) override {
    calls << QStringLiteral("AskDccExisting");
    dccAsked << QStringLiteral("existing ") + destination +
                    (canResume ? QStringLiteral(" resume") : QStringLiteral(" no-resume"));
    return dccExistingAnswers.isEmpty() ? DccChoice::Cancel : dccExistingAnswers.takeFirst();
  }

  std::optional<DccSendChoice> AskDccSend(const QString& nick) override {
    calls << QStringLiteral("AskDccSend");
    dccAsked << QStringLiteral("send ") + nick;
    return dccSendAnswers.isEmpty() ? std::nullopt : dccSendAnswers.takeFirst();
  }

  void PlaySound(const QString& file) override {
    calls << QStringLiteral("PlaySound");
    sounds << file;
  }

  void SetBusy(bool) override {
    calls << QStringLiteral("SetBusy");
  }

  void ShowConnectionState(bool connected) override {
    calls << QStringLiteral("ShowConnectionState");
    connectionStates.append(connected);
  }
};
