// What Cross Stretch and Cube Stretch share: their fields, the reads before
// drawing, the ends, and the strips of a cell. In every cell of the pen grid
// B enters from the Direction side as a strip holding its whole cell, A is
// squeezed into the rest, and a pen stands at the seam, never thicker than
// either strip.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "host/declare.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/travel.h"
#include "transitions/pengrid/pen_fields.h"
#include "transitions/pengrid/pen_grid.h"

namespace krl {

// Inputs, TransType, Direction, the divisions, the pen colour and thickness.
constexpr std::array<FieldSpec, kPenGridFieldCount> StretchFieldTable(PenGridFields& f) {
  return PenGridFieldTable(f, "Specifies the position where Vb starts to move in.", kTravelItems);
}

// The pen fields, then Direction, read in this order.
struct StretchReads {
  PenReads pen;
  Travel travel;
};

inline StretchReads ReadStretch(const HostCalls& host, const PenGridFields& f) {
  const PenReads pen = ReadPen(host, f);
  return {pen, DecodeTravel(host.Field(f.direction))};
}

// Half-open along-indices [begin, end) of a cell.
struct Strip {
  int32_t begin, end;
  int32_t Length() const { return end - begin; }
};

// One cell's strips along the travel: the along-index runs from 0 at the
// cell's lowest column (row) to length - 1.
struct StretchStrips {
  int32_t length;  // L, the cell's extent along the travel
  Strip b, pen, a;
  bool bLow;       // B lies at the low indices: it enters at the low side
};

// n = trunc(L x p) in double, the pen te = min(t, n, L - n), A's m = L - n - te.
inline StretchStrips StripsOf(int32_t length, double p, int32_t t, Travel travel) {
  const int32_t n = TruncToInt32(length * p);
  const int32_t te = std::min({t, n, length - n});
  const int32_t m = length - n - te;
  if (EntersAtLowEnd(travel)) return {length, {0, n}, {n, n + te}, {n + te, length}, true};
  return {length, {m + te, length}, {m, m + te}, {0, m}, false};
}

// The cells of the pen grid along the travel for 0 < p < 1; only the
// division along the travel counts, so every cell spans the frame across
// it. All cells but the last are `size` long, the last takes the remainder;
// with a division beyond the frame's extent only the last is not empty. The
// two lengths have their own strips, and each transition keeps a table per
// length, the last one's from LastTableStart() on.
struct StretchCells {
  int32_t count = 0;  // 0 when the division is below 1: nothing is drawn
  int32_t size = 0;
  StretchStrips regular{}, last{};

  int32_t First() const { return size > 0 ? 0 : count - 1; }
  bool IsLast(int32_t i) const { return i == count - 1; }
  int32_t Origin(int32_t i) const { return i * size; }
  const StretchStrips& Strips(int32_t i) const { return IsLast(i) ? last : regular; }
  int32_t LastTableStart() const { return count > 1 ? size : 0; }
  int32_t TableStart(int32_t i) const { return IsLast(i) ? LastTableStart() : 0; }
  int32_t TableLength() const { return LastTableStart() + last.length; }
};

inline StretchCells CellsAlong(const t_KrRenderInfo* ri, const StretchReads& reads) {
  const bool acrossColumns = AcrossColumns(reads.travel);
  const int32_t divisions = acrossColumns ? reads.pen.divideX : reads.pen.divideY;
  if (divisions < 1) return {};
  const int32_t extent = acrossColumns ? ri->Width : ri->Height;
  const int32_t size = NominalCellSize(extent, divisions);
  const int32_t t = std::max(reads.pen.thickness, 0);
  // (divisions - 1) x size is at most the extent.
  return {divisions, size, StripsOf(size, ri->Progress, t, reads.travel),
          StripsOf(extent - (divisions - 1) * size, ri->Progress, t, reads.travel)};
}

}  // namespace krl
