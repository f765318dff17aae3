#pragma once
// The nick list of one channel, kept in display order: operators, then voiced users,
// then everybody else, each group alphabetical without regard to case.
//
// A single join is inserted in place by binary search. A names burst can bring tens of
// thousands of nicks; those are appended unsorted and put in order once, on the next
// look at the list, so the burst costs O(n log n) instead of O(n^2).

#include <QString>
#include <QStringList>
#include <vector>

// A bit set: the operator bit is 2, the voice bit 1; an operator with voice shows "@".
enum class NickRank : quint8 { Plain = 0, Voiced = 1, Operator = 2, OperatorVoiced = 3 };

struct NickEntry {
  NickRank rank = NickRank::Plain;
  QString shown;    // "@" or "+" (by the rank) and the nick
  QString sortKey;  // "0" + nick for operators, "1" + nick for voiced, the nick otherwise
};

class NickList {
 public:
  // Position of the nick (a leading "@" or "+" ignored on either side, case-insensitive);
  // -1 if absent.
  int Find(QStringView nick) const;
  // Adds the nick unless it is there already; returns whether it was added.
  bool Add(QStringView nick);
  // Adds without looking for a duplicate (the names reply); ordered on the next look.
  void AddUnchecked(QStringView nick);
  bool Remove(QStringView nick);
  // Keeps the old entry's "@"/"+" in front of the new nick; false when absent.
  bool Rename(QStringView oldNick, QStringView newNick);
  // Gives the entry a new rank, shown text and place; false when absent.
  bool SetRank(QStringView nick, NickRank rank);
  void Clear();

  int Count() const;
  const NickEntry& At(int position) const;
  // The nicks (without "@" or "+") that begin with `prefix`, ignoring case, in
  // alphabetical order whatever their rank; at most `limit`. Each group is one range of
  // the sorted list, so a channel of 100k nicks costs a binary search per group.
  QStringList StartingWith(QStringView prefix, int limit) const;

  static NickEntry MakeEntry(QStringView nick);
  static NickEntry MakeEntry(NickRank rank, QStringView bareNick);
  // The nick without every leading "@" and "+".
  static QStringView Bare(QStringView nick);

 private:
  void Settle() const;
  int LowerBound(QStringView sortKey) const;
  int FindInSorted(QStringView sortKey, NickRank rank) const;

  mutable std::vector<NickEntry> sorted_;
  mutable std::vector<NickEntry> pending_;
};
