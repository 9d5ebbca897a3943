// What Pin Wheel, Spiral and Flying Carpet share: the first and last frames,
// their anti-aliasing field, and rows cut into runs where every decision of a
// pixel is a monotone function of its column.
//
// A straight edge, a turned border or a leading edge gives a signed distance
// that only rises (or only falls) along a row, computed per pixel exactly as
// written; the side of the edge a pixel shows, and whether it is blended,
// then changes at most a few times along the row. A binary search over that
// very per-pixel arithmetic finds those columns, so a run between them is
// copied whole and gives the same pixels as deciding each one.
#pragma once

#include <cstdint>

#include "host/declare.h"
#include "raster/frame.h"
#include "raster/pixel_mix.h"

namespace krl {

// The items of a "Direction" that turns.
constexpr SelectorItem kTurnItems[] = {{"Clockwise", 0}, {"Counter-Clockwise", 1}};

// Where edge(P, Q, r) puts a pixel at signed distance r: 0 plainly P, 1
// blended on P's side, 2 blended on Q's side, 3 plainly Q (without
// anti-aliasing only 0 and 3). It never falls as r rises.
inline int EdgeZone(double r, bool antiAlias) {
  if (!antiAlias) return r < 0 ? 0 : 3;
  const int32_t wP = MixWeight(0.5 - r);
  if (wP == 256) return 0;
  if (r < 0) return 1;
  return wP == 0 ? 3 : 2;
}

// edge(P, Q, r) with anti-aliasing, asking q() for Q only where it shows.
template <typename LazyQ>
uint32_t SoftEdge(uint32_t p, LazyQ q, double r) {
  const int32_t weightP = MixWeight(0.5 - r);
  if (weightP == 256) return p;
  return weightP == 0 ? q() : MixWeighted(q(), p, weightP);
}

// The column in (same, other] where the monotone zone changes from z, for
// zone(same) == z and zone(other) != z, by halving.
template <typename Zone, typename Z>
int32_t HalveToChange(int32_t same, int32_t other, Zone zone, Z z) {
  while (other - same > 1) {
    const int32_t mid = same + (other - same) / 2;
    if (zone(mid) == z) {
      same = mid;
    } else {
      other = mid;
    }
  }
  return other;
}

// The first column in (from, end) whose zone differs from that of `from`, or
// end; zone(x) must be monotone along [from, end). A change expected close
// to `from` (the next border of a blend one pixel wide) is sought in steps
// doubling from there, any other by halving the whole range.
template <typename Zone>
int32_t NextZoneChange(int32_t from, int32_t end, Zone zone, bool near = false) {
  const auto z = zone(from);
  if (end - from < 2 || zone(end - 1) == z) return end;
  int32_t same = from, other = end - 1;  // zone(same) == z, zone(other) != z
  if (near) {
    for (int32_t step = 1; step < other - same; step *= 2) {
      if (zone(same + step) != z) {
        other = same + step;
        break;
      }
      same += step;
    }
  }
  return HalveToChange(same, other, zone, z);
}

// Calls found(x) for every column of [begin, end) where the monotone zone(x)
// changes, in order.
template <typename Zone, typename Found>
void ForEachZoneChange(int32_t begin, int32_t end, Zone zone, Found found) {
  bool near = false;
  for (int32_t x = begin; x < end && (x = NextZoneChange(x, end, zone, near)) < end; near = true) found(x);
}

struct ColumnRange {
  int32_t begin, end;
};

// The columns of [begin, end) where the monotone predicate holds: a prefix,
// a suffix, all or none of them.
template <typename Predicate>
ColumnRange HoldingRange(int32_t begin, int32_t end, Predicate holds) {
  if (begin >= end) return {begin, begin};
  const int32_t change = NextZoneChange(begin, end, holds);
  return holds(begin) ? ColumnRange{begin, change} : ColumnRange{change, end};
}

// HoldingRange sought from a guess of the column where the predicate
// changes, updated to the column found (`end` for none): steps doubling
// from the guess, then halving. A guess close to the change, such as the
// change found on the row before, costs a few calls of the predicate; any
// guess gives the same range.
template <typename Predicate>
ColumnRange HoldingRangeFrom(int32_t begin, int32_t end, int32_t& guess, Predicate holds) {
  if (begin >= end) return {begin, begin};
  const bool first = holds(begin);
  int32_t change = end;
  if (end - begin >= 2 && holds(end - 1) != first) {
    int32_t same = begin, other = end - 1;  // holds(same) == first, holds(other) != first
    const int32_t at = guess <= same ? same + 1 : (guess >= other ? other : guess);
    const bool after = holds(at) == first;  // the change lies after `at`
    (after ? same : other) = at;
    for (int64_t step = 1; step < other - same; step *= 2) {
      const auto x = static_cast<int32_t>(after ? same + step : other - step);
      if (holds(x) != first) {
        other = x;
        if (after) break;
      } else {
        same = x;
        if (!after) break;
      }
    }
    change = HalveToChange(same, other, holds, first);
  }
  guess = change;
  return first ? ColumnRange{begin, change} : ColumnRange{change, end};
}

inline ColumnRange Intersect(ColumnRange a, ColumnRange b) {
  const int32_t begin = a.begin > b.begin ? a.begin : b.begin, end = a.end < b.end ? a.end : b.end;
  return end > begin ? ColumnRange{begin, end} : ColumnRange{begin, begin};
}

}  // namespace krl
