// Iris Squared: a rectangle from the nominal cell's half-sizes, half-open as
// the polygon rule makes it, the pen outside its edge.
#include <gtest/gtest.h>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(IrisSquared, ARectangleAroundTheCellCentre) {
  const RowsCase cases[] = {
      // a = trunc(5 x 0.5) = 2, b = 1 about (5, 3): columns [3, 7), rows [2, 4).
      {"opening", 10, 6, 0.5, {}, {"A10", "A10", "A3 B4 A3", "A3 B4 A3", "A10", "A10"}},
      {"a pen 3 deep outside the edge", 10, 6, 0.5, {{"BorderWidth", 1}},
       {"P10", "P10", "P3 B4 P3", "P3 B4 P3", "P10", "P10"}},
      // a = trunc(5 - trunc(1.25)) = 4, b = trunc(3 - trunc(0.75)) = 3: A keeps columns [1, 9).
      {"closing", 10, 6, 0.25, {{"Direction", 1}}, {"B1 A8 B1", "B1 A8 B1", "B1 A8 B1", "B1 A8 B1", "B1 A8 B1",
                                                     "B1 A8 B1"}},
      // a = 5 - 2 = 3, b = 3 - 1 = 2: larger than the opening rectangle at 0.5.
      {"closing at 0.5", 10, 6, 0.5, {{"Direction", 1}},
       {"B10", "B2 A6 B2", "B2 A6 B2", "B2 A6 B2", "B2 A6 B2", "B10"}},
      {"open at 1, even sizes", 4, 2, 1.0, {}, {"B4", "B4"}},
      // a = trunc(2.5) = 2 about column 2: [0, 4); b = 1 about row 1: [0, 2).
      {"an odd cell never opens fully", 5, 3, 1.0, {}, {"A5", "B4 A1", "B4 A1"}},
      {"nothing at 0", 4, 2, 0.0, {}, {"A4", "A4"}},
      {"two cells of 5 x 3", 10, 3, 1.0, {{"Divide_X", 2}}, {"A10", "B4 A1 B4 A1", "B4 A1 B4 A1"}},
  };
  ExpectRows("Iris Squared", cases);
}

}  // namespace
}  // namespace krl::test
