#pragma once
// The notify list: nicks the user watches. The session asks the server with ISON every
// 21 ticks; each answer is compared with what was known, and arrivals and departures
// are written to Status. The watched nicks are the "notify" word list ("alice bob "),
// switched on by "en_notify"; "not_whois" asks for a WHOIS of each arrival.

#include <QString>
#include <QStringView>

#include <vector>

class ClientContext;
class SettingsStore;

// Nicks are compared by their first 63 units, on both sides.
inline constexpr int kNotifyNickUnits = 63;

struct NotifyEntry {
  QString nick;         // the watched nick; after a match, the server's spelling of it
  bool online = false;  // known to be on IRC
};

// Splits at blanks: every word before a blank is an entry (so adjacent blanks give
// entries with empty nicks), and the text behind the last blank one more when it is not
// empty. Every nick is cut to 63 units and starts offline.
std::vector<NotifyEntry> BuildNotifyChain(QStringView text);

class NotifyList {
 public:
  // Rebuilds the list from the "notify" setting. Every nick starts offline, so after a
  // reload the next poll announces again whoever is on IRC.
  void Load(const SettingsStore& settings);

  const std::vector<NotifyEntry>& Entries() const { return entries_; }
  std::vector<NotifyEntry>& Entries() { return entries_; }

 private:
  std::vector<NotifyEntry> entries_;
};

// Sends "ISON " + the "notify" text exactly as stored, its trailing blank included.
// The session decides when ("en_notify", a pending /ison, the options dialog).
void SendNotifyPoll(ClientContext& ctx);

// A 303 reply the user did not ask for: `answer` holds the nicks now on IRC. Writes
// "* nick is on IRC" / "* nick has left IRC" (style Notify) for every change, keeps the
// server's spelling of each nick found, and with "not_whois" on runs "/whois nick".
void CompareNotifyAnswer(ClientContext& ctx, NotifyList& list, QStringView answer);

// The connection has ended: nobody is known to be on IRC any more.
void MarkNotifyOffline(NotifyList& list);
