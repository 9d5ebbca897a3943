// Inset: B's rectangle from a corner showing the opposite corner of B's cell,
// the L-shaped pen, and the rounding that only Top Left does.
#include <gtest/gtest.h>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(Inset, BComesInFromACornerBehindAnLShapedPen) {
  const RowsCase cases[] = {
      // w = 3, p = 0.5: Top Left rounds 2.0 to a = 2, the other corners truncate 1.5 to 1.
      {"Top Left rounds", 3, 3, 0.5, {}, {"B2@1,1 A1@2,2", "B2@1,0 A1@2,1", "A3@0,0"}},
      {"Top Right truncates", 3, 3, 0.5, {{"Direction", 1}}, {"A2@0,2 B1@0,0", "A3@0,1", "A3@0,0"}},
      // 10 x 0.3 is just below 3; rounded to single first, it truncates to a = 3.
      // 6 x 0.3 gives b = 1: one row of B read from B's row 5, two rows of pen.
      {"Bottom Left with a pen", 10, 6, 0.3, {{"Direction", 2}, {"BorderWidth", 2}},
       {"A10@0,5", "A10@0,4", "A10@0,3", "P5 A5@5,2", "P5 A5@5,1", "B3@7,5 P2 A5@5,0"}},
      {"Bottom Right with a pen", 10, 4, 0.3, {{"Direction", 3}, {"BorderWidth", 2}},
       {"A10@0,3", "A5@0,2 P5", "A5@0,1 P5", "A5@0,0 P2 B3@0,3"}},
      {"Top Left at 0: a pen square in the corner", 5, 4, 0.0, {{"BorderWidth", 2}},
       {"P2 A3@2,3", "P2 A3@2,2", "A5@0,1", "A5@0,0"}},
      {"cells of 2 x 2, Top Left at 0.5", 4, 4, 0.5, {{"Divide_X", 2}, {"Divide_Y", 2}},
       {"B1@1,2 A1@1,3 B1@3,2 A1@3,3", "A4@0,2", "B1@1,0 A1@1,1 B1@3,0 A1@3,1", "A4@0,0"}},
      {"a huge pen stops at the cell", 3, 2, 0.0, {{"BorderWidth", INT32_MAX}}, {"P3", "P3"}},
  };
  ExpectRows("Inset", cases, RowReadsWithRows);
}

}  // namespace
}  // namespace krl::test
