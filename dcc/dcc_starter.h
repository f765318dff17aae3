#pragma once
// What the user's commands and menus ask of DCC: start a chat, offer a file, open the
// send dialog, and say a line in an open DCC chat. The context's DCC engine answers;
// tests may put a recorder in its place.

#include <QString>

#include "views/conversation_tab.h"

class DccStarter {
 public:
  virtual ~DccStarter() = default;
  virtual void StartChat(const QString& nick) = 0;
  virtual void OfferFile(const QString& nick, const QString& file) = 0;
  // The send dialog, pre-filled with the nick; it starts the send on OK.
  virtual void OpenSendDialog(const QString& nick) = 0;
  virtual void SayInChat(TabId tab, const QString& text) = 0;
};
