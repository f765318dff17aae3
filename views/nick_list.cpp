#include "views/nick_list.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool KeyLess(QStringView a, QStringView b) { return a.compare(b, Qt::CaseInsensitive) < 0; }

bool EntryLess(const NickEntry& a, const NickEntry& b) { return KeyLess(a.sortKey, b.sortKey); }

bool IsOperator(NickRank rank) { return (static_cast<int>(rank) & 2) != 0; }

// The prefix shown and the group in the sort order: operators, voiced, the rest.
QString PrefixFor(NickRank rank) {
  if (IsOperator(rank)) return u"@"_s;
  return rank == NickRank::Voiced ? u"+"_s : QString();
}

QString SortKeyFor(NickRank rank, QStringView bare) {
  if (IsOperator(rank)) return u'0' + bare.toString();
  if (rank == NickRank::Voiced) return u'1' + bare.toString();
  return bare.toString();
}

}  // namespace

QStringView NickList::Bare(QStringView nick) {
  while (nick.startsWith(u'@') || nick.startsWith(u'+')) nick = nick.sliced(1);
  return nick;
}

// A server that sends every prefix ("@+dave") gives both bits; the entry shows the
// highest, as for a nick that gained voice after op, so that its shown text always finds
// it again.
NickEntry NickList::MakeEntry(QStringView nick) {
  int bits = 0;
  for (; nick.startsWith(u'@') || nick.startsWith(u'+'); nick = nick.sliced(1))
    bits |= nick.startsWith(u'@') ? 2 : 1;
  return MakeEntry(static_cast<NickRank>(bits), nick);
}

NickEntry NickList::MakeEntry(NickRank rank, QStringView bareNick) {
  return {rank, PrefixFor(rank) + bareNick.toString(), SortKeyFor(rank, bareNick)};
}

void NickList::Settle() const {
  if (pending_.empty()) return;
  std::stable_sort(pending_.begin(), pending_.end(), EntryLess);
  const auto middle = static_cast<std::ptrdiff_t>(sorted_.size());
  sorted_.insert(sorted_.end(), std::make_move_iterator(pending_.begin()),
                 std::make_move_iterator(pending_.end()));
  pending_.clear();
  std::inplace_merge(sorted_.begin(), sorted_.begin() + middle, sorted_.end(), EntryLess);
}

int NickList::LowerBound(QStringView sortKey) const {
  auto it = std::lower_bound(sorted_.begin(), sorted_.end(), sortKey,
                             [](const NickEntry& e, QStringView key) { return KeyLess(e.sortKey, key); });
  return static_cast<int>(it - sorted_.begin());
}

// Sort keys can collide: the voiced "bo" and the plain "1bo" both sort as "1bo". So every
// entry with the key is looked at, and only one of the asked group counts.
int NickList::FindInSorted(QStringView sortKey, NickRank rank) const {
  for (int at = LowerBound(sortKey); at < static_cast<int>(sorted_.size()); ++at) {
    const NickEntry& entry = sorted_[at];
    if (entry.sortKey.compare(sortKey, Qt::CaseInsensitive) != 0) break;
    if (SortKeyFor(entry.rank, {}) == SortKeyFor(rank, {})) return at;
  }
  return -1;
}

// The rank is not known from the nick alone, so each group is searched in turn.
int NickList::Find(QStringView nick) const {
  Settle();
  const QStringView bare = Bare(nick);
  for (NickRank rank : {NickRank::Operator, NickRank::Voiced, NickRank::Plain}) {
    const int at = FindInSorted(SortKeyFor(rank, bare), rank);
    if (at >= 0) return at;
  }
  return -1;
}

bool NickList::Add(QStringView nick) {
  if (Find(nick) >= 0) return false;
  NickEntry entry = MakeEntry(nick);
  auto at = std::upper_bound(sorted_.begin(), sorted_.end(), entry, EntryLess);
  sorted_.insert(at, std::move(entry));
  return true;
}

void NickList::AddUnchecked(QStringView nick) { pending_.push_back(MakeEntry(nick)); }

bool NickList::Remove(QStringView nick) {
  const int at = Find(nick);
  if (at < 0) return false;
  sorted_.erase(sorted_.begin() + at);
  return true;
}

// The rank stays with the entry, so "@" and "+" in front of the new nick are not kept: a
// nick made only of them (which no server allows) renames nothing.
bool NickList::Rename(QStringView oldNick, QStringView newNick) {
  while (newNick.startsWith(u'@') || newNick.startsWith(u'+')) newNick = newNick.sliced(1);
  if (newNick.isEmpty()) return false;
  const int at = Find(oldNick);
  if (at < 0) return false;
  const NickRank rank = sorted_[at].rank;
  sorted_.erase(sorted_.begin() + at);
  NickEntry entry = MakeEntry(rank, newNick);
  auto where = std::upper_bound(sorted_.begin(), sorted_.end(), entry, EntryLess);
  sorted_.insert(where, std::move(entry));
  return true;
}

bool NickList::SetRank(QStringView nick, NickRank rank) {
  const int at = Find(nick);
  if (at < 0) return false;
  NickEntry entry = MakeEntry(rank, Bare(sorted_[at].shown));
  sorted_.erase(sorted_.begin() + at);
  auto where = std::upper_bound(sorted_.begin(), sorted_.end(), entry, EntryLess);
  sorted_.insert(where, std::move(entry));
  return true;
}

void NickList::Clear() {
  sorted_.clear();
  pending_.clear();
}

int NickList::Count() const {
  Settle();
  return static_cast<int>(sorted_.size());
}

const NickEntry& NickList::At(int position) const {
  Settle();
  return sorted_.at(static_cast<size_t>(position));
}

QStringList NickList::StartingWith(QStringView prefix, int limit) const {
  Settle();
  std::vector<QStringView> found;
  for (NickRank rank : {NickRank::Operator, NickRank::Voiced, NickRank::Plain}) {
    const QString key = SortKeyFor(rank, prefix);
    int taken = 0;
    for (int at = LowerBound(key); at < static_cast<int>(sorted_.size()) && taken < limit; ++at) {
      const NickEntry& entry = sorted_[at];
      if (!entry.sortKey.startsWith(key, Qt::CaseInsensitive)) break;
      if (SortKeyFor(entry.rank, {}) != SortKeyFor(rank, {})) continue;  // a colliding key
      found.push_back(Bare(entry.shown));
      ++taken;
    }
  }
  std::stable_sort(found.begin(), found.end(), KeyLess);
  QStringList nicks;
  for (size_t i = 0; i < found.size() && i < static_cast<size_t>(limit); ++i)
    nicks << found[i].toString();
  return nicks;
}
