// Iris Cross: two bars across the whole cell, the pen on the inside of their
// edges (widened by 2), the odd-size bar at 0, and closing on A.
#include <gtest/gtest.h>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(IrisCross, BarsOpenOnBBehindAPenOnTheirInside) {
  const RowsCase cases[] = {
      // h = 5 at 0: the bar starts at 5 / 2 = 2 and ends at trunc(2.5 + 0.5) = 3.
      {"opening at 0, odd sizes", 7, 5, 0.0, {}, {"A3 B1 A3", "A3 B1 A3", "B7", "A3 B1 A3", "A3 B1 A3"}},
      {"opening at 0, even sizes", 4, 2, 0.0, {}, {"A4", "A4"}},
      {"Direction 5 opens", 7, 5, 0.0, {{"Direction", 5}}, {"A3 B1 A3", "A3 B1 A3", "B7", "A3 B1 A3", "A3 B1 A3"}},
      // a = b = 6: bars over [3, 9); BorderWidth 1 draws 3 pixels: inner [6, 6) is empty.
      {"BorderWidth 1 is a pen 3 deep", 12, 12, 0.5, {{"BorderWidth", 1}},
       {"A3 P6 A3", "A3 P6 A3", "A3 P6 A3", "P12", "P12", "P12", "P12", "P12", "P12", "A3 P6 A3", "A3 P6 A3",
        "A3 P6 A3"}},
      // a = b = 10: bars over [5, 15), inner [8, 12).
      {"a pen and an inside", 20, 20, 0.5, {{"BorderWidth", 1}},
       {"A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5",
        "P8 B4 P8", "P8 B4 P8", "P8 B4 P8", "B20", "B20", "B20", "B20", "P8 B4 P8", "P8 B4 P8", "P8 B4 P8",
        "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5"}},
      // Closing: a = 8 - trunc(8 x 0.75) = 2 and b = 1 over rows [1, 3); the inside is A, the outside B.
      {"closing", 8, 4, 0.75, {{"Direction", 1}}, {"B3 A2 B3", "A8", "A8", "B3 A2 B3"}},
      {"closed at 0", 5, 3, 0.0, {{"Direction", 1}, {"BorderWidth", 0}}, {"A5", "A5", "A5"}},
      {"open at 1", 5, 3, 1.0, {{"BorderWidth", 0}}, {"B5", "B5", "B5"}},
      // a = 1 over columns [1, 3) of each cell; b = 0 over the empty rows [1, 1).
      {"cells of 4 x 2", 8, 4, 0.25, {{"Divide_X", 2}, {"Divide_Y", 2}},
       {"A1 B2 A2 B2 A1", "A1 B2 A2 B2 A1", "A1 B2 A2 B2 A1", "A1 B2 A2 B2 A1"}},
  };
  ExpectRows("Iris Cross", cases);
}

}  // namespace
}  // namespace krl::test
