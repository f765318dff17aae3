// The server commands the client acts on, in the order they are tried, each with its
// handler. A row whose handler is nullptr would show the rest on Status, as an unknown
// command does.

#include "irc/dispatch.h"
#include "irc/channel_events.h"
#include "irc/ctcp_handlers.h"
#include "irc/mode_handler.h"
#include "irc/message_handlers.h"
#include "irc/numeric_handlers.h"
#include "irc/ping_handler.h"

#include <array>

namespace {

constexpr std::array kRows{
    DispatchRow{RowTest::Word, u"JOIN", &OnJoin},
    DispatchRow{RowTest::Word, u"PART", &OnPart},
    DispatchRow{RowTest::Word, u"NICK", &OnNick},
    DispatchRow{RowTest::Word, u"ERROR", &OnServerError},
    DispatchRow{RowTest::Word, u"QUIT", &OnQuit},
    DispatchRow{RowTest::Word, u"TOPIC", &OnTopic},
    DispatchRow{RowTest::Word, u"INVITE", &OnInvite},
    DispatchRow{RowTest::Word, u"KICK", &OnKick},
    DispatchRow{RowTest::Word, u"MODE", &OnMode},
    DispatchRow{RowTest::WordCtcp, u"NOTICE", &OnCtcp},      // CTCP in a NOTICE (replies)
    DispatchRow{RowTest::WordPlain, u"NOTICE", &OnNotice},   // a notice
    DispatchRow{RowTest::WordCtcp, u"PRIVMSG", &OnCtcp},     // CTCP in a PRIVMSG (requests)
    DispatchRow{RowTest::WordPlain, u"PRIVMSG", &OnPrivmsg}, // a message
    DispatchRow{RowTest::Word, u"PING", &OnServerPing},
    DispatchRow{RowTest::Word, u"PONG", &OnServerPong},
    DispatchRow{RowTest::Numeric, {}, &OnNumeric},           // numeric replies
};

}  // namespace

std::span<const DispatchRow> DispatchRows() { return kRows; }
