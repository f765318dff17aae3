#pragma once
// SASL accounts per server host, kept apart from "servers.txt" (whose four fields stay as
// they are) in "sasl_accounts.txt" in the home folder, mode 0600 since it holds
// passwords. One line per host, LF-ended:
//
//   host TAB mechanism TAB account TAB options TAB password
//
// The mechanism is "PLAIN" or "EXTERNAL"; options is "-" or a comma-separated list of
// "allow-plain" (authenticate over a connection without TLS too) and "disconnect" (end
// the connection when authentication fails instead of going on without it). For PLAIN the
// last field is the password, everything behind the fourth TAB. For EXTERNAL it is the
// client certificate file (PEM, with its private key; relative to the home folder), which
// TLS presents and the server recognises; the account may then be empty, as it is not
// sent. Empty lines and lines starting with "#" are notes; lines that cannot be read are
// kept as they are and reported, never dropped.

#include <QList>
#include <QString>

#include <optional>

class SettingsStore;

struct SaslAccount {
  QString account;
  QString password;
  bool allowPlain = false;           // send the password over a plain connection too
  bool disconnectOnFailure = false;  // else registration goes on unauthenticated
  QString certificate;               // EXTERNAL with this client certificate; PLAIN when empty

  bool External() const { return !certificate.isEmpty(); }

  friend bool operator==(const SaslAccount&, const SaslAccount&) = default;
};

QString SaslAccountsPath(const SettingsStore& store);

// The account for `host` (host names compare without regard to case); nullopt when there
// is none. `damagedLines`, when given, receives the numbers (from 1) of unreadable lines.
std::optional<SaslAccount> FindSaslAccount(const QString& path, const QString& host,
                                           QList<int>* damagedLines = nullptr);

// Gives `host` the account (one with neither an account name nor a certificate removes
// its line), dropping the line of `oldHost` too when given (a renamed server); every other
// line is kept byte for byte.
// The file is replaced atomically with mode 0600; a missing file is not created just to
// hold nothing. False when it could not be written.
bool StoreSaslAccount(const QString& path, const QString& host, const SaslAccount& account,
                      const QString& oldHost = {});
