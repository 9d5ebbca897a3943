// Random Dissolve: which clip is the base, how many rand() draws a frame
// makes and in which order, and where a cell's first draw lands. The
// library shares the process's rand(), so each case seeds it first.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;
constexpr unsigned kSeed = 20261121;

// The next `count` values rand() gives after srand(kSeed).
std::vector<int> RandAfterSeed(size_t count) {
  std::srand(kSeed);
  std::vector<int> values(count);
  for (int& v : values) v = std::rand();
  return values;
}

emu::Frame RandomDissolve(int32_t w, int32_t h, double progress) {
  std::srand(kSeed);
  return RenderFlat("Random Dissolve", w, h, progress);
}

TEST(RandomDissolve, DrawsOncePerCellAndPositionOverTheRightBase) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  const struct {
    double progress;
    uint32_t base;
    int draws;  // per cell
  } rows[] = {
      {0.0, kA, 0},  {0.0625, kA, 1}, {0.25, kA, 4},  {0.5, kA, 8},   {0.51, kB, 8},  {0.75, kB, 4},
      {0.99, kB, 1}, {1.0, kB, 0},    {-0.5, kA, 0},  {1.5, kB, 0},   {inf, kB, 0},   {-inf, kA, 0},
      {nan, kA, 0},
  };
  constexpr int32_t kW = 10, kH = 7;  // 3 x 2 cells, the last column and row cut off
  constexpr int kCells = 6;
  for (const auto& row : rows) {
    const emu::Frame out = RandomDissolve(kW, kH, row.progress);
    const int next = std::rand();
    EXPECT_EQ(next, RandAfterSeed(kCells * row.draws + 1).back()) << "draws at " << row.progress;
    const uint32_t overlay = row.base == kA ? kB : kA;
    for (int32_t y0 = 0; y0 < kH; y0 += 4) {
      for (int32_t x0 = 0; x0 < kW; x0 += 4) {
        int overlaid = 0;
        for (int32_t y = y0; y < std::min(y0 + 4, kH); ++y) {
          for (int32_t x = x0; x < std::min(x0 + 4, kW); ++x) {
            ASSERT_TRUE(out.At(x, y) == row.base || out.At(x, y) == overlay);
            overlaid += out.At(x, y) == overlay;
          }
        }
        EXPECT_LE(overlaid, row.draws) << row.progress;
        // A whole cell shows at least its first draw.
        if (x0 + 4 <= kW && y0 + 4 <= kH) {
          EXPECT_GE(overlaid, std::min(row.draws, 1)) << row.progress;
        }
      }
    }
  }
}

TEST(RandomDissolve, FirstDrawPicksAnOrderByRandModThreeCellRowsOutermost) {
  // The first entries of the three orders: positions 4, 11 and 6, i.e.
  // (column, row) = (0, 1), (3, 2) and (2, 1).
  const int first[3][2] = {{0, 1}, {3, 2}, {2, 1}};
  const int origin[4][2] = {{0, 0}, {4, 0}, {0, 4}, {4, 4}};  // the order of the cells
  // One draw per cell: B over A at 1/16, A over B at 15/16.
  for (const auto& [progress, overlay] : {std::pair{0.0625, kB}, {0.9375, kA}}) {
    const std::vector<int> draws = RandAfterSeed(4);
    const emu::Frame out = RandomDissolve(8, 8, progress);
    int overlaid = 0;
    for (int cell = 0; cell < 4; ++cell) {
      const int* at = first[draws[cell] % 3];
      EXPECT_EQ(out.At(origin[cell][0] + at[0], origin[cell][1] + at[1]), overlay) << "cell " << cell;
    }
    for (uint32_t px : out.pixels) overlaid += px == overlay;
    EXPECT_EQ(overlaid, 4) << progress;
  }
}

}  // namespace
}  // namespace krl::test
