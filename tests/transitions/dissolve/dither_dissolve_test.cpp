// Dither Dissolve: how many positions of a cell show B at each Progress,
// which come first, and how cells cut off at the frame's edge behave.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

constexpr uint32_t kA = kFlatA, kB = kFlatB;

emu::Frame Dither(int32_t w, int32_t h, double progress) { return RenderFlat("Dither Dissolve", w, h, progress); }
int CountB(const emu::Frame& f) { return CountOf(f, kB); }

TEST(DitherDissolve, EachCellShowsOneMoreBPixelPerEightyFirst) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    double progress;
    int bPerCell;
  } rows[] = {
      {0.0, 1},    {1.0 / 81, 2}, {0.5, 41},  {79.0 / 81, 80}, {0.985, 80},
      {80.0 / 81, 81}, {1.0, 81},  // 82 rounds at 1: the one past the table copies nothing
      {1.5, 81},   {-0.001, 1},   {-0.02, 0}, {-1.0, 0},       {nan, 0},
  };
  for (const auto& row : rows) {
    const emu::Frame out = Dither(18, 27, row.progress);  // 2 x 3 whole cells
    EXPECT_EQ(CountB(out), 6 * row.bPerCell) << row.progress;
    for (uint32_t px : out.pixels) ASSERT_TRUE(px == kA || px == kB) << row.progress;
  }
}

TEST(DitherDissolve, TheCentreComesFirstThenTheOrderOfTheTable) {
  const struct {
    int round;  // 81 x Progress
    int x, y;   // the position that turns to B in that round
  } rows[] = {{0, 4, 4}, {1, 1, 4}, {2, 4, 7}, {3, 7, 4}, {80, 4, 0}};
  for (const auto& row : rows) {
    const emu::Frame before = Dither(9, 9, (row.round - 1) / 81.0), now = Dither(9, 9, row.round / 81.0);
    EXPECT_EQ(CountB(now) - CountB(before), 1) << row.round;
    EXPECT_EQ(now.At(row.x, row.y), kB) << row.round;
    EXPECT_NE(before.At(row.x, row.y), kB) << row.round;
  }
}

TEST(DitherDissolve, PartialCellsRepeatTheWholeCellsPattern) {
  for (const double progress : {0.0, 0.3, 0.5, 0.77, 0.99}) {
    for (const auto& [w, h] : {std::pair{10, 10}, {20, 13}, {1, 17}, {17, 1}}) {
      const emu::Frame out = Dither(w, h, progress), cell = Dither(9, 9, progress);
      for (int32_t y = 0; y < h; ++y) {
        for (int32_t x = 0; x < w; ++x) {
          ASSERT_EQ(out.At(x, y), cell.At(x % 9, y % 9)) << w << "x" << h << " at " << x << "," << y;
        }
      }
    }
  }
  // The 10 x 10 frame's corner pixel (9, 9) is position 0 of its cell, the
  // 61st in the order: it turns to B when 81 x Progress reaches 60.
  EXPECT_EQ(Dither(10, 10, 59.5 / 81).At(9, 9), kA);
  EXPECT_EQ(Dither(10, 10, 60.0 / 81).At(9, 9), kB);
}

}  // namespace
}  // namespace krl::test
