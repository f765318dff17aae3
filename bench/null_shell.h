#pragma once
// A shell that answers nothing and shows nothing, so benchmarks time the core alone.

#include "client/shell.h"

class NullShell : public Shell {
 public:
  void ShowMessage(const QString&, const QString&) override {}
  bool AskYesNo(const QString&, const QString&) override { return false; }
  std::optional<QString> AskText(const QString&, const QString&, const QString&,
                                 EmptyAnswer) override {
    return std::nullopt;
  }
  std::optional<std::pair<QString, QString>> AskTwoTexts(const QString&, const QString&,
                                                         const QString&) override {
    return std::nullopt;
  }
  std::optional<int> PickFromList(const QString&, const QString&, const QStringList&,
                                  const QString&) override {
    return std::nullopt;
  }
  DccChoice AskDccChat(const QString&) override { return DccChoice::Cancel; }
  DccChoice AskDccReceive(const QString&, QString&) override { return DccChoice::Cancel; }
  DccChoice AskDccExisting(const QString&, bool) override { return DccChoice::Cancel; }
  std::optional<DccSendChoice> AskDccSend(const QString&) override { return std::nullopt; }
  void PlaySound(const QString&) override {}
  void SetBusy(bool) override {}
  void ShowConnectionState(bool) override {}
};
