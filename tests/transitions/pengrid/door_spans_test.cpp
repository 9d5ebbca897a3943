// Cross Split and Sliding Doors, the two transitions of door spans. Cross
// Split: the cross of B from the cell's centre, the pen on the inside of its
// bars widened by 2, the quarters of A read half a bar outwards, and closing
// as a second exchange. Sliding Doors: the doors of A moving apart over B in
// place, the single rounding of the advance, the odd size whose last column
// (row) stays with the far door.
#include <gtest/gtest.h>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(CrossSplit, CrossOfBPushesTheQuartersOfAOutwards) {
  const RowsCase cases[] = {
      // 5 / 2 = 2 and trunc(2.5 + 0.5) = 3: a bar one pixel thick already at 0.
      {"odd sizes at 0: one row and column of B", 5, 5, 0.0, {},
       {"A2@0,4 B1@2,4 A2@3,4", "A2@0,3 B1@2,3 A2@3,3", "B5@0,2", "A2@0,1 B1@2,1 A2@3,1", "A2@0,0 B1@2,0 A2@3,0"}},
      // a = 4 over columns [2, 6), b = 3 over rows [1, 5): A moves out by 2 columns and 1 row.
      {"the quarters read half a bar outwards", 8, 6, 0.5, {},
       {"A2@2,4 B4@2,5 A2@4,4", "B8@0,4", "B8@0,3", "B8@0,2", "B8@0,1", "A2@2,1 B4@2,0 A2@4,1"}},
      // a = 7 over [3, 11), b = 3 over [1, 5); BorderWidth 1 draws 3 pixels, leaving B over columns [6, 8).
      {"BorderWidth 1 is a pen 3 deep", 14, 6, 0.5, {{"BorderWidth", 1}},
       {"A3@3,4 P3 B2@6,5 P3 A3@8,4", "P6 B2@6,4 P6", "P6 B2@6,3 P6", "P6 B2@6,2 P6", "P6 B2@6,1 P6",
        "A3@3,1 P3 B2@6,0 P3 A3@8,1"}},
      // Closing at 0.25 opens from 0.75 with the clips exchanged: a = 6 over [1, 7), b = 4 over [1, 5).
      {"closing: a cross of A over B", 8, 6, 0.25, {{"Direction", 1}},
       {"B1@3,3 A6@1,5 B1@4,3", "A8@0,4", "A8@0,3", "A8@0,2", "A8@0,1", "B1@3,2 A6@1,0 B1@4,2"}},
  };
  ExpectRows("Cross Split", cases, RowReadsWithRows);
}

TEST(CrossSplit, ClosingExchangesTheInputsInTheRecordOnceMore) {
  const emu::Frame a = Coded(4, 4, kTagA), b = Coded(4, 4, kTagB);
  for (const int32_t transType : {0, 1}) {
    emu::Instance instance(Library(), Effect(Library(), "Cross Split"));
    instance.SetValue("Direction", 1);
    instance.SetValue("TransType", transType);
    emu::Frame out(4, 4);
    ASSERT_EQ(instance.Render(a, b, out, 0.5), 1);
    const bool exchanged = transType == 0;
    EXPECT_EQ(instance.record().InputA, exchanged ? b.Bytes() : a.Bytes()) << transType;
    EXPECT_EQ(instance.record().InputB, exchanged ? a.Bytes() : b.Bytes()) << transType;
  }
}

TEST(SlidingDoors, DoorsOfAPartOverBInPlace) {
  const RowsCase cases[] = {
      // hw = 50 and n = 50: B over [0, 100); the far door's column 100 reads A's column 50.
      {"odd width at 1", 101, 1, 1.0, {}, {"B100@0,0 A1@50,0"}},
      // hw = 6, n = 3: B over [3, 9), pens over [1, 3) and [9, 11), the doors moved 3 apart.
      {"with pens", 12, 2, 0.5, {{"BorderWidth", 2}},
       {"A1@3,1 P2 B6@3,1 P2 A1@8,1", "A1@3,0 P2 B6@3,0 P2 A1@8,0"}},
      // 10 x 0.3 lies just below 3; rounded to single first, it truncates to 3.
      {"the advance rounds to single", 20, 1, 0.3, {}, {"A7@3,0 B6@7,0 A7@10,0"}},
      {"a huge pen stops at the cell", 6, 1, 0.5, {{"BorderWidth", INT32_MAX}}, {"P2 B2@2,0 P2"}},
      // hh = 5, n = 2: B over rows [3, 7), pens on rows 2 and 7.
      {"vertical with pens", 2, 10, 0.5, {{"Direction", 1}, {"BorderWidth", 1}},
       {"A2@0,7", "A2@0,6", "P2", "B2@0,6", "B2@0,5", "B2@0,4", "B2@0,3", "P2", "A2@0,3", "A2@0,2"}},
  };
  ExpectRows("Sliding Doors", cases, RowReadsWithRows);
}

}  // namespace
}  // namespace krl::test
