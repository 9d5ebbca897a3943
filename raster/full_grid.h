// The full grid: Divide_X columns by Divide_Y rows of cells, both divisions
// used whatever the transition's direction, every pixel in exactly one cell.
#pragma once

#include <cstdint>

#include "raster/cell_grid.h"

namespace krl {

// Cells W / dx by H / dy pixels (integer division), the last column and the
// last row taking the remainder; nothing is visited when a division is below 1.
// paint(cell, y) is handed every row y of every cell, the frame's rows in
// order from the bottom and each row's cells from the left, so that a row is
// written from one end to the other. A division larger than the frame's side
// leaves every cell of that axis but the last empty; those are skipped, so
// any division finishes in time.
template <typename PaintCellRow>
void ForEachFullGridRow(int32_t width, int32_t height, int32_t dx, int32_t dy, PaintCellRow paint) {
  if (dx < 1 || dy < 1 || width < 1 || height < 1) return;
  const int32_t cw = width / dx, ch = height / dy;
  const int32_t firstColumn = cw > 0 ? 0 : dx - 1, firstRow = ch > 0 ? 0 : dy - 1;
  for (int32_t j = firstRow; j < dy; ++j) {
    const int32_t y0 = j * ch, y1 = j == dy - 1 ? height : y0 + ch;
    for (int32_t y = y0; y < y1; ++y) {
      for (int32_t i = firstColumn; i < dx; ++i) {
        const int32_t x0 = i * cw, x1 = i == dx - 1 ? width : x0 + cw;
        paint(Cell{x0, x1, y0, y1}, y);
      }
    }
  }
}

}  // namespace krl
