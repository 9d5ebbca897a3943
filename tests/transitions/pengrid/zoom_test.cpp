// Center Zoom and Corner Zoom: the rectangle's bounds (inclusive lower bounds
// when zooming in, exclusive when zooming out), sampling from the rectangle's
// corner through 1 / t, and the pen: a ring around the centre, alone there
// when t is 0, or a box around the corner, one pixel thicker than its field;
// reads held to the picture where rounding would leave it.
#include <gtest/gtest.h>

#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(CenterZoom, ShowsTheShrunkenClipInACentredRectangleInsideItsPen) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const FieldValues zoomOut = {{"ZoomType", 1}};
  const RowsCase cases[] = {
      // t = 1, but the first row and column are the surround's.
      {"Zoom Out at 0", 5, 4, 0.0, zoomOut, {"B1@0,3 A4@1,3", "B1@0,2 A4@1,2", "B1@0,1 A4@1,1", "B5@0,0"}},
      // Rectangle [2, 6) in both directions, read at (x - 2) x 2.
      {"Zoom In half way", 8, 8, 0.5, {{"BorderWidth", 1}},
       {"A8@0,7", "A1@0,6 P6 A1@7,6", "A1@0,5 P1 B1@0,6 B1@2,6 B1@4,6 B1@6,6 P1 A1@7,5",
        "A1@0,4 P1 B1@0,4 B1@2,4 B1@4,4 B1@6,4 P1 A1@7,4", "A1@0,3 P1 B1@0,2 B1@2,2 B1@4,2 B1@6,2 P1 A1@7,3",
        "A1@0,2 P1 B1@0,0 B1@2,0 B1@4,0 B1@6,0 P1 A1@7,2", "A1@0,1 P6 A1@7,1", "A8@0,0"}},
      // The same rectangle from column and row 3, still read from its corner (2, 2).
      {"Zoom Out half way", 8, 8, 0.5, {{"ZoomType", 1}, {"BorderWidth", 1}},
       {"B8@0,7", "B2@0,6 P5 B1@7,6", "B2@0,5 P1 A1@2,6 A1@4,6 A1@6,6 P1 B1@7,5",
        "B2@0,4 P1 A1@2,4 A1@4,4 A1@6,4 P1 B1@7,4", "B2@0,3 P1 A1@2,2 A1@4,2 A1@6,2 P1 B1@7,3", "B2@0,2 P5 B1@7,2",
        "B8@0,1", "B8@0,0"}},
      // y0 = trunc(1.25) = 1, y1 = 1 + trunc(2.5); x0 = trunc(1.75) = 1, x1 = 1 + trunc(3.5).
      {"odd sizes truncate", 7, 5, 0.5, {},
       {"A7@0,4", "A7@0,3", "A1@0,2 B1@0,2 B1@2,2 B1@4,2 A3@4,2", "A1@0,1 B1@0,0 B1@2,0 B1@4,0 A3@4,1", "A7@0,0"}},
      {"Zoom In at 0: a pen square around the centre", 8, 6, 0.0, {{"BorderWidth", 2}},
       {"A8@0,5", "A2@0,4 P4 A2@6,4", "A2@0,3 P4 A2@6,3", "A2@0,2 P4 A2@6,2", "A2@0,1 P4 A2@6,1", "A8@0,0"}},
      {"Zoom Out at 1: the square loses its first row and column", 8, 6, 1.0, {{"ZoomType", 1}, {"BorderWidth", 2}},
       {"B8@0,5", "B3@0,4 P3 B2@6,4", "B3@0,3 P3 B2@6,3", "B3@0,2 P3 B2@6,2", "B8@0,1", "B8@0,0"}},
      {"NaN Progress is 0", 8, 6, nan, {{"BorderWidth", 1}},
       {"A8@0,5", "A8@0,4", "A3@0,3 P2 A3@5,3", "A3@0,2 P2 A3@5,2", "A8@0,1", "A8@0,0"}},
      {"a huge pen covers the surround", 4, 4, 0.5, {{"BorderWidth", INT32_MAX}},
       {"P4", "P1 B1@0,2 B1@2,2 P1", "P1 B1@0,0 B1@2,0 P1", "P4"}},
  };
  ExpectRows("Center Zoom", cases, RowReadsWithRows);
}

TEST(CenterZoom, ARectangleWiderThanOneStripOfColumnsReadsOnFromItsCorner) {
  // 3000 columns from 500, read at trunc((x - 500) / 0.75 as 1 / t).
  const emu::Frame out = RenderCoded("Center Zoom", 4000, 2, 0.75);
  const double inv = 1.0 / 0.75;
  for (int32_t x = 500; x < 3500; ++x) {
    ASSERT_EQ(out.At(x, 0), Code(kTagB, static_cast<int32_t>((x - 500) * inv), 0)) << x;
  }
  EXPECT_EQ(RowRuns(out, 1), "A4000");
}

TEST(CornerZoom, GrowsOutOfItsCornerBehindAPenBox) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const RowsCase cases[] = {
      // BorderWidth 2 draws 3 pixels: a square in the top rows.
      {"Zoom In at 0, Top Left, pen 2", 5, 4, 0.0, {{"BorderWidth", 2}},
       {"P3 A2@3,3", "P3 A2@3,2", "P3 A2@3,1", "A5@0,0"}},
      {"Zoom Out at 1, Bottom Left, pen 1", 4, 3, 1.0, {{"ZoomType", 1}, {"BorderWidth", 1}, {"Corner", 2}},
       {"B4@0,2", "P2 B2@2,1", "P2 B2@2,0"}},
      // Rows [3, 6) and columns [4, 8), read from the rectangle's corner (4, 3).
      {"Top Right, pen 1 is two pixels", 8, 6, 0.5, {{"Corner", 1}, {"BorderWidth", 1}},
       {"A2@0,5 P2 B1@0,4 B1@2,4 B1@4,4 B1@6,4", "A2@0,4 P2 B1@0,2 B1@2,2 B1@4,2 B1@6,2",
        "A2@0,3 P2 B1@0,0 B1@2,0 B1@4,0 B1@6,0", "A2@0,2 P6", "A2@0,1 P6", "A8@0,0"}},
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

}  // namespace
}  // namespace krl::test
