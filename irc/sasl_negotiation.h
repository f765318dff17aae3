#pragma once
// Logging in with SASL while registering, for a server that has an account in
// "sasl_accounts.txt": PLAIN (account and password) or EXTERNAL (the client certificate
// TLS presented). Registration then begins with "CAP LS 302"; the capability list (several
// lines when long) decides whether "sasl" (and "multi-prefix", which the nick list reads)
// are requested; on ACK the mechanism is named and its AUTHENTICATE lines go out, and the
// server's verdict ends the negotiation with "CAP END".
//
// Every way it can go wrong (no CAP, no sasl, a refused request, a failed login, no answer
// in time) ends the same way: the reason on Status, then either registration goes on
// unauthenticated or, when the user chose so, QUIT and the connection ends. Without an
// account none of this runs and registration is the plain one.

#include "net/sasl_accounts.h"

#include <QString>
#include <QStringList>

class ClientContext;
struct ServerMessage;

struct SaslState {
  enum class Step {
    Off,             // no CAP this connection: CAP and AUTHENTICATE lines are shown as ever
    Listing,         // CAP LS sent, collecting the capability lines
    Requesting,      // CAP REQ sent
    Authenticating,  // AUTHENTICATE <mechanism> sent, credentials and then the verdict due
    Finished,        // CAP END (or QUIT) sent; late CAP and SASL lines are taken quietly
  };
  Step step = Step::Off;
  SaslAccount account;
  QStringList offered;     // the capabilities listed so far ("sasl=PLAIN,EXTERNAL")
  bool loginShown = false;  // the server's "You are now logged in" line is on Status
};

// Whether the negotiation still holds registration back.
bool SaslInProgress(const SaslState& state);

// Sends "CAP LS 302" and starts collecting; called first thing in registration.
void BeginSasl(ClientContext& ctx, const SaslAccount& account);

// Sees every server line before the registration gate and the dispatcher while CAP was
// used on this connection; true when the line was taken (it goes nowhere else).
bool SaslTakesLine(ClientContext& ctx, const ServerMessage& message);

// The server has not finished the negotiation in the time given.
void SaslOverdue(ClientContext& ctx, int seconds);

// The Status line saying why the account cannot be used on this connection (PLAIN
// without TLS when not allowed, EXTERNAL without TLS, a certificate file that cannot be
// read at `certificatePath`); empty when it can.
QString SaslUnusableText(const SaslAccount& account, bool tls, const QString& certificatePath);

// The AUTHENTICATE lines that carry "account NUL account NUL password" in base64: pieces
// of 400 characters, and a lone "AUTHENTICATE +" after a last piece of exactly 400.
QStringList SaslPlainLines(const QString& account, const QString& password);
