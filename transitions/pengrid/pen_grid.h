// What the pen-grid transitions share: the reads of the grid and pen fields,
// the limits that keep out-of-range values harmless, and the two ways of
// dividing the frame into cells.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "host/host_calls.h"
#include "raster/numeric.h"
#include "raster/pixel_runs.h"
#include "transitions/pengrid/pen_fields.h"

namespace krl {

// Divide_X, Divide_Y, the pen colour (at Progress, always opaque) and
// BorderWidth, read in this order and as the host gives them.
struct PenReads {
  int32_t divideX;
  int32_t divideY;
  uint32_t pen;
  int32_t thickness;
};

inline PenReads ReadPen(const HostCalls& host, const PenGridFields& f) {
  PenReads r{};
  r.divideX = host.Field(f.divideX);
  r.divideY = host.Field(f.divideY);
  r.pen = host.PenColor(f.color);
  r.thickness = host.Field(f.borderWidth);
  return r;
}

// Frames more than 2^24 pixels wide or high are left untouched (result 1):
// up to there every cell size is a whole number in single precision and every
// coordinate sum below stays far inside 32 bits.
inline constexpr int32_t kMaxFrameSide = 1 << 24;

inline bool DrawableFrame(const t_KrRenderInfo* ri) {
  return ri->Width > 0 && ri->Height > 0 && ri->Width <= kMaxFrameSide && ri->Height <= kMaxFrameSide;
}

// Progress for the geometry, held to 0..1 (NaN as 0): beyond the ends every
// size computed from it would leave its cell. The pen colour is still read at
// the host's own Progress.
inline double ShapeProgress(double p) { return std::isnan(p) ? 0.0 : std::clamp(p, 0.0, 1.0); }

// A negative pen would let the shifted reads of Push leave their cell; one
// wider than any frame draws the same as 2^20. Inside 0..10 nothing changes.
inline int32_t PenThickness(int32_t borderWidth) { return std::clamp(borderWidth, 0, 1 << 20); }

// Nominal cell size: the frame side divided in extended precision, truncated.
inline int32_t NominalCellSize(int32_t side, int32_t divisions) {
  return TruncToInt32(static_cast<long double>(side) / divisions);
}

// A corner of kCornerItems; "Top" is the end with the highest row indices.
struct Corner {
  bool left;
  bool top;
};

// Any value but 1, 2 and 3 is Top Left.
inline Corner DecodeCorner(int32_t value) {
  switch (value) {
    case 1: return {false, true};
    case 2: return {true, false};
    case 3: return {false, false};
    default: return {true, true};
  }
}

// The part p of a size: the extended product rounded once to single
// precision, then truncated. With p in 0..1 and a size up to 2^24 it stays
// in 0..size (the size itself is a single).
inline int32_t SingleRoundedShare(int32_t size, double p) {
  return TruncToInt32(RoundToSingle(static_cast<long double>(size) * p));
}

// Half-open [begin, end).
struct Interval {
  int32_t begin, end;
  bool Has(int32_t v) const { return v >= begin && v < end; }
};

// A bar of the given thickness centred in a side of the given size, from its
// start: the start truncates and the end rounds, so an odd size shows a bar
// one pixel thick when the thickness is 0.
inline Interval CentredBar(int32_t size, int32_t thickness) {
  return {(size - thickness) / 2, TruncToInt32((size + thickness) * 0.5 + 0.5)};
}

struct Cell {
  int32_t x0, x1, y0, y1;  // first column and row, one past the last
  int32_t Width() const { return x1 - x0; }
  int32_t Height() const { return y1 - y0; }
};

// The pen grid of Wipe, Slide and Push: cells visited from the last column
// and row to the first, the last column and row taking the remainder. Cells
// left empty by a division larger than the frame are skipped (they would
// draw nothing), so any division finishes in time. Divisions below 1 draw
// nothing.
template <typename PaintCell>
void ForEachGridCell(int32_t width, int32_t height, int32_t dx, int32_t dy, PaintCell paint) {
  if (dx < 1 || dy < 1) return;
  const int32_t cw = NominalCellSize(width, dx), ch = NominalCellSize(height, dy);
  const int32_t firstColumn = cw > 0 ? 0 : dx - 1, firstRow = ch > 0 ? 0 : dy - 1;
  for (int32_t i = dx - 1; i >= firstColumn; --i) {
    const int32_t x0 = i * cw, x1 = i == dx - 1 ? width : x0 + cw;
    for (int32_t j = dy - 1; j >= firstRow; --j) {
      const int32_t y0 = j * ch, y1 = j == dy - 1 ? height : y0 + ch;
      paint(Cell{x0, x1, y0, y1});
    }
  }
}

// The cells of the Iris family and Inset: columns outer, rows inner, each
// cell cw x ch; the columns beyond dx * cw and rows beyond dy * ch are never
// written. With a nominal size of 0 every cell is empty and none is visited.
template <typename PaintCell>
void ForEachWholeCell(int32_t width, int32_t height, int32_t dx, int32_t dy, PaintCell paint) {
  if (dx < 1 || dy < 1) return;
  const int32_t cw = NominalCellSize(width, dx), ch = NominalCellSize(height, dy);
  if (cw < 1 || ch < 1) return;
  for (int32_t i = 0; i < dx; ++i) {
    const int32_t x0 = i * cw, x1 = std::min(x0 + cw, width);
    for (int32_t j = 0; j < dy; ++j) {
      const int32_t y0 = j * ch, y1 = std::min(y0 + ch, height);
      paint(Cell{x0, x1, y0, y1});
    }
  }
}

}  // namespace krl
