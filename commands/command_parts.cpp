#include "commands/command_parts.h"

#include "commands/word_teacher.h"
#include "settings/settings_flags.h"
#include "views/output_path.h"

using namespace Qt::StringLiterals;

namespace {

qsizetype SkipBlanks(QStringView text, qsizetype i) {
  while (i < text.size() && text[i] == u' ') ++i;
  return i;
}

qsizetype SkipWord(QStringView text, qsizetype i) {
  while (i < text.size() && text[i] != u' ') ++i;
  return i;
}

}  // namespace

QStringView CommandWord(QStringView text, int index) {
  qsizetype start = SkipBlanks(text, 0);
  for (int i = 0; i < index; ++i) start = SkipBlanks(text, SkipWord(text, start));
  return text.sliced(start, SkipWord(text, start) - start);
}

QStringView TextAfterWords(QStringView text, int count) {
  qsizetype i = SkipBlanks(text, 0);
  for (int n = 0; n < count; ++n) i = SkipBlanks(text, SkipWord(text, i));
  return text.sliced(i);
}

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
