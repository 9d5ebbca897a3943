// Frames divided into a grid of cells: the nominal cell size, and the walk
// over whole cells that the Iris family and the cell-wise copies share.
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

// The order of the walk. Down each column of cells in turn is the order of
// the painters that read pixels of cells painted before them (the Irises'
// filters). Painters that write only their own cell from the input frames
// may go along each row of cells instead: rows of neighbouring cells share
// memory pages, so a band of cells stays in the cache and the TLB (with
// cells 8 x 8, half again as fast as going down the columns).
enum class CellOrder { DownColumns, AlongRows };

// The cells of the Iris family, Inset, Swap, Cross Split and Sliding Doors,
// each cw x ch; the columns beyond dx * cw and rows beyond dy * ch are never
// written. With a nominal size of 0 every cell is empty and none is visited.
template <typename PaintCell>
void ForEachWholeCell(int32_t width, int32_t height, int32_t dx, int32_t dy, PaintCell paint,
                      CellOrder order = CellOrder::DownColumns) {
  if (dx < 1 || dy < 1) return;
  const int32_t cw = NominalCellSize(width, dx), ch = NominalCellSize(height, dy);
  if (cw < 1 || ch < 1) return;
  const auto cell = [&](int32_t i, int32_t j) {
    const int32_t x0 = i * cw, y0 = j * ch;
    paint(Cell{x0, std::min(x0 + cw, width), y0, std::min(y0 + ch, height)});
  };
  if (order == CellOrder::DownColumns) {
    for (int32_t i = 0; i < dx; ++i) {
      for (int32_t j = 0; j < dy; ++j) cell(i, j);
    }
  } else {
    for (int32_t j = 0; j < dy; ++j) {
      for (int32_t i = 0; i < dx; ++i) cell(i, j);
    }
  }
}

}  // namespace krl
