// Sliding Doors: the two doors of A moving apart over B in place, their
// pens, the single rounding of the advance, the odd size whose last column
// (row) stays with the far door, and an init that leaves the pen to the host.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(SlidingDoors, DoorsOfAPartOverBInPlace) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const RowsCase cases[] = {
      // hw = 50 and n = 50: B over [0, 100); the far door's column 100 reads A's column 50.
      {"odd width at 1", 101, 1, 1.0, {}, {"B100@0,0 A1@50,0"}},
      {"Direction 2 is Horizontal", 101, 1, 1.0, {{"Direction", 2}}, {"B100@0,0 A1@50,0"}},
      // hw = 6, n = 3: B over [3, 9), pens over [1, 3) and [9, 11), the doors moved 3 apart.
      {"with pens", 12, 2, 0.5, {{"BorderWidth", 2}},
       {"A1@3,1 P2 B6@3,1 P2 A1@8,1", "A1@3,0 P2 B6@3,0 P2 A1@8,0"}},
      {"closed at 0: two pens meet", 10, 1, 0.0, {{"BorderWidth", 2}}, {"A3@0,0 P4 A3@7,0"}},
      {"NaN Progress is 0", 10, 1, nan, {{"BorderWidth", 2}}, {"A3@0,0 P4 A3@7,0"}},
      // 10 x 0.3 lies just below 3; rounded to single first, it truncates to 3.
      {"the advance rounds to single", 20, 1, 0.3, {}, {"A7@3,0 B6@7,0 A7@10,0"}},
      {"a huge pen stops at the cell", 6, 1, 0.5, {{"BorderWidth", INT32_MAX}}, {"P2 B2@2,0 P2"}},
      // hh = 3, n = 3: B over rows [0, 6); row 6 reads A's row 3.
      {"vertical, odd height at 1", 3, 7, 1.0, {{"Direction", 1}},
       {"A3@0,3", "B3@0,5", "B3@0,4", "B3@0,3", "B3@0,2", "B3@0,1", "B3@0,0"}},
      // hh = 5, n = 2: B over rows [3, 7), pens on rows 2 and 7.
      {"vertical with pens", 2, 10, 0.5, {{"Direction", 1}, {"BorderWidth", 1}},
       {"A2@0,7", "A2@0,6", "P2", "B2@0,6", "B2@0,5", "B2@0,4", "B2@0,3", "P2", "A2@0,3", "A2@0,2"}},
      // Cells of 4 x 2 (column 8 and row 4 beyond them), hw = 2, n = 1.
      {"cells", 9, 5, 0.5, {{"Divide_X", 2}, {"Divide_Y", 2}},
       {".9", "A1@1,3 B2@1,3 A1@2,3 A1@5,3 B2@5,3 A1@6,3 .1", "A1@1,2 B2@1,2 A1@2,2 A1@5,2 B2@5,2 A1@6,2 .1",
        "A1@1,1 B2@1,1 A1@2,1 A1@5,1 B2@5,1 A1@6,1 .1", "A1@1,0 B2@1,0 A1@2,0 A1@5,0 B2@5,0 A1@6,0 .1"}},
      {"Divide_X 0 draws nothing", 4, 1, 0.5, {{"Divide_X", 0}}, {".4"}},
  };
  ExpectRows("Sliding Doors", cases, RowReadsWithRows);
}

TEST(SlidingDoors, InitLeavesThePenColourAndThicknessToTheHost) {
  emu::Instance instance(Library(), Effect(Library(), "Sliding Doors"));
  EXPECT_EQ(instance.defaultsSet(),
            (std::vector<std::string>{"SetFieldDefault(TransType, 0)", "SetFieldDefault(Direction, 0)",
                                      "SetFieldDefault(Divide_X, 1)", "SetFieldDefault(Divide_Y, 1)"}));
}

}  // namespace
}  // namespace krl::test
