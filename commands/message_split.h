#pragma once
// Long messages cut to fit. Other users receive what we say with our "nick!user@host"
// in front, and a server drops a client whose line passes 512 bytes with its CR LF; so
// a long PRIVMSG or NOTICE goes out as several lines, each echoed as its own.

#include <QString>
#include <QStringList>
#include <QStringView>

class ClientContext;

// The bytes of UTF-8 that the text of "COMMAND target :text" may take, after the room of
// `framing` extra bytes (a CTCP ACTION's wrapping). Until the server has shown us our
// user and host (in the echo of our own JOIN), the user is the e-mail setting's user part
// with the "~" of an unanswered ident, and the host is taken as 64 bytes.
int MessageTextRoom(const ClientContext& ctx, QStringView command, QStringView target,
                    int framing = 0);

// `text` in pieces of at most `room` bytes of UTF-8 (`room` >= 16). A cut never splits a
// character or a colour code's digits; it falls on a blank when one lies in the last
// quarter of the piece, and that blank is dropped. A text that fits is one piece.
QStringList SplitMessageText(QStringView text, int room);
