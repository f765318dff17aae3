// The server commands the client acts on, in the order they are tried, each with its
// handler. A row whose handler is still nullptr shows the rest on Status, as an unknown
// command does, so nothing is lost until its handler is written.

#include "irc/dispatch.h"
#include "irc/ping_handler.h"

#include <array>

namespace {

constexpr std::array kRows{
    DispatchRow{RowTest::Word, u"JOIN", nullptr},
    DispatchRow{RowTest::Word, u"PART", nullptr},
    DispatchRow{RowTest::Word, u"NICK", nullptr},
    DispatchRow{RowTest::Word, u"ERROR", nullptr},
    DispatchRow{RowTest::Word, u"QUIT", nullptr},
    DispatchRow{RowTest::Word, u"TOPIC", nullptr},
    DispatchRow{RowTest::Word, u"INVITE", nullptr},
    DispatchRow{RowTest::Word, u"KICK", nullptr},
    DispatchRow{RowTest::Word, u"MODE", nullptr},
    DispatchRow{RowTest::WordCtcp, u"NOTICE", nullptr},    // CTCP in a NOTICE (replies)
    DispatchRow{RowTest::WordPlain, u"NOTICE", nullptr},   // a notice
    DispatchRow{RowTest::WordCtcp, u"PRIVMSG", nullptr},   // CTCP in a PRIVMSG (requests)
    DispatchRow{RowTest::WordPlain, u"PRIVMSG", nullptr},  // a message
    DispatchRow{RowTest::Word, u"PING", &OnServerPing},
    DispatchRow{RowTest::Numeric, {}, nullptr},            // numeric replies
};

}  // namespace

std::span<const DispatchRow> DispatchRows() { return kRows; }
