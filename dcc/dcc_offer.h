#pragma once
// The one entry point for incoming CTCP DCC requests (CHAT, SEND, RESUME, ACCEPT).
//
// DCC is not implemented yet. Until it is, an offer is only shown on Status so that the
// user knows someone tried; nothing is accepted: no connection is made, no socket is
// opened and no file is created or written. The busy flag is honoured already because
// the real offer handling keeps it set while its dialog is up.

#include <QStringView>

class ClientContext;

// `argument` is the CTCP text behind "DCC ", such as "SEND file.zip 3232235777 5000 1024".
// The caller has already dropped ignored senders. While ctx.dccOfferBusy is set the
// offer is dropped; otherwise Status shows, in the Info2 colour,
// "* DCC offer from bob: SEND file.zip ... (not accepted: DCC is not available yet)".
// A request without a type and a blank behind it is dropped as malformed.
void HandleDccOffer(ClientContext& ctx, QStringView nick, QStringView argument);
