#pragma once
// What people say: PRIVMSG and NOTICE whose text does not open with the CTCP mark.

#include <QStringView>

class ClientContext;
struct ServerMessage;

// The tab for a message or action addressed to `target` (the first parameter, up to any
// "!") from `senderNick`: the sender's Chat tab, opened when missing, when the target is
// our own nick; otherwise the Channel tab of that name, or Status when there is none.
int ConversationTabFor(ClientContext& ctx, QStringView target, QStringView senderNick);

// ":bob!u@h PRIVMSG #room :hello" writes "<bob> hello" to #room, highlighted when it
// contains a highlight word; one to our nick goes to bob's Chat tab. Ignored senders are
// dropped.
void OnPrivmsg(ClientContext& ctx, const ServerMessage& message);

// ":alice!u@h NOTICE #room :text" writes "-alice:#room- text" to #room (Status when it
// has no tab); one to us, or any before registration, writes "-alice- text" to the
// current tab. Style Notice, never highlighted; the "notice" sound once registered.
void OnNotice(ClientContext& ctx, const ServerMessage& message);
