// Lines typed into the input line, through SubmitInputText and the command parser, in a
// whole client with a server connection (or none).
//
// Input: byte 0 and 1 the settings and starting state (fuzz::FuzzClient); byte 2 bits 0-1 the
// tab in front (Status, #tolv, #Test, the chat with alice), bit 2 the lines are raw UTF-16
// instead of UTF-8; then the typed lines, one per LF. A line starting with ESC is a menu
// choice: the command number, a blank, and the text that answers its prompts (and names
// the nick of a nick-list item).

#include "commands/command_ids.h"
#include "commands/menu_commands.h"
#include "commands/popup_actions.h"
#include "commands/submit_input.h"
#include "fuzz/fuzz_client.h"
#include "irc/numeric_words.h"

// The colon rule drops the leading "/" and puts at most one ":" in, behind a blank and
// before another character; taking it out again gives the text back.
static void CheckCommandLine(const QString& text) {
  const QStringView original = QStringView(text).sliced(text.startsWith(u'/') ? 1 : 0);
  for (int trailingAfter = 0; trailingAfter < 4; ++trailingAfter) {
    const QString line = CommandLine(text, trailingAfter);
    if (line == original) continue;
    FUZZ_CHECK(trailingAfter > 0 && line.size() == original.size() + 1, "at most one colon is put in");
    qsizetype at = 0;  // where it went in: before the first difference and any colons before it
    while (at < original.size() && line[at] == original[at]) ++at;
    while (at > 0 && original[at - 1] == u':') --at;
    FUZZ_CHECK(at > 0 && original[at - 1] == u' ' && at < original.size(),
               "the colon stands behind a blank and before a character");
    FUZZ_CHECK(line == original.first(at).toString() + u':' + original.sliced(at).toString(), "the rest is kept");
  }
}

// The menus of the window, by number, on the tab in front.
static void RunMenuChoice(fuzz::FuzzClient& client, QStringView line) {
  bool ok = false;
  const int command = WordAt(line, 0).toInt(&ok);
  if (!ok) return;
  const QString answer = TextAfterWord(line, 0).toString();
  client.shell.nickAnswer = answer;
  if (command >= kCmdJoin && command <= kCmdUserhost)
    RunMenuCommand(client.ctx, command);
  else if (command >= kCmdPing && command <= kCmdNotice)
    RunNickListAction(client.ctx, command, answer);
  else
    RunTabMenuAction(client.ctx, command, client.ctx.tabs.Current());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  bool logging = false;
  {
    fuzz::FuzzClient client(data[0], data[1]);
    logging = client.logging;
    client.ctx.tabs.ActivateTab(data[2] & 0x03);
    QByteArrayView rest(data + 3, qsizetype(size - 3));
    while (!rest.isEmpty()) {
      const qsizetype lf = rest.indexOf('\n');
      const QByteArrayView bytes = lf < 0 ? rest : rest.first(lf);
      rest = lf < 0 ? QByteArrayView() : rest.sliced(lf + 1);
      const QString text = (data[2] & 0x04) ? QString(reinterpret_cast<const QChar*>(bytes.data()), bytes.size() / 2)
                                            : QString::fromUtf8(bytes);
      if (text.startsWith(QChar(0x1b))) {
        RunMenuChoice(client, QStringView(text).sliced(1));
      } else {
        CheckCommandLine(text);
        SubmitInputText(client.ctx, text);
      }
      client.Drain();
    }
  }
  if (logging) fuzz::CheckAndClearLogs();
  return 0;
}
