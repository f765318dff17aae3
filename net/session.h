#pragma once
// The one connection to an IRC server and its state.

#include "irc/sasl_negotiation.h"
#include "net/socket_transport.h"

#include <QByteArray>
#include <QString>

struct Session {
  int serverSocket = kNoSocket;
  int identdSocket = kNoSocket;  // the accepted ident query, handed over by the identd thread
  bool connected = false;        // registration sent; cleared by any socket error
  bool userQuit = false;         // the user ended it: no automatic reconnect, once
  QString requestedNick;         // sent in NICK; emptied when the server accepts a nick
  QString currentNick;           // the server's idea of our nick; empty until registered
  QString ownUserHost;           // "user@host" as others see us, from our own JOIN's echo
  QByteArray receiveBuffer;      // bytes of an incomplete line
  bool discardingLongLine = false;  // an over-long line is being dropped up to its LF
  // Seconds since the last notify poll; primed so that the first poll follows
  // registration on the first tick.
  int notifyTicks = 20;
  QString serverHost;            // the selected server, the prefix of lines without one
  // The token of our own keep-alive PING while its PONG is due: that reply is not shown.
  QString keepAliveToken;
  // Over TLS the server socket is the session's end of a local pair: the address the
  // TCP connection leaves from is kept here (0 without TLS).
  quint32 tlsLocalAddress = 0;
  SaslState sasl;  // logging in while registering, when the server has an account
};

// The address our end of the server connection has (offered in DCC), 0 when unknown.
inline quint32 ServerLinkAddress(const Session& session) {
  return session.tlsLocalAddress != 0 ? session.tlsLocalAddress : LocalAddress(session.serverSocket);
}
