#pragma once
// What DCC needs of the rest of the client: a way to send its requests to a nick (the
// IRC side builds the CTCP text), the own nick for the echo of chat lines, the ignore
// list, and the address the server connection leaves from. DCC knows nothing else of IRC.

#include "dcc/dcc_request.h"

#include <QString>
#include <QStringView>

class DccLink {
 public:
  virtual ~DccLink() = default;
  virtual void SendDccRequest(const QString& nick, const DccRequest& request) = 0;
  virtual QString OwnNick() const = 0;
  virtual bool IsIgnoredNick(QStringView nick) = 0;
  // Host order; 0 without a connection.
  virtual quint32 ServerSideAddress() const = 0;
};
