#include "commands/command_parts.h"

#include "commands/word_teacher.h"
#include "irc/numeric_words.h"
#include "settings/settings_flags.h"
#include "views/output_path.h"

using namespace Qt::StringLiterals;

// A typed line's words follow the same rule as a reply's: runs of blanks separate them.
QStringView CommandWord(QStringView text, int index) { return WordAt(text, index); }

QStringView TextAfterWords(QStringView text, int count) { return TextAfterWord(text, count - 1); }

bool IsConnected(const ClientContext& ctx) { return ctx.session.serverSocket != kNoSocket; }

void PrintInCurrentTab(ClientContext& ctx, QStringView text, quint32 colour) {
  PrintToTab(ctx.tabs, ctx.tabs.Current(), text, colour);
}

QString OwnLine(const ClientContext& ctx, QStringView text) {
  return u'<' + ctx.session.currentNick + u"> "_s + text.toString();
}

void TeachSentWords(ClientContext& ctx, QStringView text) {
  if (ctx.wordTeacher && TestFlag(ctx.settings, u"Files", kWhispersTeach))
    ctx.wordTeacher->TeachText(text);
}
