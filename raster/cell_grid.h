// Frames divided into a grid of cells: the nominal cell size, and the walk
// over whole cells that the Iris family, Inset and Swap share.
#pragma once

#include <algorithm>
#include <cstdint>

#include "raster/numeric.h"

namespace krl {

// Nominal cell size: the frame side divided in extended precision, truncated.
inline int32_t NominalCellSize(int32_t side, int32_t divisions) {
  return TruncToInt32(static_cast<long double>(side) / divisions);
}

struct Cell {
  int32_t x0, x1, y0, y1;  // first column and row, one past the last
  int32_t Width() const { return x1 - x0; }
  int32_t Height() const { return y1 - y0; }
};

// The cells of the Iris family, Inset and Swap: columns outer, rows inner, each
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
