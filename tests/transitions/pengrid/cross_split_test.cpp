// Cross Split: the cross of B from the cell's centre, the pen on the inside
// of its bars widened by 2, the quarters of A read half a bar outwards, the
// bars sized from the whole cell, and closing as a second exchange.
#include <gtest/gtest.h>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(CrossSplit, CrossOfBPushesTheQuartersOfAOutwards) {
  const RowsCase cases[] = {
      {"even sizes at 0: A unshifted", 4, 2, 0.0, {}, {"A4@0,1", "A4@0,0"}},
      // 5 / 2 = 2 and trunc(2.5 + 0.5) = 3: a bar one pixel thick already at 0.
      {"odd sizes at 0: one row and column of B", 5, 5, 0.0, {},
       {"A2@0,4 B1@2,4 A2@3,4", "A2@0,3 B1@2,3 A2@3,3", "B5@0,2", "A2@0,1 B1@2,1 A2@3,1", "A2@0,0 B1@2,0 A2@3,0"}},
      {"odd sizes at 0 with a pen: pen only", 5, 3, 0.0, {{"BorderWidth", 1}},
       {"A2@0,2 P1 A2@3,2", "P5", "A2@0,0 P1 A2@3,0"}},
      {"Direction 5 opens", 5, 3, 0.0, {{"Direction", 5}, {"BorderWidth", 1}},
       {"A2@0,2 P1 A2@3,2", "P5", "A2@0,0 P1 A2@3,0"}},
      // a = 4 over columns [2, 6), b = 3 over rows [1, 5): A moves out by 2 columns and 1 row.
      {"the quarters read half a bar outwards", 8, 6, 0.5, {},
       {"A2@2,4 B4@2,5 A2@4,4", "B8@0,4", "B8@0,3", "B8@0,2", "B8@0,1", "A2@2,1 B4@2,0 A2@4,1"}},
      // a = b = 7 over [3, 11); BorderWidth 1 draws 3 pixels, leaving B over [6, 8).
      {"BorderWidth 1 is a pen 3 deep", 14, 14, 0.5, {{"BorderWidth", 1}},
       {"A3@3,10 P3 B2@6,13 P3 A3@8,10", "A3@3,9 P3 B2@6,12 P3 A3@8,9", "A3@3,8 P3 B2@6,11 P3 A3@8,8",
        "P6 B2@6,10 P6", "P6 B2@6,9 P6", "P6 B2@6,8 P6", "B14@0,7", "B14@0,6", "P6 B2@6,5 P6", "P6 B2@6,4 P6",
        "P6 B2@6,3 P6", "A3@3,5 P3 B2@6,2 P3 A3@8,5", "A3@3,4 P3 B2@6,1 P3 A3@8,4",
        "A3@3,3 P3 B2@6,0 P3 A3@8,3"}},
      {"at 1: B with a pen square in each corner", 8, 8, 1.0, {{"BorderWidth", 1}},
       {"P3 B2@3,7 P3", "P3 B2@3,6 P3", "P3 B2@3,5 P3", "B8@0,4", "B8@0,3", "P3 B2@3,2 P3", "P3 B2@3,1 P3",
        "P3 B2@3,0 P3"}},
      // Closing at 0.25 opens from 0.75 with the clips exchanged: a = 6 over [1, 7), b = 4 over [1, 5).
      {"closing: a cross of A over B", 8, 6, 0.25, {{"Direction", 1}},
       {"B1@3,3 A6@1,5 B1@4,3", "A8@0,4", "A8@0,3", "A8@0,2", "A8@0,1", "B1@3,2 A6@1,0 B1@4,2"}},
      {"closing with TransType 1: the exchanges cancel", 8, 6, 0.25, {{"Direction", 1}, {"TransType", 1}},
       {"A1@3,3 B6@1,5 A1@4,3", "B8@0,4", "B8@0,3", "B8@0,2", "B8@0,1", "A1@3,2 B6@1,0 A1@4,2"}},
      // Cells of 6 x 4: a = 3 over [1, 5), b = 2 over [1, 3); column 12 and row 8 are beyond the whole cells.
      {"cells of 6 x 4", 13, 9, 0.5, {{"Divide_X", 2}, {"Divide_Y", 2}},
       {".13", "A1@1,6 B4@1,7 A1@4,6 A1@7,6 B4@7,7 A1@10,6 .1", "B12@0,6 .1", "B12@0,5 .1",
        "A1@1,5 B4@1,4 A1@4,5 A1@7,5 B4@7,4 A1@10,5 .1", "A1@1,2 B4@1,3 A1@4,2 A1@7,2 B4@7,3 A1@10,2 .1",
        "B12@0,2 .1", "B12@0,1 .1", "A1@1,1 B4@1,0 A1@4,1 A1@7,1 B4@7,0 A1@10,1 .1"}},
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

}  // namespace
}  // namespace krl::test
