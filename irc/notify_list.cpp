#include "irc/notify_list.h"

#include "client/client_context.h"
#include "commands/submit_input.h"
#include "settings/settings_store.h"
#include "settings/word_list.h"

using namespace Qt::StringLiterals;

namespace {

QString NotifyText(const SettingsStore& settings) {
  QString text;
  settings.GetString(u"notify", text, kWordListUnits);
  return text;
}

NotifyEntry MakeEntry(QStringView word) { return {word.left(kNotifyNickUnits).toString(), false}; }

// An empty entry (from two blanks in a row) is not a nick: it never counts as on IRC,
// or a doubled blank in an answer would announce "*  is on IRC".
const NotifyEntry* FindInAnswer(const std::vector<NotifyEntry>& answer, QStringView nick) {
  if (nick.isEmpty()) return nullptr;
  for (const NotifyEntry& entry : answer)
    if (entry.nick.compare(nick, Qt::CaseInsensitive) == 0) return &entry;
  return nullptr;
}

void Announce(ClientContext& ctx, const QString& nick, bool arrived) {
  const QString line = u"* "_s + nick + (arrived ? u" is on IRC"_s : u" has left IRC"_s);
  ctx.PrintStatus(line, LineStyle::Notify);
  // The user asked to see at once who has just come: the WHOIS goes out as if typed.
  if (arrived && ctx.settings.GetDword(u"not_whois") != 0) RunCommand(ctx, u"/whois "_s + nick);
}

}  // namespace

std::vector<NotifyEntry> BuildNotifyChain(QStringView text) {
  std::vector<NotifyEntry> chain;
  qsizetype start = 0;
  for (qsizetype blank = text.indexOf(u' '); blank >= 0; blank = text.indexOf(u' ', start)) {
    chain.push_back(MakeEntry(text.sliced(start, blank - start)));
    start = blank + 1;
  }
  if (start < text.size()) chain.push_back(MakeEntry(text.sliced(start)));
  return chain;
}

void NotifyList::Load(const SettingsStore& settings) {
  entries_ = BuildNotifyChain(NotifyText(settings));
}

void SendNotifyPoll(ClientContext& ctx) { ctx.SendToServer(u"ISON "_s + NotifyText(ctx.settings)); }

void CompareNotifyAnswer(ClientContext& ctx, NotifyList& list, QStringView answer) {
  const std::vector<NotifyEntry> online = BuildNotifyChain(answer);
  for (NotifyEntry& entry : list.Entries()) {
    const NotifyEntry* found = FindInAnswer(online, entry.nick);
    if (found) entry.nick = found->nick;  // the server's spelling is the one to show
    if (found && !entry.online) {
      entry.online = true;
      Announce(ctx, entry.nick, true);
    } else if (!found && entry.online) {
      entry.online = false;
      Announce(ctx, entry.nick, false);
    }
  }
}

void MarkNotifyOffline(NotifyList& list) {
  for (NotifyEntry& entry : list.Entries()) entry.online = false;
}
