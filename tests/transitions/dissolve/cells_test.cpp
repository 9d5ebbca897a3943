// The dissolves by cells. Hilbert Mosaic: the cell budget from the quantised
// Progress, the cells of the walk that show B, and the band boundaries of
// sizes not divisible by 4. Dither Dissolve and Mosaic turn to B one position
// or tile at a time: how many have turned at a Progress, how Dither's cells
// cut off at the frame's edge repeat the whole cell, and where Mosaic's tiles
// start when they are a fractional number of pixels wide (and which of two
// overlapping shows). Random Dissolve: which clip is the base, how many rand()
// draws a frame makes and in which order, and where a cell's first draw
// lands; the library shares the process's rand(), so each case seeds it first.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;

TEST(CellDissolves, OneMoreBPerStep) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* effect;
    int32_t w, h;  // Dither: 2 x 3 cells of 81 positions; Mosaic: 100 tiles of 10 x 5 pixels
    double progress;
    int bPixels;
  } rows[] = {
      {"Dither Dissolve", 18, 27, 0.0, 6 * 1},        {"Dither Dissolve", 18, 27, 1.0 / 81, 6 * 2},
      {"Dither Dissolve", 18, 27, 0.5, 6 * 41},       {"Dither Dissolve", 18, 27, 0.985, 6 * 80},
      {"Dither Dissolve", 18, 27, 80.0 / 81, 6 * 81}, {"Dither Dissolve", 18, 27, 1.5, 6 * 81},
      {"Dither Dissolve", 18, 27, -0.001, 6 * 1},     {"Dither Dissolve", 18, 27, -0.02, 0},
      {"Dither Dissolve", 18, 27, nan, 0},
      // At 1 Dither's 82nd and Mosaic's 101st step are one past the table: they copy nothing.
      {"Dither Dissolve", 18, 27, 1.0, 6 * 81},
      {"Mosaic", 100, 50, 0.0, 50 * 1},  {"Mosaic", 100, 50, 0.01, 50 * 2},    {"Mosaic", 100, 50, 0.5, 50 * 51},
      {"Mosaic", 100, 50, 1.0, 50 * 100}, {"Mosaic", 100, 50, -0.005, 50 * 1}, {"Mosaic", 100, 50, -0.1, 0},
      {"Mosaic", 100, 50, nan, 0},
  };
  for (const auto& row : rows) {
    const emu::Frame out = RenderFlat(row.effect, row.w, row.h, row.progress);
    EXPECT_EQ(CountOf(out, kB), row.bPixels) << row.effect << " at " << row.progress;
    for (uint32_t px : out.pixels) ASSERT_TRUE(px == kA || px == kB) << row.effect << " at " << row.progress;
  }
}

TEST(DitherDissolve, PartialCellsRepeatTheWholeCellsPattern) {
  for (const double progress : {0.0, 0.3, 0.5, 0.77, 0.99}) {
    for (const auto& [w, h] : {std::pair{10, 10}, {20, 13}, {1, 17}, {17, 1}}) {
      const emu::Frame out = RenderFlat("Dither Dissolve", w, h, progress);
      const emu::Frame cell = RenderFlat("Dither Dissolve", 9, 9, progress);
      for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
          ASSERT_EQ(out.At(x, y), cell.At(x % 9, y % 9)) << w << "x" << h << " at " << x << "," << y;
        }
      }
    }
  }
}

TEST(Mosaic, FractionalTilesOverlapAndTheLaterPassShows) {
  // 15 wide: tiles 1.5 columns wide start at columns 0, 1, 3, 4, 6, 7, 9, 10,
  // 12, 13, each written by the passes at offsets 0 and 1. Column 13 is tile
  // 9's first column and tile 8's second; the pass at offset 1 comes later,
  // so tile 8 (the first to turn) shows there.
  const emu::Frame out = RenderFlat("Mosaic", 15, 10, 0.0);
  for (int32_t y = 0; y < 10; ++y) {
    for (int32_t x = 0; x < 15; ++x) {
      ASSERT_EQ(out.At(x, y), y == 3 && (x == 12 || x == 13) ? kB : kA) << x << "," << y;
    }
  }
  // 5 x 5: tiles are half a pixel, so pixel (4, 1) belongs to tiles 28, 29,
  // 38 and 39 in the same pass; 39 turns last (the 58th), and the pixel with it.
  EXPECT_EQ(RenderFlat("Mosaic", 5, 5, 0.0).At(4, 1), kA);
  EXPECT_EQ(RenderFlat("Mosaic", 5, 5, 0.565).At(4, 1), kA);
  EXPECT_EQ(RenderFlat("Mosaic", 5, 5, 0.575).At(4, 1), kB);
}

TEST(Mosaic, EveryPixelIsWrittenWhateverTheSize) {
  for (const auto& [w, h] : {std::pair{1, 1}, {3, 7}, {15, 15}, {23, 17}, {101, 11}, {9, 200}, {1, 33}}) {
    for (const double progress : {0.0, 0.37, 1.0}) {
      const emu::Frame out = RenderFlat("Mosaic", w, h, progress);
      for (uint32_t px : out.pixels) ASSERT_NE(px, kUnwritten) << w << "x" << h << " " << progress;
    }
  }
}

constexpr unsigned kSeed = 20261121;

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
      {0.0, kA, 0},  {0.0625, kA, 1}, {0.5, kA, 8}, {0.51, kB, 8}, {0.99, kB, 1}, {1.0, kB, 0}, {1.5, kB, 0},
      {-inf, kA, 0}, {nan, kA, 0},
  };
  constexpr int32_t kW = 10, kH = 7;  // 3 x 2 cells, the last column and row cut off
  constexpr int kCells = 6;
  for (const auto& row : rows) {
    const emu::Frame out = RandomDissolve(kW, kH, row.progress);
    const int next = std::rand();
    EXPECT_EQ(next, RandAfterSrand(kSeed, kCells * row.draws + 1).back()) << "draws at " << row.progress;
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
    const std::vector<int> draws = RandAfterSrand(kSeed, 4);
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

}  // namespace
}  // namespace krl::test
