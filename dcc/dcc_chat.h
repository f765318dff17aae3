#pragma once
// One DCC chat: the connection to the peer and the lines both ways, shown in the chat's
// DccChat tab. It waits for the peer (our offer), connects to it (the peer's offer), then
// reads whenever the socket is readable. Everything runs on the window's thread: no
// wait here blocks, since readiness comes from socket notifiers.

#include "views/conversation_tab.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>

class DccEngine;
class QSocketNotifier;

class DccChat : public QObject {
  Q_OBJECT

 public:
  enum class State { Waiting, Connecting, Connected, Closed };

  DccChat(DccEngine& engine, TabId tab, const QString& nick);
  ~DccChat() override;  // closes every socket, says nothing

  // Our offer: waits up to `timeout` for the peer on `listener`; then
  // "Chat DCC Timeout..." on Status.
  void Listen(int listener, std::chrono::milliseconds timeout);
  // The peer's offer: connects to it.
  void Connect(quint32 address, int port, std::chrono::milliseconds timeout);
  // Echoes the line as our own and sends it; nothing while there is no connection.
  void Say(const QString& text);

  State CurrentState() const { return state_; }
  TabId Tab() const { return tab_; }
  const QString& Nick() const { return nick_; }

 private:
  void Established(int socket);
  void ReadPeer();
  void ShowLine(QByteArrayView bytes);
  void End();
  void StopWatching();

  DccEngine& engine_;
  TabId tab_;
  QString nick_;
  State state_ = State::Closed;
  int socket_ = -1;    // listening, connecting or connected
  std::unique_ptr<QSocketNotifier> notifier_;
  QTimer timeout_;
  QByteArray pending_;  // the incomplete line
};
