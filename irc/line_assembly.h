#pragma once
// Turns the bytes read from the server into complete lines and dispatches each one.

#include <QByteArrayView>

class ClientContext;

// Called after every read with the bytes just received. Each line ending in LF (a CR
// right before it is dropped too; a bare CR ends nothing) is decoded as UTF-8, or as
// Latin-1 when it is not valid UTF-8, stripped of trailing blanks, parsed, passed through
// the registration gate and dispatched. An incomplete line waits in the session's
// receive buffer for the next read.
void SplitAndDispatch(ClientContext& ctx, QByteArrayView newBytes);
