#include "views/output_path.h"

#include "settings/settings_flags.h"
#include "settings/settings_store.h"
#include "views/conversation_log.h"
#include "views/tab_bar.h"
#include "views/tab_sets.h"
#include "views/time_format.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace {

// The log's base name, or an empty text when this kind of tab is not being logged.
QString LogBase(const SettingsStore& settings, const ConversationTab& tab) {
  const auto logged = [&](quint32 bit) { return TestFlag(settings, u"Files", bit); };
  switch (tab.kind) {
    case TabKind::Status: return logged(kLogStatus) ? tab.name : QString();
    case TabKind::Channel: return logged(kLogChannels) ? tab.name : QString();
    case TabKind::Chat: return logged(kLogPrivate) ? tab.name : QString();
    case TabKind::DccChat: return logged(kLogDccChat) ? DccLogBase(tab.name) : QString();
    default: return {};
  }
}

}  // namespace

bool BalloonSwitchOn(quint32 tabSets, TabKind kind) { return BalloonOn(tabSets, kind); }

qsizetype PrintToTab(TabBar& bar, int position, QStringView text, quint32 colour) {
  if (!bar.At(position)) return 0;
  if (IsTransfer(bar.At(position)->kind)) position = 0;  // transfers hold no text
  ConversationTab* tab = bar.At(position);
  if (!tab) return 0;

  const SettingsStore& settings = bar.Settings();
  // Reading the clock costs more than the rest of a line, so only when it is needed.
  std::optional<QDateTime> now;
  QString line;
  if (settings.GetDword(u"tstamps") != 0) {
    now = bar.Now();
    line = TimeStamp(now->time());
  }
  line += text;

  const qsizetype rows = tab->lines->Append(line, colour);
  bar.NotifyLinesAppended(position);
  const QString base = LogBase(settings, *tab);
  if (!base.isEmpty()) AppendLogLine(settings, base, line, (now ? *now : bar.Now()).date());

  if (position != bar.Current()) {
    if (BalloonSwitchOn(static_cast<quint32>(settings.GetDword(u"TabSets")), tab->kind))
      emit bar.balloonRequested(position, line, colour);
    bar.SetTabLabelColour(position, colour);
    bar.CountUnreadLine(position);  // a grey label alone would not show the news
  }
  return rows;
}

// Status is found by falling back, never by name: a channel or nick may be called
// "Status" too.
qsizetype PrintToNamedTab(TabBar& bar, QStringView name, TabKind kind, QStringView text,
                          quint32 colour) {
  const int position = bar.FindTab(name, kind);
  return PrintToTab(bar, position >= 0 ? position : 0, text, colour);
}

qsizetype PrintToCurrentTab(TabBar& bar, QStringView text) {
  return PrintToTab(bar, bar.Current(), text, kCurrentTabColour);
}
