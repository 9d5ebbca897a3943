// Hilbert Mosaic: the cell budget from the quantised Progress, the cells of
// the walk that show B, and the band boundaries of sizes not divisible by 4.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;

// The walk order of the 4 x 4 cells, [row band][column band].
constexpr int kOrder[4][4] = {{0, 3, 4, 5}, {1, 2, 7, 6}, {14, 13, 8, 9}, {15, 12, 11, 10}};

TEST(HilbertMosaic, CellsTurnInWalkOrderOnePerSixteenth) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  const struct {
    double progress;
    int cells;
  } rows[] = {{0.0, 0},    {0.06, 0},  {0.0625, 1}, {0.3124, 4}, {0.3125, 5}, {0.5, 8}, {0.99, 15},
              {1.0, 16},   {1.5, 16},  {-0.5, 0},   {nan, 0},    {inf, 0},    {-inf, 0}};
  for (const auto& [w, h] : {std::pair{8, 8}, {10, 7}, {3, 2}, {1, 5}}) {
    for (const auto& row : rows) {
      const emu::Frame out = RenderFlat("Hilbert Mosaic", w, h, row.progress);
      for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
          const bool turned = kOrder[y * 4 / h][x * 4 / w] < row.cells;
          ASSERT_EQ(out.At(x, y), turned ? kB : kA) << w << "x" << h << " at " << row.progress << ": " << x << "," << y;
        }
      }
    }
  }
}

TEST(HilbertMosaic, HalfWayShowsBOnTheLowerHalfOfMemoryRows) {
  const emu::Frame out = RenderFlat("Hilbert Mosaic", 12, 10, 0.5);
  for (int32_t y = 0; y < 10; ++y) {
    // Row bands 0 and 1 hold rows (y * 4) / 10 < 2, i.e. y < 5.
    for (int32_t x = 0; x < 12; ++x) ASSERT_EQ(out.At(x, y), y < 5 ? kB : kA) << x << "," << y;
  }
}

}  // namespace
}  // namespace krl::test
