#pragma once
// The server's three-digit replies: topics, names, whois, away, USERHOST and ISON
// answers, ban lists, the message of the day, and the nick-in-use fallback. Registration
// itself is noticed earlier, by RegistrationGate, for every message.
//
// The replies act on state kept between lines besides the context: the notify list
// (ISON answers) and the ban list the user asked for through the channel menu. Both are
// handed in through NumericState, so tests and the dispatch row own them explicitly.

#include <QString>

#include <functional>
#include <vector>

class ClientContext;
class NotifyList;
struct ServerMessage;

// One entry of a ban list the user asked for ("Remove ban" in the channel menu).
struct BanListEntry {
  QString channel;  // at most 128 units
  QString mask;     // at most 128 units
};

// The entries of the requested ban list in arrival order; the count is its size.
using BanList = std::vector<BanListEntry>;

inline constexpr int kBanListTextUnits = 128;

struct NumericState {
  NotifyList& notify;
  BanList& banList;
  // Opens the "Remove ban" chooser once a requested ban list is complete; the chooser
  // takes over `actionChannel` and frees the list. Without one, the end of the list is
  // shown raw and the collection is dropped, so nothing lingers for the next request.
  std::function<void(ClientContext& ctx, BanList& banList)> openBanListChooser;
};

// Every command that reads as a positive number.
void HandleNumeric(ClientContext& ctx, NumericState& state, const ServerMessage& message);

// The rows of HandleNumeric's table, one concern per source file; the numbers each
// takes stand in front of it.
using NumericHandler = void (*)(ClientContext& ctx, NumericState& state,
                                const ServerMessage& message);

// numeric_table.cpp. Any other number: the rest, unchanged, on Status in style Normal.
void ShowNumericRaw(ClientContext&, NumericState&, const ServerMessage&);
/* 372 375 376 */ void OnMotdLine(ClientContext&, NumericState&, const ServerMessage&);

// numeric_whois.cpp
/* 301 */ void OnAway(ClientContext&, NumericState&, const ServerMessage&);
/* 311 */ void OnWhoisUser(ClientContext&, NumericState&, const ServerMessage&);
/* 312 317 319 338 */ void OnWhoisLine(ClientContext&, NumericState&, const ServerMessage&);
/* 315 369 */ void OnEndOfList(ClientContext&, NumericState&, const ServerMessage&);
/* 318 */ void OnEndOfWhois(ClientContext&, NumericState&, const ServerMessage&);

// numeric_userhost_ison.cpp
/* 302 */ void OnUserhostReply(ClientContext&, NumericState&, const ServerMessage&);
/* 303 */ void OnIsonReply(ClientContext&, NumericState&, const ServerMessage&);

// numeric_channel.cpp
/* 329 */ void OnChannelCreated(ClientContext&, NumericState&, const ServerMessage&);
/* 331 */ void OnNoTopicReply(ClientContext&, NumericState&, const ServerMessage&);
/* 332 */ void OnTopicReply(ClientContext&, NumericState&, const ServerMessage&);
/* 333 */ void OnTopicSetBy(ClientContext&, NumericState&, const ServerMessage&);
/* 341 */ void OnInviting(ClientContext&, NumericState&, const ServerMessage&);

// numeric_names.cpp
/* 353 */ void OnNames(ClientContext&, NumericState&, const ServerMessage&);
/* 366 */ void OnEndOfNames(ClientContext&, NumericState&, const ServerMessage&);

// numeric_ban_list.cpp
/* 367 */ void OnBanEntry(ClientContext&, NumericState&, const ServerMessage&);
/* 368 */ void OnEndOfBanList(ClientContext&, NumericState&, const ServerMessage&);

// numeric_nick_fallback.cpp
/* 432 433 */ void OnNickRefused(ClientContext&, NumericState&, const ServerMessage&);

// numeric_local_address.cpp: a 302 nobody typed answers the client's own USERHOST
// after registration. Stores the address behind the "@" as "LocalHost" for DCC offers
// and writes "Local host: <host name> (<address>)" on Status once the reverse look-up
// is done (off this thread when an event loop runs, so a slow resolver never freezes it).
void LearnLocalAddress(ClientContext& ctx, const QString& userhostReply);

// The dispatch table's numeric row: the context's own notify and ban lists.
void OnNumeric(ClientContext& ctx, const ServerMessage& message);
