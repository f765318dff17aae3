#pragma once
// One tab of the tab bar: its kind, name, stored lines and, for a channel, its nick list.

#include "views/line_store.h"
#include "views/nick_list.h"

#include <QString>
#include <memory>

// The numbers are part of the design: each is also the icon of the kind, and its offset
// from Status selects the kind's bits in "TabSets".
enum class TabKind : int {
  Any = 7100,  // a look-up wildcard: Status, Channel and Chat
  Status = 7101,
  Channel = 7102,
  Chat = 7103,
  DccChat = 7104,
  DccRecv = 7105,
  DccSend = 7106,
};

// Status, Channel and Chat hold IRC conversations; DCC file transfers hold no text.
inline bool IsIrcConversation(TabKind kind) { return kind < TabKind::DccChat; }
inline bool IsTransfer(TabKind kind) { return kind > TabKind::DccChat; }

// Stands for the device's text-view handle: what identifies a tab while positions move.
using TabId = quint64;

inline constexpr quint32 kLabelGrey = 0x808080;  // nothing new in the tab

struct ConversationTab {
  TabId id = 0;
  TabKind kind = TabKind::Status;
  QString name;
  quint32 labelColour = 0;  // 0x00BBGGRR of the last line printed while in the back
  int unreadLines = 0;      // printed while in the back, since the tab was last shown
  int nickPaneWidth = 60;   // pixels, times the screen factor
  bool followNewLines = true;  // the view scrolls to each new line ("Scroll On")
  std::unique_ptr<NickList> nickList;  // Channel tabs only
  std::unique_ptr<LineStore> lines = std::make_unique<LineStore>();
};
