#pragma once
// The tab bar as a model: every conversation the client holds, the current tab, label
// colours and nick lists. Views observe its signals and repaint lazily; nothing here
// waits for painting. The Status tab is position 0 and is never looked up by name.

#include "views/conversation_tab.h"

#include <QDateTime>
#include <QObject>
#include <functional>
#include <optional>
#include <vector>

class SettingsStore;

struct TabLabel {
  bool showIcon = false;
  QString text;  // empty when the kind shows no name
};

class TabBar : public QObject {
  Q_OBJECT

 public:
  using Clock = std::function<QDateTime()>;

  explicit TabBar(SettingsStore& settings, QObject* parent = nullptr);
  ~TabBar() override;

  SettingsStore& Settings() const { return settings_; }
  QDateTime Now() const { return clock_(); }
  void SetClock(Clock clock) { clock_ = std::move(clock); }
  // 1 on a normal screen, 2 on a "VGA" screen: scales the nick pane's starting width.
  void SetScaleFactor(int factor) { scaleFactor_ = factor; }
  int ScaleFactor() const { return scaleFactor_; }

  int Count() const { return static_cast<int>(tabs_.size()); }
  int Current() const { return current_; }
  ConversationTab* At(int position);
  const ConversationTab* At(int position) const;

  int FindTab(QStringView name, TabKind kind) const;
  int FindTabByView(TabId id) const;  // Count() when none
  int TabKindOfView(TabId id) const;  // -1 when none
  std::optional<QString> TabNameOfView(TabId id) const;
  // Name and kind of the current tab; nullopt for none or a file-transfer tab.
  std::optional<QString> CurrentTabName(TabKind* kind = nullptr) const;
  NickList* ChannelNickList(QStringView channel);

  int OpenTab(QStringView name, TabKind kind);
  // A new tab even when one of that name and kind exists (a second transfer of a file).
  int AddTab(QStringView name, TabKind kind);
  void ActivateTab(int position);
  void StepTab(int keyCode);  // 37 left arrow, 39 right arrow
  void CloseTabAt(int position);
  void CloseTabByView(TabId id);
  void CloseTabByName(QStringView name, TabKind kind);
  void CloseChannelTabs();
  void CloseAllTabs();
  TabLabel LabelOf(int position) const;
  void RefreshTabLabels();
  void RejoinChannels(const std::function<void(const QString&)>& sendLine) const;
  void SetTabLabelColour(int position, quint32 colour);
  // One more line the user has not seen; showing the tab clears the count.
  void CountUnreadLine(int position);
  void SetNickPaneWidth(int position, int width);
  // "Clear" in a tab's menu: every stored line goes; "Scroll On/Off" sets the follow flag.
  void ClearLines(int position);
  void SetFollowNewLines(int position, bool follow);

  int FindNick(QStringView channel, QStringView nick) const;
  bool AddNick(QStringView channel, QStringView nick);
  void AddNickUnchecked(QStringView channel, QStringView nick);
  bool RemoveNick(QStringView channel, QStringView nick);
  bool RenameNick(QStringView channel, QStringView oldNick, QStringView newNick);
  bool SetNickRank(QStringView channel, QStringView nick, NickRank rank);
  void ClearNickList(QStringView channel);

  // Told by the output path after it stored a line (see output_path.h).
  void NotifyLinesAppended(int position) { emit linesAppended(tabs_[position]->id, position); }

 signals:
  void tabOpened(TabId id, int position);
  void tabClosed(TabId id, int position);
  void currentChanged(int position);
  void labelColourChanged(int position);
  void unreadChanged(int position);
  void labelsChanged();
  void linesAppended(TabId id, int position);
  void linesCleared(TabId id);
  void followChanged(TabId id, bool follow);
  void nickListChanged(TabId id);
  void eventSound(const QString& event);
  void balloonRequested(int position, const QString& line, quint32 colour);
  // A line the user would want to hear of while looking elsewhere: a highlight or a
  // private message (the front end may raise a desktop notification).
  void attentionWanted(int position, const QString& line);

 private:
  const NickList* NickListOf(QStringView channel) const;
  void NickListChanged(QStringView channel);

  SettingsStore& settings_;
  std::vector<std::unique_ptr<ConversationTab>> tabs_;
  int current_ = -1;
  TabId nextId_ = 1;
  int scaleFactor_ = 1;
  Clock clock_ = [] { return QDateTime::currentDateTime(); };
};
