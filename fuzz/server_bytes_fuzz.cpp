// Raw bytes from the server, cut into reads of varying size, through line assembly,
// parsing, the registration gate, dispatch and every handler, into a whole client.
//
// Input: byte 0 and 1 the settings and starting state (fuzz::FuzzClient); byte 2 and 3 the
// sizes of successive reads, taken in turn (0: all the rest); then the server's bytes.

#include "fuzz/fuzz_client.h"
#include "irc/line_assembly.h"
#include "views/nick_list.h"

// Every nick a channel list shows must be found again by its name: the look-up is a
// binary search, so a list out of order loses nicks.
static void CheckNickLists(const ClientContext& ctx) {
  for (int i = 0; i < ctx.tabs.Count(); ++i) {
    const ConversationTab* tab = ctx.tabs.At(i);
    if (tab->kind != TabKind::Channel || !tab->nickList) continue;
    for (int n = 0; n < tab->nickList->Count(); ++n) {
      const QString shown = tab->nickList->At(n).shown;  // a copy: Find may sort the list
      const int found = tab->nickList->Find(shown);
      FUZZ_CHECK(found >= 0 && NickList::Bare(tab->nickList->At(found).shown)
                                       .compare(NickList::Bare(shown), Qt::CaseInsensitive) == 0,
                 "every nick shown in a channel list is found by its name");
    }
  }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  bool logging = false;
  {
    fuzz::FuzzClient client(data[0], data[1]);
    logging = client.logging;
    QByteArrayView bytes(data + 4, qsizetype(size - 4));
    for (size_t turn = 0; !bytes.isEmpty(); ++turn) {
      const qsizetype wanted = data[2 + turn % 2];
      const qsizetype chunk = wanted == 0 ? bytes.size() : std::min(wanted, bytes.size());
      SplitAndDispatch(client.ctx, bytes.first(chunk));
      bytes = bytes.sliced(chunk);
      client.Drain();
      FUZZ_CHECK(client.ctx.session.receiveBuffer.size() <= 16 * 1024, "the kept tail stays bounded");
    }
    CheckNickLists(client.ctx);
  }
  if (logging) fuzz::CheckAndClearLogs();
  return 0;
}
