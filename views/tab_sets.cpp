#include "views/tab_sets.h"

namespace {

int Offset(TabKind kind) { return static_cast<int>(kind) - static_cast<int>(TabKind::Status); }

bool Owned(TabKind kind) { return Offset(kind) >= 0 && Offset(kind) < int(kTabSetsKinds.size()); }

int LabelShift(TabKind kind) { return 2 * Offset(kind); }
int BalloonShift(TabKind kind) { return 16 + 2 * Offset(kind); }

}  // namespace

TabLabelShow LabelShowOf(quint32 tabSets, TabKind kind) {
  if (!Owned(kind)) return TabLabelShow::None;
  return static_cast<TabLabelShow>((tabSets >> LabelShift(kind)) & 3);
}

quint32 WithLabelShow(quint32 tabSets, TabKind kind, TabLabelShow show) {
  if (!Owned(kind)) return tabSets;
  const int shift = LabelShift(kind);
  return (tabSets & ~(3u << shift)) | (quint32(show) & 3) << shift;
}

bool BalloonOn(quint32 tabSets, TabKind kind) {
  return Owned(kind) && ((tabSets >> BalloonShift(kind)) & 3) != 0;
}

quint32 WithBalloon(quint32 tabSets, TabKind kind, bool on) {
  if (!Owned(kind) || on == BalloonOn(tabSets, kind)) return tabSets;
  const int shift = BalloonShift(kind);
  return on ? tabSets | 1u << shift : tabSets & ~(3u << shift);
}
