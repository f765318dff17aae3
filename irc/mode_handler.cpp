#include "irc/mode_handler.h"

#include "client/client_context.h"
#include "irc/channel_events.h"
#include "irc/event_sound.h"
#include "irc/message_prefix.h"
#include "irc/server_message.h"

using namespace Qt::StringLiterals;
using namespace channel_events;

namespace {

constexpr int kOperatorBit = 2;
constexpr int kVoiceBit = 1;

// Hands out the blank-separated arguments behind the mode letters one at a time; the
// last one runs to the end. An argument sent as a trailing parameter (":alice") loses its
// colon, since no nick starts with one. Past the end every argument is empty.
class ModeArguments {
 public:
  explicit ModeArguments(QStringView text) : text_(text) {}

  QStringView Next() {
    if (pos_ > text_.size()) return {};
    qsizetype end = text_.indexOf(u' ', pos_);
    if (end < 0) end = text_.size();
    QStringView word = text_.sliced(pos_, end - pos_);
    pos_ = end + 1;
    if (word.startsWith(u':')) word = word.sliced(1);
    return word;
  }

 private:
  QStringView text_;
  qsizetype pos_ = 0;
};

struct RankChange {
  QStringView sound;
  int bit;
  bool set;
};

bool LookUpChange(int change, RankChange& out) {
  switch (change) {
    case kGiveOperator: out = {u"op", kOperatorBit, true}; return true;
    case kTakeOperator: out = {u"deop", kOperatorBit, false}; return true;
    case kGiveVoice: out = {u"voice", kVoiceBit, true}; return true;
    case kTakeVoice: out = {u"devoice", kVoiceBit, false}; return true;
    default: return false;
  }
}

}  // namespace

void SetNickMode(ClientContext& ctx, QStringView channel, QStringView nick, int change) {
  RankChange rankChange;
  if (!LookUpChange(change, rankChange)) return;
  const NickList* list = ctx.tabs.ChannelNickList(channel);
  const int at = list ? list->Find(nick) : -1;
  if (at < 0) return;

  PlayEventSound(ctx, rankChange.sound);
  int rank = static_cast<int>(list->At(at).rank);
  rank = rankChange.set ? rank | rankChange.bit : rank & ~rankChange.bit;
  // SetRank shows an operator with voice as "@" and puts the entry in its new place.
  ctx.tabs.SetNickRank(channel, nick, static_cast<NickRank>(rank & 3));
}

void ApplyChannelModes(ClientContext& ctx, QStringView channel, QStringView modes) {
  const qsizetype blank = modes.indexOf(u' ');
  if (blank < 0) return;  // no arguments, so no nick to change
  ModeArguments arguments(modes.sliced(blank + 1));
  bool adding = true;
  for (QChar letter : modes.first(blank)) {
    switch (letter.unicode()) {
      case u'+': adding = true; break;
      case u'-': adding = false; break;
      case u'o':
        SetNickMode(ctx, channel, arguments.Next(), adding ? kGiveOperator : kTakeOperator);
        break;
      case u'v':
        SetNickMode(ctx, channel, arguments.Next(), adding ? kGiveVoice : kTakeVoice);
        break;
      // A ban mask, a key, a limit: skipped so the nicks behind them line up. "l" takes
      // one even when removed.
      case u'b': case u'k': case u'l': arguments.Next(); break;
      default: break;
    }
  }
}

void OnMode(ClientContext& ctx, const ServerMessage& message) {
  const QStringView nick = NickOf(message.prefix);
  const QString line = u"* "_s + nick.toString() + u" sets mode: "_s + message.rest;
  if (nick.compare(message.target, Qt::CaseInsensitive) == 0)
    ctx.PrintStatus(line, LineStyle::Mode);
  else
    PrintToChannel(ctx, message.target, line, LineStyle::Mode);
  ApplyChannelModes(ctx, message.target, message.rest);
}
