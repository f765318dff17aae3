#pragma once
// One DCC request as the two clients exchange it through the IRC server, whichever way
// it goes: an offer (CHAT, SEND), a resume request (RESUME) or its answer (ACCEPT). The
// IRC side turns it into the CTCP text and back; DCC itself only reads the fields.

#include <QString>

enum class DccRequestType { Chat, Send, Resume, Accept };

struct DccRequest {
  DccRequestType type = DccRequestType::Chat;
  QString fileName;     // SEND, RESUME, ACCEPT: as offered, without the quotes
  quint32 address = 0;  // CHAT, SEND: the offering client's IPv4 address, host order
  int port = 0;         // 0 in a passive offer: the other side is asked to listen
  qint64 size = 0;      // SEND: the file's size
  qint64 position = 0;  // RESUME, ACCEPT: where the transfer goes on
  QString token;        // passive (reverse) DCC: pairs the offer with its answer

  bool IsPassive() const { return port == 0 && !token.isEmpty(); }
};
