// Spin Away: the whole-frame ends, card shapes worked out by hand (the far
// half losing its outer rows, the near half growing), the angle in whole
// degrees, the horizontal axis, the row scaling about y1 / 2, the aspect
// correction and where the edge smoothing may write.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

// Progress in the middle of whole degree a.
constexpr double Degree(double a) { return (a + 0.5) / 180.0; }

// Rows (columns) as source runs; P is the background colour. At 45 degrees
// in a 40-wide card, the left half's columns 6 .. 19 have k = 3 3 2 2 2 2 1
// 1 1 1 0 0 0 0 (u = trunc(d / 0.707107), k = trunc(u x 0.176777)), the
// right half's 20 .. 33 have k = 0 0 0 0 0 1 1 1 1 2 2 2 2 3.
TEST(SpinAway, CardShapes) {
  const struct {
    const char* what;
    int32_t w, h;
    double progress;
    FieldValues values;
    bool alongRows;  // rows, or columns for the horizontal axis
    int32_t line;
    const char* runs;
  } cases[] = {
      {"the far half on the left loses the columns with k > 0 on top", 40, 20, Degree(45), {}, true, 19, "P16 A18 P6"},
      {"Right > Left: the far half on the right", 40, 20, Degree(45), {{"Direction", 1}}, true, 19, "P6 A19 P15"},
      {"B shows the far half on the other side", 40, 20, Degree(135), {}, true, 19, "P6 B19 P15"},
      {"Top > Bottom: far half below the axis", 20, 40, Degree(45), {{"Direction", 2}}, false, 19, "P16 A18 P6"},
      {"a = -1 draws nothing", 30, 10, -1.5 / 180, {}, true, 3, ".30"},
      {"NaN draws nothing", 30, 10, std::numeric_limits<double>::quiet_NaN(), {}, true, 3, ".30"},
      // Divide_Y = 4: K is s / 4 x 1/4 without sharp tines, so every k of the
      // card is 0; with them the top row of a cell loses the far columns again.
      {"smooth tines", 40, 40, Degree(45), {{"Divide_Y", 4}}, true, 9, "P6 A28 P6"},
      {"sharp tines", 40, 40, Degree(45), {{"Divide_Y", 4}, {"SharpTines", 1}}, true, 9, "P16 A18 P6"},
      // a = 1 and a = 179 share cos 1 = 0.999848 (pw = 299) and sin 1: k = 1
      // from u = 230 on, so the outer row loses 70 far columns on one side.
      {"a = 1", 600, 10, Degree(1), {}, true, 9, "P71 A528 P1"},
      {"a = 179: the same card, far half on the right", 600, 10, Degree(179), {}, true, 9, "P1 B529 P70"},
      // trunc(180 p) is 178 on (178/180, 179/180): the card of 2 degrees.
      {"Progress 178.9/180 is a = 178", 600, 10, 178.9 / 180, {}, true, 9, "P1 B414 P185"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCoded("Spin Away", c.w, c.h, c.progress, c.values);
    EXPECT_EQ(c.alongRows ? RowRuns(out, c.line) : ColumnRuns(out, c.line), c.runs) << c.what;
  }
}

TEST(SpinAway, WhereCardsRead) {
  const emu::Frame out = RenderCoded("Spin Away", 40, 20, Degree(45));
  EXPECT_EQ(out.At(16, 19), Code(kTagA, 15, 19)) << "far, d 4: u 5, k 0";
  EXPECT_EQ(out.At(6, 11), Code(kTagA, 1, 11)) << "far, d 14: u 19, k 3, row trunc(20 / 14 x 8)";
  EXPECT_EQ(out.At(33, 19), Code(kTagA, 38, 16)) << "near, d 13: u 18, k 3, row trunc(20 / 26 x 22)";
  // Two rows of cards (sharp tines keep k = 3 at column 33): both scale about
  // row y1 / 2 of their own y1, the middle of the lower cells (10) but the
  // bottom of the upper ones (20).
  const emu::Frame rows = RenderCoded("Spin Away", 40, 40, Degree(45), {{"Divide_Y", 2}, {"SharpTines", 1}});
  EXPECT_EQ(rows.At(33, 15), Code(kTagA, 38, 13)) << "trunc(20 / 26 x 18)";
  EXPECT_EQ(rows.At(33, 35), Code(kTagA, 38, 33)) << "trunc(40 / 46 x 38)";
}

// The smoothing re-blends only the far half's outer rows with the background.
TEST(SpinAway, SmoothingStaysOnTheFarEdges) {
  for (const int32_t direction : {0, 1}) {
    const emu::Frame hard = RenderCoded("Spin Away", 40, 20, Degree(45), {{"Direction", direction}});
    const emu::Frame soft =
        RenderCoded("Spin Away", 40, 20, Degree(45), {{"Direction", direction}, {"IsAntiAlias", 1}});
    int changed = 0;
    for (int32_t y = 0; y < 20; ++y) {
      for (int32_t x = 0; x < 40; ++x) {
        if (hard.At(x, y) == soft.At(x, y)) continue;
        ++changed;
        const bool farHalf = direction == 0 ? x >= 6 && x <= 20 : x >= 20 && x <= 34;
        EXPECT_TRUE(farHalf && (y <= 4 || y >= 15)) << direction << ": " << x << "," << y;
      }
    }
    EXPECT_GT(changed, 10) << direction;
  }
}

}  // namespace
}  // namespace krl::test
