#pragma once
// The CTCP texts of DCC: parsing what a peer sent behind "DCC " into a DccRequest, and
// building the text of our own requests. Pure functions; DCC itself never sees a CTCP.
//
//   CHAT chat 2130706433 5000                  an offer of a chat
//   SEND "my_file.txt" 2130706433 5000 1024    an offer of a file (quotes optional)
//   SEND file.txt 2130706433 0 1024 17         a passive offer: port 0 and a token
//   RESUME "file.txt" 5000 512                 go on from byte 512 ...
//   ACCEPT "file.txt" 5000 512                 ... agreed

#include "dcc/dcc_request.h"

#include <QStringView>

#include <optional>

class ClientContext;

// nullopt for an unknown type, a missing or malformed field; extra words are ignored.
// The address is read as an unsigned decimal, or as the signed form our own offers use.
std::optional<DccRequest> ParseDccRequest(QStringView argument);

// The CTCP text without its 0x01 marks. A SEND names the file in double quotes with every
// blank made an underscore; addresses go out as a signed 32-bit decimal.
QString DccRequestText(const DccRequest& request);

// "PRIVMSG nick :\1" + the text + "\1". An offer of our own (CHAT or SEND without a token)
// is announced first: "NOTICE nick :DCC Chat (<LocalHost>)" or
// "NOTICE nick :DCC Send <file> (<LocalHost>)".
void SendDccRequest(ClientContext& ctx, const QString& nick, const DccRequest& request);

// The CTCP handler's DCC row: drops the request while an earlier offer is being dealt
// with (`dccOfferBusy`), and keeps the flag set while DCC handles this one.
void OnDccCtcp(ClientContext& ctx, QStringView nick, QStringView argument);
