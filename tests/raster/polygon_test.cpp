// The even-odd rule: the row-at-once form answers exactly as the rule for one
// pixel does, for shapes of every kind and for coordinates whose 32-bit
// products wrap.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "raster/polygon.h"

namespace krl {
namespace {

TEST(Polygon, RectangleIsHalfOpen) {
  const Vertex rect[] = {{2, 1}, {6, 1}, {6, 4}, {2, 4}};
  for (int32_t y = -1; y < 7; ++y) {
    for (int32_t x = -1; x < 9; ++x) {
      EXPECT_EQ(InsideEvenOdd(rect, x, y), x >= 2 && x < 6 && y >= 1 && y < 4) << x << "," << y;
    }
  }
}

TEST(Polygon, RowCrossingsAgreeWithThePixelRule) {
  std::srand(7);
  const auto coordinate = [](int32_t range) { return std::rand() % (2 * range + 1) - range; };
  for (int shape = 0; shape < 400; ++shape) {
    const int32_t range = shape % 4 == 0 ? 60000 : 40;  // the large ones wrap in 32 bits
    std::vector<Vertex> polygon(3 + std::rand() % 8);
    for (Vertex& v : polygon) v = {coordinate(range), coordinate(range)};
    for (int sample = 0; sample < 60; ++sample) {
      const int32_t y = coordinate(range);
      const RowCrossings row(polygon, y);
      int32_t x = coordinate(range);
      ASSERT_EQ(row.Inside(x), InsideEvenOdd(polygon, x, y)) << "shape " << shape << " at " << x << "," << y;
      // Between consecutive crossing columns the answer holds still.
      for (const int32_t c : row.Columns()) {
        ASSERT_EQ(row.Inside(c), InsideEvenOdd(polygon, c, y));
        ASSERT_EQ(row.Inside(c - 1), InsideEvenOdd(polygon, c - 1, y));
      }
    }
  }
}

TEST(Polygon, ExtremeCoordinatesWrapWithoutFault) {
  const Vertex huge[] = {{INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MIN}, {INT32_MAX, INT32_MAX}, {0, -1}};
  for (const int32_t y : {INT32_MIN, -2, -1, 0, INT32_MAX - 1}) {
    const RowCrossings row(huge, y);
    for (const int32_t x : {INT32_MIN, -1, 0, 5, INT32_MAX}) EXPECT_EQ(row.Inside(x), InsideEvenOdd(huge, x, y));
  }
}

}  // namespace
}  // namespace krl
