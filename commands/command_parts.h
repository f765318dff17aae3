#pragma once
// Pieces the command parser's files share: the words of a typed line, the echo into the
// current tab, and teaching the user's words.

#include "client/client_context.h"

#include <QString>
#include <QStringView>

// The fixed colour of the input line's own error texts: navy.
inline constexpr quint32 kNavy = 0x800000;

// Word i (from 0) of a line whose words are separated by runs of blanks.
QStringView CommandWord(QStringView text, int index);
// What follows the first `count` (>= 1) words and the blank run behind them; empty when
// the line has no more.
QStringView TextAfterWords(QStringView text, int count);

bool IsConnected(const ClientContext& ctx);
void PrintInCurrentTab(ClientContext& ctx, QStringView text, quint32 colour);
// "<nick> text", in the style Normal.
QString OwnLine(const ClientContext& ctx, QStringView text);
// Hands a line the user sent to the word teacher when "Self-teaching" is on.
void TeachSentWords(ClientContext& ctx, QStringView text);

// The rows of the command table that do more than send the line; each returns true
// only for "/quit".
bool RunMe(ClientContext& ctx, const QString& text);
bool RunMsg(ClientContext& ctx, const QString& text);
bool RunNotice(ClientContext& ctx, const QString& text);
bool RunQuery(ClientContext& ctx, const QString& text);
bool RunPing(ClientContext& ctx, const QString& text);
bool RunDcc(ClientContext& ctx, const QString& text);

// DCC through the context's engine.
void StartDccChatWith(ClientContext& ctx, const QString& nick);
void OpenDccSendDialog(ClientContext& ctx, const QString& nick);
// The "DCC Chat" prompt, then the chat.
bool AskAndStartDccChat(ClientContext& ctx);
