#include "settings/option_pages.h"

#include "net/server_list.h"
#include "settings/settings_defaults.h"
#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "settings/word_list.h"

#include <algorithm>
#include <cstdint>

using namespace Qt::StringLiterals;

namespace {

QString ReadText(const SettingsStore& store, QStringView name) {
  QString text;
  const SettingDefinition* d = FindSettingDefinition(name);
  store.GetString(name, text, d ? d->capacity : kWordListUnits);
  return text;
}

bool ReadSwitch(const SettingsStore& store, QStringView name) { return store.GetDword(name) != 0; }

// The checks of a page that sit in several groups, as one table.
std::vector<FlagCheck> GeneralChecks() {
  std::vector<FlagCheck> all(kChannelChecks.begin(), kChannelChecks.end());
  all.push_back(kIdentdEnableCheck);
  all.push_back(kIdentdShowCheck);
  all.insert(all.end(), kIrcChecks.begin(), kIrcChecks.end());
  return all;
}

std::vector<FlagCheck> FilesChecks() {
  std::vector<FlagCheck> all(kLogChecks.begin(), kLogChecks.end());
  all.push_back(kWhispersEnableCheck);
  all.insert(all.end(), kWhisperChecks.begin(), kWhisperChecks.end());
  return all;
}

}  // namespace

CheckStates LoadChecks(const SettingsStore& store, std::span<const FlagCheck> checks) {
  CheckStates states;
  for (const FlagCheck& c : checks) states[c.control] = TestFlag(store, c.word, c.control);
  return states;
}

// A check missing from `states` is written as off: the page owns every bit it shows.
void SaveChecks(SettingsStore& store, std::span<const FlagCheck> checks, const CheckStates& states) {
  for (const FlagCheck& c : checks) {
    const auto found = states.find(c.control);
    SetFlag(store, c.word, c.control, found != states.end() && found->second);
  }
}

qint32 DecimalPrefix(QStringView text) {
  qsizetype i = 0;
  while (i < text.size() && (text[i] == u' ' || text[i] == u'\t')) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) negative = text[i++] == u'-';
  qint64 value = 0;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i)
    value = std::min<qint64>(value * 10 + (text[i].unicode() - u'0'), qint64(1) << 31);
  value = negative ? -value : value;
  return static_cast<qint32>(std::clamp<qint64>(value, INT32_MIN, INT32_MAX));
}

int TextLimit(QStringView name) {
  const SettingDefinition* d = FindSettingDefinition(name);
  return (d ? d->capacity : kWordListUnits) - 1;
}

void SaveText(SettingsStore& store, QStringView name, QStringView text) {
  const int limit = TextLimit(name);
  store.SetString(name, text.first(std::min<qsizetype>(text.size(), limit)), limit + 1);
}

ConnectionOptions LoadConnectionOptions(const SettingsStore& store) {
  ConnectionOptions o;
  o.server = store.GetDword(u"server");
  o.nick = ReadText(store, u"nick");
  o.alterNick = ReadText(store, u"alternick");
  o.fullName = ReadText(store, u"fullname");
  o.email = ReadText(store, u"email");
  o.invisible = TestFlag(store, kInvisibleCheck.word, kInvisibleCheck.control);
  return o;
}

void SaveConnectionOptions(SettingsStore& store, const ConnectionOptions& o) {
  store.SetDword(u"server", o.server);
  SaveText(store, u"nick", o.nick);
  SaveText(store, u"alternick", o.alterNick);
  SetFlag(store, kInvisibleCheck.word, kInvisibleCheck.control, o.invisible);
  SaveText(store, u"fullname", o.fullName);
  SaveText(store, u"email", o.email);
}

QStringList NetworksOf(const ServerList& list) {
  QStringList networks;
  for (const ServerEntry& e : list.Entries())
    if (!networks.contains(e.network)) networks.append(e.network);
  return networks;
}

std::vector<int> ServersOfNetwork(const ServerList& list, const QString& network) {
  std::vector<int> found;
  for (int i = 0; i < list.Count(); ++i)
    if (list.Entries()[i].network == network) found.push_back(i);
  return found;
}

bool ServerEntryComplete(const ServerEntry& e) {
  return !e.network.isEmpty() && !e.server.isEmpty() && !e.ports.isEmpty();
}

GeneralOptions LoadGeneralOptions(const SettingsStore& store) {
  GeneralOptions o;
  o.checks = LoadChecks(store, GeneralChecks());
  o.idUser = ReadText(store, u"IdUser");
  o.idSystem = ReadText(store, u"IdSystem");
  o.idPort = QString::number(store.GetDword(u"IdPort"));
  return o;
}

