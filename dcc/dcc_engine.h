#pragma once
// DCC: direct chats and file transfers with other users, negotiated through requests
// that the IRC side carries (dcc_link.h). The engine owns every chat and transfer, each
// tied to its tab, asks the user through the Shell, and writes its lines through the
// output path. It never reads or writes the server connection itself.

#include "dcc/dcc_request.h"
#include "dcc/dcc_starter.h"
#include "views/conversation_tab.h"
#include "views/line_style.h"

#include <QObject>

#include <chrono>
#include <map>
#include <memory>

class DccChat;
class DccLink;
class DccTransfer;
class SettingsStore;
class Shell;
class TabBar;

class DccEngine : public QObject, public DccStarter {
  Q_OBJECT

 public:
  DccEngine(SettingsStore& settings, TabBar& tabs, Shell& shell, DccLink& link);
  ~DccEngine() override;

  // What the commands ask (DccStarter).
  void StartChat(const QString& nick) override;
  void OfferFile(const QString& nick, const QString& file) override;
  void OpenSendDialog(const QString& nick) override;
  void SayInChat(TabId tab, const QString& text) override;
  // The send dialog's choice: a file offered with this packet size.
  void OfferFile(const QString& nick, const QString& file, int packetSize);

  // An incoming request, parsed by the IRC side; the sender is not ignored.
  void HandleRequest(const QString& nick, const DccRequest& request);

  // The gestures of a DCC tab: Cancel (a transfer) and Close (chat or transfer).
  void CancelTransfer(TabId tab);
  void CloseTab(TabId tab);

  DccChat* ChatOf(TabId tab) const;
  DccTransfer* TransferOf(TabId tab) const;

  // How long a peer may take to connect, or to connect to; how long a transfer may stand
  // still; how long a sender waits for the acknowledgement of its last byte.
  std::chrono::milliseconds peerTimeout{120000};
  std::chrono::milliseconds stallTimeout{120000};
  std::chrono::milliseconds lastAckTimeout{30000};

  // For the chats and transfers.
  SettingsStore& Settings() const { return settings_; }
  TabBar& Tabs() const { return tabs_; }
  DccLink& Link() const { return link_; }
  void Print(TabId tab, const QString& text, LineStyle style);
  void PrintStatus(const QString& text, LineStyle style);

 signals:
  // A transfer's record changed (state, status, progress), or it ended.
  void transferChanged(TabId tab);
  void transferEnded(TabId tab, const QString& status);

 private:
  // Chats (dcc_chat_offers.cpp).
  void OfferChat(const QString& nick);
  void ReceiveChatOffer(const QString& nick, const DccRequest& request);
  void AcceptChat(const QString& nick, const DccRequest& request);
  DccChat& NewChat(const QString& nick);
  // Files we send (dcc_send.cpp).
  void HandleResumeRequest(const QString& nick, const DccRequest& request);
  // Files we receive (dcc_receive.cpp).
  void ReceiveOffer(const QString& nick, const DccRequest& request);
  enum class FileMode { New, Resume, Overwrite };
  bool AskWhereToReceive(const QString& nick, const DccRequest& request, QString& path, FileMode& mode);
  void AutoDestination(const DccRequest& request, QString& path, FileMode& mode);
  void StartReceive(const QString& nick, const DccRequest& request, const QString& path, FileMode mode);
  bool OpenDestination(DccTransfer& transfer, const QString& path, FileMode mode);
  void HandleAcceptReply(const QString& nick, const DccRequest& request);
  void RunReceive(DccTransfer& transfer);
  void FailTransfer(DccTransfer& transfer, const QString& why);
  // Both.
  DccTransfer& NewTransfer(const QString& name, bool sending);
  DccTransfer* FindWaiting(bool sending, int port, const QString& token) const;
  int Listen(int& port);
  quint32 OwnAddress() const;
  void Refuse(const QString& nick, const DccRequest& request, const QString& why);
  void IgnoreSender(const QString& nick);
  void Forget(TabId tab);

  SettingsStore& settings_;
  TabBar& tabs_;
  Shell& shell_;
  DccLink& link_;
  std::map<TabId, std::unique_ptr<DccChat>> chats_;
  std::map<TabId, std::unique_ptr<DccTransfer>> transfers_;
};
