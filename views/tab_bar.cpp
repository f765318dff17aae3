#include "views/tab_bar.h"

#include "settings/settings_store.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int kLeftArrow = 37;
constexpr int kRightArrow = 39;
constexpr int kNickPaneWidth = 60;

bool SameName(QStringView a, QStringView b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

}  // namespace

TabBar::TabBar(SettingsStore& settings, QObject* parent) : QObject(parent), settings_(settings) {}

TabBar::~TabBar() = default;

ConversationTab* TabBar::At(int position) {
  return position >= 0 && position < Count() ? tabs_[position].get() : nullptr;
}

const ConversationTab* TabBar::At(int position) const {
  return position >= 0 && position < Count() ? tabs_[position].get() : nullptr;
}

int TabBar::FindTab(QStringView name, TabKind kind) const {
  for (int i = 0; i < Count(); ++i) {
    const ConversationTab& tab = *tabs_[i];
    const bool kindMatches = kind == TabKind::Any ? IsIrcConversation(tab.kind) : tab.kind == kind;
    if (kindMatches && SameName(tab.name, name)) return i;
  }
  return -1;
}

int TabBar::FindTabByView(TabId id) const {
  for (int i = 0; i < Count(); ++i)
    if (tabs_[i]->id == id) return i;
  return Count();
}

int TabBar::TabKindOfView(TabId id) const {
  const ConversationTab* tab = At(FindTabByView(id));
  return tab ? static_cast<int>(tab->kind) : -1;
}

std::optional<QString> TabBar::TabNameOfView(TabId id) const {
  const ConversationTab* tab = At(FindTabByView(id));
  if (!tab) return std::nullopt;
  return tab->name;
}

std::optional<QString> TabBar::CurrentTabName(TabKind* kind) const {
  const ConversationTab* tab = At(current_);
  if (!tab || IsTransfer(tab->kind)) return std::nullopt;
  if (kind) *kind = tab->kind;
  return tab->name;
}

NickList* TabBar::ChannelNickList(QStringView channel) {
  ConversationTab* tab = At(FindTab(channel, TabKind::Channel));
  return tab ? tab->nickList.get() : nullptr;
}

const NickList* TabBar::NickListOf(QStringView channel) const {
  const ConversationTab* tab = At(FindTab(channel, TabKind::Channel));
  return tab ? tab->nickList.get() : nullptr;
}

// Idempotent for every kind but DCC chat: one nick may hold several DCC chats at once.
int TabBar::OpenTab(QStringView name, TabKind kind) {
  if (kind != TabKind::DccChat) {
    const int existing = FindTab(name, kind);
    if (existing >= 0) return existing;
  }
  return AddTab(name, kind);
}

int TabBar::AddTab(QStringView name, TabKind kind) {
  auto tab = std::make_unique<ConversationTab>();
  tab->id = nextId_++;
  tab->kind = kind;
  tab->name = name.toString();
  tab->nickPaneWidth = kNickPaneWidth * scaleFactor_;
  if (kind == TabKind::Channel)
    tab->nickList = std::make_unique<NickList>();
  else if (!tabs_.empty())
    emit eventSound(u"query"_s);  // the very first tab, Status, comes unannounced
  tabs_.push_back(std::move(tab));
  const int position = Count() - 1;
  emit tabOpened(tabs_.back()->id, position);
  return position;
}

// A tab brought to the front has been read: its label turns grey again.
void TabBar::ActivateTab(int position) {
  if (position < 0) position = current_;
  if (!At(position)) return;
  current_ = position;
  tabs_[position]->labelColour = kLabelGrey;
  emit labelColourChanged(position);
  if (std::exchange(tabs_[position]->unreadLines, 0) != 0) emit unreadChanged(position);
  emit currentChanged(position);
}

void TabBar::StepTab(int keyCode) {
  if (keyCode == kLeftArrow && current_ > 0) ActivateTab(current_ - 1);
  if (keyCode == kRightArrow && current_ >= 0 && current_ + 1 < Count()) ActivateTab(current_ + 1);
}

void TabBar::CloseTabAt(int position) {
  if (!At(position)) return;
  if (position > 0) ActivateTab(position - 1);
  const TabId id = tabs_[position]->id;
  tabs_.erase(tabs_.begin() + position);
  if (current_ > position || current_ >= Count()) --current_;
  emit tabClosed(id, position);
  if (current_ >= 0 && position == 0) emit currentChanged(current_);
}

