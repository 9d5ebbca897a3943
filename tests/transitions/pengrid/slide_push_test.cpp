// Slide and Push: B moved in by n pixels, A still (Slide) or pushed by n
// pixels, by n + t for Left > Right alone (Push); every read inside its cell.
#include <gtest/gtest.h>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

struct MoveCase {
  const char* effect;
  int32_t w, h;
  double progress;
  FieldValues values;
  const char* reads;  // of every row for horizontal travel, every column (from the bottom) for vertical
};

TEST(SlideAndPush, MoveBInAndAOutOfEveryCell) {
  const MoveCase cases[] = {
      // B's right half, the pen, then A from the cell's start: A is pushed by n + t.
      {"Push", 100, 3, 0.5, {{"BorderWidth", 4}}, "B50@50 P4 A46@0"},
      // A's columns 50..95, the pen hiding A's 96..99, then B's left half.
      {"Push", 100, 3, 0.5, {{"BorderWidth", 4}, {"Direction", 1}}, "A46@50 P4 B50@0"},
      {"Push", 20, 2, 0.5, {{"BorderWidth", 2}, {"Divide_X", 2}}, "B5@5 P2 A3@0 B5@15 P2 A3@10"},
      {"Push", 20, 2, 0.5, {{"BorderWidth", 2}, {"Divide_X", 2}, {"Direction", 1}}, "A3@5 P2 B5@0 A3@15 P2 B5@10"},
      {"Push", 20, 2, 0.5, {{"BorderWidth", 2}, {"Divide_X", 2}, {"Direction", 9}}, "B5@5 P2 A3@0 B5@15 P2 A3@10"},
      {"Push", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 2}}, "A5@4 P1 B4@0"},
      {"Push", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 3}}, "B4@6 P1 A5@1"},
      {"Push", 7, 4, 1.0, {{"BorderWidth", 10}, {"Divide_X", 2}}, "B7@0"},
      {"Push", 7, 4, 0.0, {{"BorderWidth", 2}, {"Divide_X", 2}}, "P2 A1@0 P2 A2@3"},
      {"Slide", 100, 3, 0.5, {{"Divide_X", 3}}, "B16@17 A17@16 B16@50 A17@49 B17@83 A17@83"},
      {"Slide", 100, 3, 0.5, {{"Divide_X", 3}, {"Direction", 1}}, "A17@0 B16@0 A17@33 B16@33 A17@66 B17@66"},
      {"Slide", 100, 3, 1.0, {{"BorderWidth", 4}}, "B100@0"},
      {"Slide", 100, 3, 0.0, {{"BorderWidth", 4}}, "P4 A96@4"},
      {"Slide", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 2}}, "A5@0 P1 B4@0"},
      {"Slide", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 3}}, "B4@6 P1 A5@5"},
      {"Slide", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 3}, {"Divide_Y", 2}}, "B2@3 P1 A2@3 B2@8 P1 A2@8"},
  };
  for (const MoveCase& c : cases) {
    const emu::Frame out = RenderCoded(c.effect, c.w, c.h, c.progress, c.values);
    const bool acrossColumns = c.w > c.h;  // the cases travel along their longer side
    for (int32_t line = 0; line < (acrossColumns ? c.h : c.w); ++line) {
      ASSERT_EQ(acrossColumns ? RowReads(out, line) : ColumnReads(out, line), c.reads)
          << c.effect << " " << c.w << "x" << c.h << " at " << c.progress << ", line " << line;
    }
  }
}

TEST(SlideAndPush, ImageTwoFirstMovesAIn) {
  const emu::Frame out = RenderCoded("Push", 100, 1, 0.5, {{"BorderWidth", 4}, {"TransType", 1}});
  EXPECT_EQ(RowRuns(out, 0), "A50 P4 B46");
}

}  // namespace
}  // namespace krl::test
