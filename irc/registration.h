#pragma once
// Noticing that the server has accepted us. Servers differ in what they send first, so
// registration is complete with the first message addressed to us, numeric 001 or not.

#include <QString>

class ClientContext;
struct ServerMessage;

// For every message whose target is neither empty nor "*". Keeps the own nick in step
// with numerics 1 to 99 and completes registration on the first message addressed to us,
// except a NOTICE to "AUTH" (the server's ident chatter before it knows our nick).
void RegistrationGate(ClientContext& ctx, const ServerMessage& message);

// Takes `firstParameter` as the own nick and sends what the settings ask for once we are
// in: a USERHOST for the own address (DCC), "MODE nick +i", and a JOIN per open channel.
void RegistrationComplete(ClientContext& ctx, const QString& firstParameter);
