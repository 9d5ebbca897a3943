// Iris Diamond: the reach from the cell's quarters over 0.71, the diamond
// through the even-odd rule (lower rows a pixel wider than upper ones), the
// corners that keep A even when fully open.
#include <gtest/gtest.h>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(IrisDiamond, ADiamondAboutTheCellCentre) {
  // 10 x 10: reach sqrt((25 + 25) / 0.71) = 8.39, so r = 8 at 1 about (5, 5).
  const RowsCase cases[] = {
      {"fully open, the corners keep A", 10, 10, 1.0, {},
       {"A1 B8 A1", "B10", "B10", "B10", "B10", "B10", "B10", "B10", "A1 B8 A1", "A2 B6 A2"}},
      {"the pen fills the corners", 10, 10, 1.0, {{"BorderWidth", 1}},
       {"P1 B8 P1", "B10", "B10", "B10", "B10", "B10", "B10", "B10", "P1 B8 P1", "P2 B6 P2"}},
      {"closed at 0", 10, 10, 0.0, {{"Direction", 1}},
       {"B1 A8 B1", "A10", "A10", "A10", "A10", "A10", "A10", "A10", "B1 A8 B1", "B2 A6 B2"}},
      // r = trunc(8.39 x 0.25) = 2 about (5, 5): the tips at rows 3 and 7 are empty.
      {"a small diamond", 10, 10, 0.25, {},
       {"A10", "A10", "A10", "A4 B2 A4", "A3 B4 A3", "A4 B2 A4", "A10", "A10", "A10", "A10"}},
      {"nothing at 0", 6, 4, 0.0, {{"BorderWidth", 0}}, {"A6", "A6", "A6", "A6"}},
  };
  ExpectRows("Iris Diamond", cases);
}

}  // namespace
}  // namespace krl::test