void TabBar::CloseTabByView(TabId id) { CloseTabAt(FindTabByView(id)); }

void TabBar::ClearLines(int position) {
  ConversationTab* tab = At(position);
  if (!tab) return;
  tab->lines->Clear();
  emit linesCleared(tab->id);
}

void TabBar::SetFollowNewLines(int position, bool follow) {
  ConversationTab* tab = At(position);
  if (!tab) return;
  tab->followNewLines = follow;
  emit followChanged(tab->id, follow);
}

void TabBar::CloseTabByName(QStringView name, TabKind kind) { CloseTabAt(FindTab(name, kind)); }

// Status at position 0 is never a channel, so the walk stops above it.
void TabBar::CloseChannelTabs() {
  for (int i = Count() - 1; i >= 1; --i)
    if (tabs_[i]->kind == TabKind::Channel) CloseTabAt(i);
}

void TabBar::CloseAllTabs() {
  for (int i = Count() - 1; i >= 0; --i) CloseTabAt(i);
}

// Two bits per kind in "TabSets": the lower shows the icon, the upper the name.
TabLabel TabBar::LabelOf(int position) const {
  const ConversationTab* tab = At(position);
  if (!tab) return {};
  const quint32 sets = static_cast<quint32>(settings_.GetDword(u"TabSets"));
  const int shift = 2 * (static_cast<int>(tab->kind) - static_cast<int>(TabKind::Status));
  const quint32 bits = (sets >> shift) & 3;
  return {(bits & 1) != 0, (bits & 2) ? tab->name : QString()};
}

void TabBar::RefreshTabLabels() { emit labelsChanged(); }

void TabBar::RejoinChannels(const std::function<void(const QString&)>& sendLine) const {
  for (const auto& tab : tabs_)
    if (tab->kind == TabKind::Channel) sendLine(u"JOIN "_s + tab->name);
}

void TabBar::SetTabLabelColour(int position, quint32 colour) {
  ConversationTab* tab = At(position);
  if (!tab) return;
  tab->labelColour = colour == 0 ? kLabelGrey : colour;
  emit labelColourChanged(position);
}

void TabBar::CountUnreadLine(int position) {
  ConversationTab* tab = At(position);
  if (!tab) return;
  ++tab->unreadLines;
  emit unreadChanged(position);
}

void TabBar::SetNickPaneWidth(int position, int width) {
  if (ConversationTab* tab = At(position)) tab->nickPaneWidth = width;
}

int TabBar::FindNick(QStringView channel, QStringView nick) const {
  const NickList* list = NickListOf(channel);
  return list ? list->Find(nick) : -1;
}

void TabBar::NickListChanged(QStringView channel) {
  if (const ConversationTab* tab = At(FindTab(channel, TabKind::Channel)))
    emit nickListChanged(tab->id);
}

bool TabBar::AddNick(QStringView channel, QStringView nick) {
  NickList* list = ChannelNickList(channel);
  if (!list || !list->Add(nick)) return false;
  NickListChanged(channel);
  return true;
}

void TabBar::AddNickUnchecked(QStringView channel, QStringView nick) {
  NickList* list = ChannelNickList(channel);
  if (!list) return;
  list->AddUnchecked(nick);
  NickListChanged(channel);
}

bool TabBar::RemoveNick(QStringView channel, QStringView nick) {
  NickList* list = ChannelNickList(channel);
  if (!list || !list->Remove(nick)) return false;
  NickListChanged(channel);
  return true;
}

bool TabBar::RenameNick(QStringView channel, QStringView oldNick, QStringView newNick) {
  NickList* list = ChannelNickList(channel);
  if (!list || !list->Rename(oldNick, newNick)) return false;
  NickListChanged(channel);
  return true;
}

bool TabBar::SetNickRank(QStringView channel, QStringView nick, NickRank rank) {
  NickList* list = ChannelNickList(channel);
  if (!list || !list->SetRank(nick, rank)) return false;
  NickListChanged(channel);
  return true;
}

void TabBar::ClearNickList(QStringView channel) {
  NickList* list = ChannelNickList(channel);
  if (!list) return;
  list->Clear();
  NickListChanged(channel);
}
