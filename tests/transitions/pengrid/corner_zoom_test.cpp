// Corner Zoom: the rectangle and its pen box for each corner, sampling from
// the rectangle's corner through 1 / p, the pen one pixel thicker than its
// field, and reads held to the picture where rounding would leave it.
#include <gtest/gtest.h>

#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(CornerZoom, GrowsOutOfItsCornerBehindAPenBox) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const RowsCase cases[] = {
      {"Zoom In at 0 is A", 4, 3, 0.0, {}, {"A4@0,2", "A4@0,1", "A4@0,0"}},
      // BorderWidth 2 draws 3 pixels: a square in the top rows.
      {"Zoom In at 0, Top Left, pen 2", 5, 4, 0.0, {{"BorderWidth", 2}},
       {"P3 A2@3,3", "P3 A2@3,2", "P3 A2@3,1", "A5@0,0"}},
      {"Zoom In at 1 is B, the pen clipped", 4, 3, 1.0, {{"BorderWidth", 3}, {"Corner", 3}},
       {"B4@0,2", "B4@0,1", "B4@0,0"}},
      {"Zoom Out at 0 is A", 4, 3, 0.0, {{"ZoomType", 1}, {"BorderWidth", 2}}, {"A4@0,2", "A4@0,1", "A4@0,0"}},
      {"Zoom Out at 1, Bottom Left, pen 1", 4, 3, 1.0, {{"ZoomType", 1}, {"BorderWidth", 1}, {"Corner", 2}},
       {"B4@0,2", "P2 B2@2,1", "P2 B2@2,0"}},
      {"Bottom Left half way reads (2x, 2y)", 8, 4, 0.5, {{"Corner", 2}},
       {"A8@0,3", "A8@0,2", "B1@0,2 B1@2,2 B1@4,2 B1@6,2 A4@4,1", "B1@0,0 B1@2,0 B1@4,0 B1@6,0 A4@4,0"}},
      // Rows [3, 6) and columns [4, 8), read from the rectangle's corner (4, 3).
      {"Top Right, pen 1 is two pixels", 8, 6, 0.5, {{"Corner", 1}, {"BorderWidth", 1}},
       {"A2@0,5 P2 B1@0,4 B1@2,4 B1@4,4 B1@6,4", "A2@0,4 P2 B1@0,2 B1@2,2 B1@4,2 B1@6,2",
        "A2@0,3 P2 B1@0,0 B1@2,0 B1@4,0 B1@6,0", "A2@0,2 P6", "A2@0,1 P6", "A8@0,0"}},
      {"Bottom Right, pen 1", 6, 6, 0.5, {{"Corner", 3}, {"BorderWidth", 1}},
       {"A6@0,5", "A1@0,4 P5", "A1@0,3 P5", "A1@0,2 P2 B1@0,4 B1@2,4 B1@4,4", "A1@0,1 P2 B1@0,2 B1@2,2 B1@4,2",
        "A1@0,0 P2 B1@0,0 B1@2,0 B1@4,0"}},
      {"Corner 7 is Top Left, a negative pen none", 4, 4, 0.5, {{"Corner", 7}, {"BorderWidth", -5}},
       {"B1@0,2 B1@2,2 A2@2,3", "B1@0,0 B1@2,0 A2@2,2", "A4@0,1", "A4@0,0"}},
      // (1 - 0.2) x 5 is just below 4: the rectangle starts at column 3, and
      // its second column, 1 x 5, would read column 5; it reads B's last.
      {"a read past B's last column takes its last", 5, 2, 0.2, {{"Corner", 1}}, {"A3@0,1 B1@0,0 B1@4,0", "A5@0,0"}},
      {"NaN Progress is the start", 3, 2, nan, {{"ZoomType", 1}}, {"A3@0,1", "A3@0,0"}},
      {"a huge pen covers all but the picture", 4, 4, 0.5, {{"BorderWidth", INT32_MAX}},
       {"B1@0,2 B1@2,2 P2", "B1@0,0 B1@2,0 P2", "P4", "P4"}},
  };
  ExpectRows("Corner Zoom", cases, RowReadsWithRows);
}

TEST(CornerZoom, HalfWayFromTheBottomLeftOf100By80) {
  const emu::Frame out = RenderCoded("Corner Zoom", 100, 80, 0.5, {{"Corner", 2}});
  for (int32_t y = 0; y < 80; ++y) {
    for (int32_t x = 0; x < 100; ++x) {
      const bool zoomed = y < 40 && x < 50;
      ASSERT_EQ(out.At(x, y), zoomed ? Code(kTagB, 2 * x, 2 * y) : Code(kTagA, x, y)) << x << "," << y;
    }
  }
}

}  // namespace
}  // namespace krl::test
