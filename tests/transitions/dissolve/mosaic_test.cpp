// Mosaic: which tiles have turned at a Progress, where a tile's pixels start
// when tiles are a fractional number of pixels wide, and which of two
// overlapping tiles shows.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;

emu::Frame Mosaic(int32_t w, int32_t h, double progress) { return RenderFlat("Mosaic", w, h, progress); }
int CountB(const emu::Frame& f) { return CountOf(f, kB); }

TEST(Mosaic, OneMoreTilePerHundredth) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    double progress;
    int tiles;
  } rows[] = {{0.0, 1},   {0.01, 2},   {0.5, 51}, {0.995, 100}, {1.0, 100},  // 101 turns at 1: one past the table
              {1.7, 100}, {-0.005, 1}, {-0.1, 0}, {nan, 0}};
  for (const auto& row : rows) {
    const emu::Frame out = Mosaic(100, 50, row.progress);  // 10 x 5 pixels a tile
    EXPECT_EQ(CountB(out), 50 * row.tiles) << row.progress;
    for (uint32_t px : out.pixels) ASSERT_TRUE(px == kA || px == kB) << row.progress;
  }
}

TEST(Mosaic, TheFirstTileIsColumnEightRowThree) {
  const emu::Frame out = Mosaic(100, 100, 0.0);
  for (int32_t y = 0; y < 100; ++y) {
    for (int32_t x = 0; x < 100; ++x) {
      ASSERT_EQ(out.At(x, y), x >= 80 && x < 90 && y >= 30 && y < 40 ? kB : kA) << x << "," << y;
    }
  }
}

TEST(Mosaic, FractionalTilesOverlapAndTheLaterPassShows) {
  // 15 wide: tiles 1.5 columns wide start at columns 0, 1, 3, 4, 6, 7, 9, 10,
  // 12, 13, each written by the passes at offsets 0 and 1. Column 13 is tile
  // 9's first column and tile 8's second; the pass at offset 1 comes later,
  // so tile 8 (the first to turn) shows there.
  const emu::Frame out = Mosaic(15, 10, 0.0);
  for (int32_t y = 0; y < 10; ++y) {
    for (int32_t x = 0; x < 15; ++x) {
      ASSERT_EQ(out.At(x, y), y == 3 && (x == 12 || x == 13) ? kB : kA) << x << "," << y;
    }
  }
  // 5 x 5: tiles are half a pixel, so pixel (4, 1) belongs to tiles 28, 29,
  // 38 and 39 in the same pass; 39 turns last (the 58th), and the pixel with it.
  EXPECT_EQ(Mosaic(5, 5, 0.0).At(4, 1), kA);
  EXPECT_EQ(Mosaic(5, 5, 0.565).At(4, 1), kA);
  EXPECT_EQ(Mosaic(5, 5, 0.575).At(4, 1), kB);
}

TEST(Mosaic, EveryPixelIsWrittenWhateverTheSize) {
  for (const auto& [w, h] : {std::pair{1, 1}, {3, 7}, {15, 15}, {23, 17}, {101, 11}, {9, 200}, {1, 33}}) {
    for (const double progress : {0.0, 0.37, 1.0}) {
      for (uint32_t px : Mosaic(w, h, progress).pixels) ASSERT_NE(px, kUnwritten) << w << "x" << h << " " << progress;
    }
  }
}

}  // namespace
}  // namespace krl::test
