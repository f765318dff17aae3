// Lines typed into the input line, through SubmitInputText and the command parser, in a
// whole client with a server connection (or none).
//
// Input layout: three header bytes, then the typed lines, one per LF. A line that starts
// with ESC is a menu choice instead: ESC, the command number, a blank and the text that
// answers its prompts (and names the nick of a nick-list item).
//   byte 0, byte 1  the settings and starting state (see fuzz::Profile)
//   byte 2          bits 0-1: the tab in front (Status, #tolv, #Test, the chat with alice);
//                   bit 2: the lines are raw UTF-16 (lone surrogates included) instead of UTF-8

#include "commands/command_ids.h"
#include "commands/menu_commands.h"
#include "commands/popup_actions.h"
#include "commands/submit_input.h"
#include "irc/numeric_words.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_client.h"

#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace {

QString Decode(QByteArrayView bytes, bool utf16) {
  if (!utf16) return QString::fromUtf8(bytes);
  return QString(reinterpret_cast<const QChar*>(bytes.data()), bytes.size() / 2);
}

// The colon rule drops the leading "/" and puts at most one ":" in, right behind a blank
// and before another character; taking that ":" out again gives the text back.
void CheckCommandLine(const QString& text) {
  const QStringView original = QStringView(text).sliced(text.startsWith(u'/') ? 1 : 0);
  for (int trailingAfter = 0; trailingAfter < 4; ++trailingAfter) {
    const QString line = CommandLine(text, trailingAfter);
    const qsizetype added = line.size() - original.size();
    FUZZ_CHECK(added == 0 || (added == 1 && trailingAfter > 0), "at most one colon is put in");
    if (added == 0) {
      FUZZ_CHECK(line == original, "without a colon the line is the text without its /");
      continue;
    }
    // Where it went in: before the first difference, and before any colons that precede it.
    qsizetype at = 0;
    while (at < original.size() && line[at] == original[at]) ++at;
    while (at > 0 && original[at - 1] == u':') --at;
    FUZZ_CHECK(at > 0 && original[at - 1] == u' ' && at < original.size(),
               "the colon stands behind a blank and before a character");
    FUZZ_CHECK(line == original.first(at).toString() + u':' + original.sliced(at).toString(),
               "the rest is kept");
  }
}

// The menus of the window, by number, on whatever tab is in front.
void RunMenuChoice(fuzz::FuzzClient& client, QStringView line) {
  bool ok = false;
  const int command = WordAt(line, 0).toInt(&ok);
  if (!ok) return;
  const QString answer = TextAfterWord(line, 0).toString();
  client.shell.nickAnswer = answer;
  ClientContext& ctx = client.ctx;
  if (command >= kCmdJoin && command <= kCmdUserhost) {
    RunMenuCommand(ctx, command);
  } else if (command >= kCmdPing && command <= kCmdNotice) {
    RunNickListAction(ctx, command, answer);
  } else {
    RunTabMenuAction(ctx, command, ctx.tabs.Current());  // as the window routes it
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  const fuzz::Profile profile{data[0], data[1]};
  const bool utf16 = data[2] & 0x04;
  {
    fuzz::FuzzClient client(profile);
    client.ctx.tabs.ActivateTab(data[2] & 0x03);
    QByteArrayView rest(data + 3, qsizetype(size - 3));
    while (!rest.isEmpty()) {
      const qsizetype lf = rest.indexOf('\n');
      const QByteArrayView line = lf < 0 ? rest : rest.first(lf);
      rest = lf < 0 ? QByteArrayView() : rest.sliced(lf + 1);
      const QString text = Decode(line, utf16);
      if (text.startsWith(QChar(0x1b))) {
        RunMenuChoice(client, QStringView(text).sliced(1));
      } else {
        CheckCommandLine(text);
        SubmitInputText(client.ctx, text);
      }
      client.Drain();
    }
  }
  if (profile.Logging()) fuzz::FuzzHome::Get().CheckAndClearLogs();
  return 0;
}
