#pragma once
// CTCP inside PRIVMSG and NOTICE: the text opens with U+0001, a keyword, a blank, an
// argument and a closing U+0001. The client understands ACTION, PING and DCC; every
// other keyword (VERSION, TIME, ...) is dropped without an answer.

#include <QStringView>

#include <optional>

class ClientContext;
struct ServerMessage;

inline constexpr QChar kCtcpMark = QChar(0x0001);

struct CtcpParts {
  QStringView keyword;   // as sent; compare it with case ignored
  QStringView argument;  // between the blank behind the keyword and the closing mark
};

// The keyword and argument of `rest`; nullopt when it does not open with the mark, has
// no closing mark, or has no blank before the closing mark ("\1VERSION\1").
std::optional<CtcpParts> ParseCtcp(QStringView rest);

// Both CTCP rows (PRIVMSG and NOTICE) come here; the command tells a request from a
// reply. Ignored senders are dropped whatever the keyword, DCC offers included.
//   :bob!u@h PRIVMSG #room :\1ACTION waves\1   -> "* bob waves" in #room
//   :bob!u@h PRIVMSG me :\1PING 12345\1        -> "NOTICE bob :\1PING 12345\1" sent back
//   :bob!u@h NOTICE me :\1PING 1700000000\1    -> "[bob PING reply]: 3secs" on Status
//   :bob!u@h PRIVMSG me :\1DCC SEND f 1 2 3\1  -> OnDccCtcp (irc/dcc_ctcp.h)
void OnCtcp(ClientContext& ctx, const ServerMessage& message);

// "* bob waves", highlighted like a message, in the channel or in bob's Chat tab.
void OnCtcpAction(ClientContext& ctx, const ServerMessage& message, QStringView argument);
// Echoes the whole rest in a NOTICE and shows "[bob PING]" or "[bob:#room PING]".
void OnCtcpPingRequest(ClientContext& ctx, const ServerMessage& message);
// "[bob PING reply]: <now - argument>secs" on Status; the argument is the seconds count
// our request carried. Dropped unless the argument is a whole number.
void OnCtcpPingReply(ClientContext& ctx, const ServerMessage& message, QStringView argument);

// The seconds count of a PING argument: optional blanks, an optional sign and decimal
// digits that fit in 64 bits, nothing else; nullopt otherwise.
std::optional<qint64> ParsePingSeconds(QStringView argument);
