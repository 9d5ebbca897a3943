// The pen-grid members that draw whole cells only. Cross Split: the cross of
// B from the cell's centre, the pen on the inside of its bars widened by 2,
// the quarters of A read half a bar outwards, and closing as a second
// exchange. Sliding Doors: the doors of A moving apart over B in place, the
// single rounding of the advance, the odd size whose last column (row) stays
// with the far door. Inset: B's rectangle from a corner showing the opposite
// corner of B's cell, the L-shaped pen, and the rounding that only Top Left
// does. And what they and the irises share: whatever the values, every whole
// cell is drawn and the columns and rows beyond them are never written;
// Progress beyond an end draws as that end, NaN as the start; divisions
// below one, or beyond the frame, draw nothing; and the opening shapes open
// for any Direction but 1.
#include <gtest/gtest.h>

#include <limits>

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

class WholeCellMember : public testing::TestWithParam<std::string> {};

TEST_P(WholeCellMember, OddValuesDrawEveryWholeCellAndNothingBeyond) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (const double progress : {nan, inf, -inf, -2.0, 7.0, 0.37}) {
    for (const int32_t width : {INT32_MIN, -7, 11, INT32_MAX}) {
      for (const int32_t direction : {0, 1, -1}) {
        const FieldValues values = {{"BorderWidth", width}, {"Divide_X", 3}, {"Divide_Y", 2}, {"Direction", direction}};
        const emu::Frame out = RenderCoded(GetParam(), 41, 31, progress, values);
        // 41 / 3 and 31 / 2 leave columns 39..40 and row 30 beyond the whole cells.
        for (int32_t y = 0; y < 31; ++y) {
          for (int32_t x = 0; x < 41; ++x) {
            ASSERT_EQ(out.At(x, y) == kUntouched, x >= 39 || y == 30)
                << x << "," << y << " at " << progress << ", pen " << width << ", Direction " << direction;
          }
        }
      }
    }
  }
}

TEST_P(WholeCellMember, ProgressBeyondTheEndsDrawsTheEnds) {
  const FieldValues values = {{"BorderWidth", 2}, {"Divide_X", 2}};
  const std::vector<uint32_t> start = RenderCoded(GetParam(), 30, 20, 0.0, values).pixels;
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, std::numeric_limits<double>::quiet_NaN(), values).pixels, start);
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, -2.0, values).pixels, start);
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, 7.0, values).pixels, RenderCoded(GetParam(), 30, 20, 1.0, values).pixels);
}

TEST_P(WholeCellMember, DivisionsBelowOneOrLargerThanTheFrameDrawNothing) {
  for (const int32_t division : {0, -3, INT32_MIN, INT32_MAX, 41}) {
    for (const char* key : {"Divide_X", "Divide_Y"}) {
      const emu::Frame out = RenderCoded(GetParam(), 40, 30, 0.5, {{key, division}});
      EXPECT_EQ(out.pixels, emu::Frame(40, 30, kUntouched).pixels) << key << " " << division;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Grid, WholeCellMember,
                         testing::Values("Cross Split", "Sliding Doors", "Inset", "Iris Cross", "Iris Diamond",
                                         "Iris Round", "Iris Squared", "Iris Star"),
                         NameOfMember);

TEST(OpeningShapes, AnyDirectionButOneOpens) {
  for (const char* effect : {"Cross Split", "Iris Cross", "Iris Diamond", "Iris Round", "Iris Squared", "Iris Star"}) {
    const emu::Frame open = RenderCoded(effect, 40, 30, 0.4, {{"Divide_X", 2}, {"BorderWidth", 3}});
    for (const int32_t direction : {5, -1, 2, INT32_MIN, 1}) {
      const FieldValues values = {{"Divide_X", 2}, {"BorderWidth", 3}, {"Direction", direction}};
      const bool same = RenderCoded(effect, 40, 30, 0.4, values).pixels == open.pixels;
      EXPECT_EQ(same, direction != 1) << effect << " " << direction;
    }
  }
}

}  // namespace
}  // namespace krl::test
