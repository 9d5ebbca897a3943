// Swap: the two halves of the slide in every cell, the shift rounded to
// single precision, the cells of the grid and the columns and rows it never
// writes.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(Swap, SlidesAAndBPastEachOtherInEveryCell) {
  const RowReadsCase cases[] = {
      // 100 x 0.3 is just below 30 in extended precision, 30 once rounded to single.
      {"first half", 100, 2, 0.3, {}, 1, "A70@30,1 B30@40,1"},
      {"second half", 100, 2, 0.8, {}, 1, "A20@20,1 B80@0,1"},
      {"the halves meet", 100, 2, 0.5, {}, 0, "A50@50,0 B50@0,0"},
      {"Progress 0", 100, 2, 0.0, {}, 0, "A100@0,0"},
      {"Progress 1", 100, 2, 1.0, {}, 0, "B100@0,0"},
      {"Direction 2 is horizontal", 100, 2, 0.3, {{"Direction", 2}}, 0, "A70@30,0 B30@40,0"},
      // Cells of 33: s = 9, the last column never written.
      {"three cells", 100, 2, 0.3, {{"Divide_X", 3}}, 0, "A24@9,0 B9@15,0 A24@42,0 B9@48,0 A24@75,0 B9@81,0 .1"},
      {"Divide_Y leaves the top row", 4, 10, 0.5, {{"Divide_Y", 3}}, 9, ".4"},
      {"Divide_X 0 draws nothing", 10, 2, 0.5, {{"Divide_X", 0}}, 0, ".10"},
      {"Divide_Y negative draws nothing", 10, 2, 0.5, {{"Divide_Y", -2}}, 0, ".10"},
      {"a division beyond the width", 10, 2, 0.5, {{"Divide_X", INT32_MAX}}, 0, ".10"},
  };
  ExpectRowReads("Swap", cases);
}

TEST(Swap, VerticalSlidesAlongColumnsWithTheLowEndAtTheBottom) {
  const emu::Frame first = RenderCodedClips("Swap", 2, 100, 0.3, {{"Direction", 1}});
  EXPECT_EQ(ColumnReads(first, 1), "A70@30 B30@40");
  const emu::Frame second = RenderCodedClips("Swap", 3, 100, 0.8, {{"Direction", 1}, {"Divide_X", 2}});
  EXPECT_EQ(ColumnReads(second, 0), "A20@20 B80@0");
  EXPECT_EQ(ColumnReads(second, 2), ".100");  // beyond 2 x 1 columns
}

// Beyond 0..1 the shifts reach past the cell: nothing is read or written
// outside the frame (the frames are exactly their size; the sanitizers
// watch), and what is written is read from inside it.
TEST(Swap, ProgressOutsideTheRangeStaysInsideTheFrame) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double p : {-0.5, 1.5, 40.0, -1e300, nan}) {
    for (const int32_t direction : {0, 1}) {
      const emu::Frame out = RenderCodedClips("Swap", 9, 7, p, {{"Direction", direction}, {"Divide_X", 2}});
      for (const uint32_t px : out.pixels) {
        if (px == kUntouched) continue;
        ASSERT_TRUE(SourceOf(px) == 'A' || SourceOf(px) == 'B') << p;
        ASSERT_LT(CodedX(px), 9);
        ASSERT_LT(CodedY(px), 7);
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
