// Raw bytes from the server, cut into reads of varying size, through line assembly,
// parsing, the registration gate, dispatch and every handler, into a whole client.
//
// Input layout: four header bytes, then the server's bytes.
//   byte 0, byte 1  the settings and starting state (see fuzz::Profile)
//   byte 2, byte 3  the sizes of successive reads, taken in turn; 0 means "all the rest"
// The seeds in corpus/server_bytes start with four such bytes before real server lines.

#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_client.h"
#include "irc/line_assembly.h"
#include "views/nick_list.h"

#include <QByteArrayView>

#include <cstddef>
#include <cstdint>

namespace {

// The longest incomplete line the client keeps between reads (see line_assembly.cpp);
// anything longer is dropped, so the buffer never holds more.
constexpr qsizetype kMaxKeptTail = 16 * 1024;

// Every nick a channel list shows must be found again: the look-up is a binary search, so
// a list out of order loses nicks. (A hostile server can send a nick twice; that is not
// checked here.)
void CheckNickLists(fuzz::FuzzClient& client) {
  for (int i = 0; i < client.ctx.tabs.Count(); ++i) {
    const ConversationTab* tab = client.ctx.tabs.At(i);
    if (tab->kind != TabKind::Channel || !tab->nickList) continue;
    const NickList& list = *tab->nickList;
    for (int n = 0; n < list.Count(); ++n) {
      const QString shown = list.At(n).shown;  // a copy: Find may re-sort the list
      const int found = list.Find(shown);
      FUZZ_CHECK(found >= 0 && NickList::Bare(list.At(found).shown)
                                       .compare(NickList::Bare(shown), Qt::CaseInsensitive) == 0,
                 "every nick shown in a channel list is found by its name");
    }
  }
}

void Feed(fuzz::FuzzClient& client, QByteArrayView bytes, quint8 size0, quint8 size1) {
  for (size_t turn = 0; !bytes.isEmpty(); ++turn) {
    const quint8 wanted = turn % 2 ? size1 : size0;
    const qsizetype size = wanted == 0 ? bytes.size() : std::min<qsizetype>(wanted, bytes.size());
    SplitAndDispatch(client.ctx, bytes.first(size));
    bytes = bytes.sliced(size);
    client.Drain();
    FUZZ_CHECK(client.ctx.session.receiveBuffer.size() <= kMaxKeptTail,
               "the kept tail stays bounded");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  const fuzz::Profile profile{data[0], data[1]};
  {
    fuzz::FuzzClient client(profile);
    Feed(client, QByteArrayView(data + 4, qsizetype(size - 4)), data[2], data[3]);
    CheckNickLists(client);
  }
  if (profile.Logging()) fuzz::FuzzHome::Get().CheckAndClearLogs();
  return 0;
}
