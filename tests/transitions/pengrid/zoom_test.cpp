// Center Zoom and Corner Zoom: the rectangle's bounds (inclusive lower bounds
// when zooming in, exclusive when zooming out), sampling from the rectangle's
// corner through 1 / t, and the pen: a ring around the centre, alone there
// when t is 0, or a box around the corner, one pixel thicker than its field;
// reads held to the picture where rounding would leave it. Zoom Out and its
// exported helper bxglVTRZoomOut, called as the host would call it (found by
// name in the loaded library): the centre, the switch from A to B above 16x,
// the running column summed in extended precision and the row formed anew
// per row.
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
      {"a huge pen covers all but the picture", 4, 4, 0.5, {{"BorderWidth", INT32_MAX}},
       {"B1@0,2 B1@2,2 P2", "B1@0,0 B1@2,0 P2", "P4", "P4"}},
  };
  ExpectRows("Corner Zoom", cases, RowReadsWithRows);
}

using ZoomOutFunction = void (*)(unsigned char*, unsigned char*, unsigned char*, int32_t, int32_t, int32_t, double);

ZoomOutFunction Helper() { return reinterpret_cast<ZoomOutFunction>(Library().Symbol("bxglVTRZoomOut")); }

emu::Frame ZoomOut(int32_t w, int32_t h, double progress, int32_t rowBytes) {
  emu::Frame a = Coded(w, h, kTagA), b = Coded(w, h, kTagB), out(w, h, kUntouched);
  Helper()(out.Bytes(), a.Bytes(), b.Bytes(), rowBytes, w, h, progress);
  return out;
}
emu::Frame ZoomOut(int32_t w, int32_t h, double progress) { return ZoomOut(w, h, progress, 4 * w); }

// Runs of one repeated pixel along row y: "A16@30,15" is 16 copies of A's (30, 15).
std::string Repeats(const emu::Frame& f, int32_t y) {
  std::string out;
  for (int32_t x = 0; x < f.width;) {
    int32_t end = x + 1;
    while (end < f.width && f.At(end, y) == f.At(x, y)) ++end;
    const uint32_t px = f.At(x, y);
    out += (out.empty() ? "" : " ") + std::string(1, SourceOf(px)) + std::to_string(end - x) + "@" +
           std::to_string(CodedX(px)) + "," + std::to_string(CodedY(px));
    x = end;
  }
  return out;
}

struct ZoomCase {
  const char* what;
  int32_t w, h;
  double progress;
  std::vector<std::pair<int32_t, std::string>> rows;  // row index, its repeats
};

TEST(ZoomOut, TheHelperMagnifiesAboutTheCentre) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const ZoomCase cases[] = {
      // z = 16: A's columns 30..33 and rows 15..16, 16 times each.
      {"half way, A at 16x", 64, 32, 0.5,
       {{15, "A16@30,15 A16@31,15 A16@32,15 A16@33,15"}, {16, "A16@30,16 A16@31,16 A16@32,16 A16@33,16"}}},
      // z = 16.3000001907 (rounded to single): B, step 1 / 15.6999998093.
      {"just past half way, B at about 16x", 64, 32, 0.51,
       {{0, "B1@29,14 B16@30,14 B15@31,14 B16@32,14 B16@33,14"},
        {16, "B1@29,16 B16@30,16 B15@31,16 B16@32,16 B16@33,16"}}},
      // The sum reaches column 3 at the centre; summed in doubles, or formed
      // anew per pixel in doubles, it stays at 2. The row, formed in doubles,
      // reads row 2 at the centre row 3.
      {"extended sums, double rows", 6, 6, 0.101, {{3, "A3@2,2 A3@3,2"}, {4, "A3@2,3 A3@3,3"}}},
      // Summed in doubles, column 2 would read 1.
      {"extended sums keep their step", 4, 2, 0.102, {{0, "A2@1,0 A2@2,0"}}},
      {"NaN Progress is 0", 2, 1, nan, {{0, "A1@0,0 A1@1,0"}}},
      {"Progress beyond 1 is 1", 2, 1, 7.0, {{0, "B1@0,0 B1@1,0"}}},
  };
  ASSERT_NE(Helper(), nullptr);
  for (const ZoomCase& c : cases) {
    const emu::Frame out = ZoomOut(c.w, c.h, c.progress);
    for (const auto& [y, repeats] : c.rows) EXPECT_EQ(Repeats(out, y), repeats) << c.what << ", row " << y;
  }
}

TEST(ZoomOut, TheRunningColumnIsNotRecomputedPerPixelNorAnewPerStripOfColumns) {
  // 514 wide at 0.265: the running sum is just below 257 at the centre
  // column and reads 256 there; cx x (1 - f) + 257 f would read 257.
  EXPECT_EQ(CodedX(ZoomOut(514, 2, 0.265).At(257, 0)), 256);
  // Half way, 4100 wide: f = 1/16 exactly and the sum starts at 2050 x 15/16,
  // so column x reads (30750 + x) / 16 in whole numbers.
  const emu::Frame out = ZoomOut(4100, 2, 0.5);
  for (int32_t x = 0; x < 4100; ++x) ASSERT_EQ(out.At(x, 1), Code(kTagA, (30750 + x) / 16, 1)) << x;
}

TEST(ZoomOut, TheHelperIgnoresRowBytesAndDrawsNothingForEmptySizes) {
  const emu::Frame expected = ZoomOut(9, 5, 0.3);
  for (const int32_t rowBytes : {0, -1, 12345}) EXPECT_EQ(ZoomOut(9, 5, 0.3, rowBytes).pixels, expected.pixels);
  for (const auto& [w, h] : {std::pair{0, 4}, {4, 0}, {-3, 4}, {INT32_MIN, INT32_MIN}}) {
    uint32_t guard[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    auto* bytes = reinterpret_cast<unsigned char*>(guard);
    Helper()(bytes, bytes, bytes, 16, w, h, 0.5);
    for (const uint32_t word : guard) EXPECT_EQ(word, kUntouched) << w << "x" << h;
  }
}

TEST(ZoomOut, TheTransitionDrawsWhatTheHelperDraws) {
  for (const double p : {0.0, 0.3, 0.5, 0.52, 1.0}) {
    EXPECT_EQ(RenderCoded("Zoom Out", 33, 21, p).pixels, ZoomOut(33, 21, p).pixels) << p;
  }
}

}  // namespace
}  // namespace krl::test
