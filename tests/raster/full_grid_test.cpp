// The full grid: every pixel in exactly one cell, whatever the divisions.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <vector>

#include "raster/full_grid.h"

namespace krl {
namespace {

TEST(FullGrid, EveryPixelInExactlyOneCell) {
  const struct {
    int32_t w, h, dx, dy;
    int cells;  // non-empty cells visited
  } cases[] = {{100, 80, 1, 1, 1}, {100, 80, 3, 7, 21}, {10, 9, 4, 2, 8}, {5, 3, 8, 8, 1},
               {7, 6, 3, 8, 3},    {4, 4, INT32_MAX, 1, 1}, {4, 4, 0, 1, 0}, {4, 4, 2, -1, 0}};
  for (const auto& c : cases) {
    std::vector<int> hits(static_cast<size_t>(c.w * c.h));
    std::set<std::array<int32_t, 4>> cells;
    ForEachFullGridRow(c.w, c.h, c.dx, c.dy, [&](const Cell& cell, int32_t y) {
      cells.insert({cell.x0, cell.x1, cell.y0, cell.y1});
      ASSERT_TRUE(y >= cell.y0 && y < cell.y1);
      for (int32_t x = cell.x0; x < cell.x1; ++x) ++hits[static_cast<size_t>(y * c.w + x)];
    });
    EXPECT_EQ(static_cast<int>(cells.size()), c.cells) << c.w << "x" << c.h << " / " << c.dx << "x" << c.dy;
    for (int hit : hits) ASSERT_EQ(hit, c.cells == 0 ? 0 : 1) << c.w << "x" << c.h << " / " << c.dx << "x" << c.dy;
  }
}

}  // namespace
}  // namespace krl