void SaveGeneralOptions(SettingsStore& store, const GeneralOptions& o) {
  SaveChecks(store, GeneralChecks(), o.checks);
  SaveText(store, u"IdUser", o.idUser);
  SaveText(store, u"IdSystem", o.idSystem);
  store.SetDword(u"IdPort", DecimalPrefix(o.idPort));
}

DccOptions LoadDccOptions(const SettingsStore& store) {
  DccOptions o;
  // A field holding no known policy shows no choice and is written back as "Ask".
  const auto policy = [&](int shift) {
    const int v = GetNibble(store, u"DCC", shift);
    return v <= 2 ? static_cast<DccPolicy>(v) : DccPolicy::Ask;
  };
  o.chat = policy(kDccChatPolicyShift);
  o.send = policy(kDccSendPolicyShift);
  o.downloadsPath = ReadText(store, u"DCCpath");
  o.localHost = ReadText(store, u"LocalHost");
  o.autoAddress = TestFlag(store, kDccAutoAddressCheck.word, kDccAutoAddressCheck.control);
  o.serverLookup = TestFlag(store, u"DCC", kDccServerLookup);
  return o;
}

void SaveDccOptions(SettingsStore& store, const DccOptions& o) {
  SetNibble(store, u"DCC", kDccChatPolicyShift, static_cast<int>(o.chat));
  SetNibble(store, u"DCC", kDccSendPolicyShift, static_cast<int>(o.send));
  SaveText(store, u"DCCpath", o.downloadsPath);
  SaveText(store, u"LocalHost", o.localHost);
  SetFlag(store, kDccAutoAddressCheck.word, kDccAutoAddressCheck.control, o.autoAddress);
  SetFlag(store, u"DCC", kDccServerLookup, o.serverLookup);
}

QStringList WordListEntries(QStringView listText) {
  QStringList entries;
  for (const QStringView word : listText.split(u' ', Qt::SkipEmptyParts)) entries.append(word.toString());
  return entries;
}

QString WordListText(const QStringList& entries) {
  QString text;
  for (const QString& entry : entries) {
    if (text.size() + entry.size() + 1 > kWordListMaxLength) break;
    text += entry + u' ';
  }
  return text;
}

// Compared as the list box compares its items: the whole text, case ignored.
int AddListEntry(QStringList& entries, const QString& text) {
  const QString entry = text.trimmed();
  if (entry.isEmpty()) return -1;
  for (int i = 0; i < entries.size(); ++i)
    if (entries[i].compare(entry, Qt::CaseInsensitive) == 0) return i;
  entries.append(entry);
  return static_cast<int>(entries.size()) - 1;
}

InfoOptions LoadInfoOptions(const SettingsStore& store) {
  InfoOptions o;
  o.timestamps = ReadSwitch(store, u"tstamps");
  o.partMsg = ReadText(store, u"partmsg");
  o.quitMsg = ReadText(store, u"quitmsg");
  for (size_t i = 0; i < kInfoLists.size(); ++i) {
    o.entries[i] = WordListEntries(ReadText(store, kInfoLists[i].listValue));
    o.enabled[i] = ReadSwitch(store, kInfoLists[i].enableValue);
  }
  o.notifyWhois = ReadSwitch(store, u"not_whois");
  return o;
}

void SaveInfoOptions(SettingsStore& store, const InfoOptions& o) {
  store.SetDword(u"tstamps", o.timestamps ? 1 : 0);
  SaveText(store, u"partmsg", o.partMsg);
  SaveText(store, u"quitmsg", o.quitMsg);
  for (size_t i = 0; i < kInfoLists.size(); ++i) {
    store.SetDword(kInfoLists[i].enableValue, o.enabled[i] ? 1 : 0);
    const QString text = WordListText(o.entries[i]);
    store.SetString(kInfoLists[i].listValue, text, kWordListUnits);
  }
  store.SetDword(u"not_whois", o.notifyWhois ? 1 : 0);
}

FilesOptions LoadFilesOptions(const SettingsStore& store) {
  FilesOptions o;
  o.checks = LoadChecks(store, FilesChecks());
  o.logPath = ReadText(store, u"logpath");
  o.whisperCount = GetNibble(store, u"Files", kWhispersCountShift);
  return o;
}

void SaveFilesOptions(SettingsStore& store, const FilesOptions& o) {
  SaveChecks(store, FilesChecks(), o.checks);
  SaveText(store, u"logpath", o.logPath);
  SetNibble(store, u"Files", kWhispersCountShift, o.whisperCount);
}
