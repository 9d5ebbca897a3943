// The Hilbert walker: its walk order on the 4 x 4 grid, the budget that
// stops it, and that a walk covers its block.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "raster/hilbert.h"

namespace krl {
namespace {

// The walk order at level 2, [r][c].
constexpr int kOrder[4][4] = {{0, 3, 4, 5}, {1, 2, 7, 6}, {14, 13, 8, 9}, {15, 12, 11, 10}};

TEST(HilbertWalk, MarksTheFirstCellsOfTheWalk) {
  for (int32_t cells = -3; cells <= 20; ++cells) {
    StartHilbertWalk(cells);
    int marked = 0;
    for (int32_t r = 0; r < kHilbertSide; ++r) {
      for (int32_t c = 0; c < kHilbertSide; ++c) {
        const bool expected = r < 4 && c < 4 && kOrder[r][c] < cells;
        EXPECT_EQ(HilbertMarked(r, c), expected) << cells << " cells, r " << r << " c " << c;
        marked += HilbertMarked(r, c);
      }
    }
    EXPECT_EQ(marked, std::clamp(cells, 0, 16));
  }
}

TEST(HilbertWalk, BudgetsOfOneFiveAndSixteen) {
  StartHilbertWalk(1);
  EXPECT_EQ(gHilbertWalk.budget, 0u);
  EXPECT_TRUE(HilbertMarked(0, 0));
  EXPECT_FALSE(HilbertMarked(1, 0)) << "the first step is made, its cell not marked";
  StartHilbertWalk(5);
  for (const auto& [r, c] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 2}}) EXPECT_TRUE(HilbertMarked(r, c));
  StartHilbertWalk(16);
  EXPECT_EQ(gHilbertWalk.r, 3);
  EXPECT_EQ(gHilbertWalk.c, 0);
}

TEST(HilbertWalk, AnOrderCoversItsBlockOnce) {
  std::memset(gHilbertWalk.marks, 0, sizeof gHilbertWalk.marks);
  gHilbertWalk.r = gHilbertWalk.c = 0;
  gHilbertWalk.marks[0] = 1;
  gHilbertWalk.budget = 1000;
  hilbert_a(3);
  EXPECT_EQ(gHilbertWalk.budget, 1000u - 255u) << "4^4 - 1 steps";
  EXPECT_EQ(gHilbertWalk.r, 15);
  EXPECT_EQ(gHilbertWalk.c, 0);
  for (int32_t flag : gHilbertWalk.marks) EXPECT_EQ(flag, 1);
}

}  // namespace
}  // namespace krl
