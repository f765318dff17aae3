#pragma once
// Certificates the user chose to trust although they could not be verified (a
// self-signed server, a private CA), kept per server host in "tls_pins.txt" in the home
// folder: one "host TAB SHA-256 fingerprint" per line, LF-ended, mode 0600. A host has
// one pin; trusting another certificate for it replaces the old one.

#include <QString>

class SettingsStore;

QString TlsPinsPath(const SettingsStore& store);
// Whether `fingerprint` is the one pinned for `host` (an unreadable file pins nothing).
bool IsPinned(const QString& path, const QString& host, const QString& fingerprint);
// Pins `fingerprint` for `host`, keeping every other host's pin; the file is replaced
// atomically. False when it could not be written.
bool Pin(const QString& path, const QString& host, const QString& fingerprint);
