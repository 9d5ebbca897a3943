// Iris Star: the ten vertices with the star's own constants and the box
// filter run in place over each cell, checked against the scan written out
// plainly over the unfiltered picture.
#include <gtest/gtest.h>

#include <algorithm>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

TEST(IrisStar, TheFirstTipPointsToTheHigherRows) {
  // 20 x 20 at 0.25: reach max(10 / 0.951, 10 / 0.809) = 12.36, r = 3: tips at 6, valleys at 3
  // about column 10; the top tip is vertex (10, 16), the valleys beside it (11, 13) and (8, 13).
  emu::Frame out = RenderCoded("Iris Star", 20, 20, 0.25);
  // Even unfiltered, the star is made opaque: give B's pixels their tag back.
  for (int32_t y = 0; y < 20; ++y) {
    for (int32_t x = 0; x < 20; ++x) {
      if (out.At(x, y) == (Code(kTagB, x, y) | 0xFF000000)) out.At(x, y) = Code(kTagB, x, y);
    }
  }
  const struct {
    int32_t row;
    const char* runs;
  } rows[] = {{17, "A20"}, {16, "A20"}, {15, "A10 B1 A9"}, {14, "A9 B2 A9"}, {12, "A4 B11 A5"}, {0, "A20"}};
  for (const auto& r : rows) EXPECT_EQ(RowRuns(out, r.row), r.runs) << r.row;
}

// Clips with alpha 0, so that the unfiltered ("None") picture tells which
// pixels lie in the outer star (made opaque) and which in the inner one (B).
emu::Frame Transparent(emu::Frame f) {
  for (uint32_t& px : f.pixels) px &= 0x00FFFFFF;
  return f;
}

emu::Frame RenderStar(const emu::Frame& a, const emu::Frame& b, int32_t smoothing, int32_t dx, int32_t dy,
                      double p) {
  emu::Instance star(Library(), Effect(Library(), "Iris Star"));
  star.SetValue("SmoothingFactor", smoothing);
  star.SetValue("Divide_X", dx);
  star.SetValue("Divide_Y", dy);
  star.SetValue("BorderWidth", 3);
  star.SetColor("Color", kPenFromHost);
  emu::Frame out(a.width, a.height, kUntouched);
  EXPECT_EQ(star.Render(a, b, out, p), 1);
  return out;
}

TEST(IrisStar, SmoothsInPlaceCellByCellTheInnerStarTwice) {
  const emu::Frame a = Transparent(emu::SampleClipA(83, 57)), b = Transparent(emu::SampleClipB(83, 57));
  const struct {
    int32_t smoothing, k, dx, dy;
    double p;
  } cases[] = {{1, 5, 1, 1, 0.6},  {3, 13, 2, 2, 0.45}, {2, 9, 3, 1, 0.8}, {3, 13, 1, 3, 1.0},
               {1, 5, 2, 1, 0.2},  {3, 13, 4, 3, 1.0},  {2, 9, 1, 1, 0.97}};
  for (const auto& c : cases) {
    const emu::Frame plain = RenderStar(a, b, 0, c.dx, c.dy, c.p);
    // Cell by cell: the first pass (the unfiltered picture with the clips' own
    // alpha), then the scan, while later cells still hold what the host left.
    emu::Frame expected(83, 57, kUntouched);
    const int32_t cw = 83 / c.dx, ch = 57 / c.dy;
    for (int32_t i = 0; i < c.dx; ++i) {
      for (int32_t j = 0; j < c.dy; ++j) {
        for (int32_t y = j * ch; y < (j + 1) * ch; ++y) {
          for (int32_t x = i * cw; x < (i + 1) * cw; ++x) {
            const uint32_t px = plain.At(x, y);
            expected.At(x, y) = px == kPen ? px : px & 0x00FFFFFF;
          }
        }
        for (int32_t y = j * ch; y < (j + 1) * ch; ++y) {
          for (int32_t x = i * cw; x < (i + 1) * cw; ++x) {
            const uint32_t first = plain.At(x, y);
            if (first >> 24 == 0xFF) expected.At(x, y) = BoxMean(expected, x, y, c.k);
            if (first == (b.At(x, y) | 0xFF000000)) expected.At(x, y) = BoxMean(expected, x, y, c.k);
          }
        }
      }
    }
    EXPECT_EQ(RenderStar(a, b, c.smoothing, c.dx, c.dy, c.p).pixels, expected.pixels)
        << "smoothing " << c.smoothing << ", " << c.dx << "x" << c.dy << " at " << c.p;
  }
}

TEST(IrisStar, NoneOnlyMakesTheOuterStarOpaque) {
  const emu::Frame a = Transparent(emu::SampleClipA(60, 40)), b = Transparent(emu::SampleClipB(60, 40));
  for (const int32_t smoothing : {0, 4, -1}) {
    const emu::Frame out = RenderStar(a, b, smoothing, 1, 1, 0.5);
    size_t opaqueB = 0;
    for (size_t i = 0; i < out.pixels.size(); ++i) {
      const uint32_t px = out.pixels[i];
      ASSERT_TRUE(px == a.pixels[i] || px == (b.pixels[i] | 0xFF000000) || px == kPen) << i;
      opaqueB += px == (b.pixels[i] | 0xFF000000);
    }
    EXPECT_GT(opaqueB, 100u) << smoothing;
  }
}

}  // namespace
}  // namespace krl::test
