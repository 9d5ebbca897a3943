// The iris shapes about each cell's centre: Iris Cross's bars with the pen
// on their inside, Iris Diamond's corners that keep A, Iris Squared's
// rectangle from the nominal half-sizes, Iris Round's circle and pen ring.
// The shortcuts of Iris Round's soft edges (bounds on the softness, the mix
// in double) against the plain rule where they decide and where they hand
// over, and Iris Star's box filter run in place over each cell, reaching
// into cells not yet drawn.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "pen_grid_support.h"
#include "transitions/pengrid/soft_edge.h"

namespace krl::test {
namespace {

// A render of one of the irises and every row it must give.
struct IrisRows {
  const char* effect;
  RowsCase c;
};

TEST(IrisShapes, OpenAboutTheCellCentre) {
  const IrisRows cases[] = {
      // h = 5 at 0: the bar starts at 5 / 2 = 2 and ends at trunc(2.5 + 0.5) = 3.
      {"Iris Cross", {"odd sizes at 0", 7, 5, 0.0, {}, {"A3 B1 A3", "A3 B1 A3", "B7", "A3 B1 A3", "A3 B1 A3"}}},
      // a = b = 10: bars over [5, 15), BorderWidth 1 draws 3 pixels: inner [8, 12).
      {"Iris Cross",
       {"a pen and an inside", 20, 20, 0.5, {{"BorderWidth", 1}},
        {"A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "P8 B4 P8",
         "P8 B4 P8", "P8 B4 P8", "B20", "B20", "B20", "B20", "P8 B4 P8", "P8 B4 P8", "P8 B4 P8", "A5 P3 B4 P3 A5",
         "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5", "A5 P3 B4 P3 A5"}}},
      // 10 x 10: reach sqrt((25 + 25) / 0.71) = 8.39, so r = 8 at 1 about (5, 5).
      {"Iris Diamond",
       {"fully open, the corners keep A", 10, 10, 1.0, {},
        {"A1 B8 A1", "B10", "B10", "B10", "B10", "B10", "B10", "B10", "A1 B8 A1", "A2 B6 A2"}}},
      // r = trunc(8.39 x 0.25) = 2 about (5, 5): the tips at rows 3 and 7 are empty.
      {"Iris Diamond",
       {"a small diamond", 10, 10, 0.25, {},
        {"A10", "A10", "A10", "A4 B2 A4", "A3 B4 A3", "A4 B2 A4", "A10", "A10", "A10", "A10"}}},
      // a = trunc(5 x 0.5) = 2, b = 1 about (5, 3): columns [3, 7), rows [2, 4).
      {"Iris Squared", {"opening", 10, 6, 0.5, {}, {"A10", "A10", "A3 B4 A3", "A3 B4 A3", "A10", "A10"}}},
      {"Iris Squared",
       {"a pen 3 deep outside the edge", 10, 6, 0.5, {{"BorderWidth", 1}},
        {"P10", "P10", "P3 B4 P3", "P3 B4 P3", "P10", "P10"}}},
      // a = 5 - 2 = 3, b = 3 - 1 = 2: larger than the opening rectangle at 0.5.
      {"Iris Squared",
       {"closing at 0.5", 10, 6, 0.5, {{"Direction", 1}},
        {"B10", "B2 A6 B2", "B2 A6 B2", "B2 A6 B2", "B2 A6 B2", "B10"}}},
      // a = trunc(2.5) = 2 about column 2: [0, 4); b = 1 about row 1: [0, 2).
      {"Iris Squared", {"an odd cell never opens fully", 5, 3, 1.0, {}, {"A5", "B4 A1", "B4 A1"}}},
      // rad = sqrt(200) / 4 = 3.54, so q < trunc(12.5) = 12 is inside, about (5, 5).
      {"Iris Round",
       {"a circle from the cell diagonal", 10, 10, 0.5, {},
        {"A10", "A4 B3 A3", "A3 B5 A2", "A2 B7 A1", "A2 B7 A1", "A2 B7 A1", "A3 B5 A2", "A4 B3 A3", "A10", "A10"}}},
      // BorderWidth 2 as it is: ro = trunc(5.54) = 5, the pen up to q < 25.
      {"Iris Round",
       {"the pen ring", 10, 10, 0.5, {{"BorderWidth", 2}},
        {"A3 P5 A2", "A2 P2 B3 P2 A1", "A1 P2 B5 P2", "A1 P1 B7 P1", "A1 P1 B7 P1", "A1 P1 B7 P1", "A1 P2 B5 P2",
         "A2 P2 B3 P2 A1", "A3 P5 A2", "A10"}}},
  };
  for (const auto& [effect, c] : cases) ExpectRows(effect, std::span(&c, 1));
}

TEST(IrisRound, SoftnessBoundsDecideAsTheSoftnessItself) {
  const struct {
    int32_t centreX, centreY, x, y, cx;
  } pixels[] = {
      {48, 30, 48, 10, 48},     // on the cell's centre column: 0.5
      {48, 30, 48, 10, 144},    // on the first centre's column in another cell
      {48, 30, 90, 30, 144},    // on the first centre's row
      {48, 30, 70, 52, 48},     // at 45 degrees, the largest k
      {48, 30, 5, 77, 48},      {320, 270, 1000, 900, 960}, {0, 0, 1, 1 << 20, 2},
      {5, 1 << 27, 9, 3, 100},  // beyond the exact squares of the bounds
  };
  for (const auto& p : pixels) {
    const long double k = ExactSoftness(p.centreX, p.centreY, p.x, p.y, p.cx);
    // Far from k the bounds decide; at k, a step from it, or where (1 - k) + e
    // lies on a midpoint between two floats, only k itself can.
    const long double distances[] = {k, std::nextafter(k, 0.0L), std::nextafter(k, 1.0L), k - 0x1p-41L, k + 0x1p-41L,
                                      k - 0x1p-30L, k + 0.01L, -0.3L, 0.9L,
                                      0.75L + 0x1p-25L - (1 - k), 0.5L - 0x1p-26L - (1 - k), -0.75L - (1 - k)};
    for (const long double e : distances) {
      EXPECT_EQ(SoftnessBounds(p.centreX, p.centreY, p.x, p.y, p.cx).Exceeds(e), e < k) << p.x << "," << p.y;
      const float plain = MixFactor(k, e), mix = SoftnessBounds(p.centreX, p.centreY, p.x, p.y, p.cx).Mix(e);
      EXPECT_EQ(std::memcmp(&plain, &mix, sizeof plain), 0) << p.x << "," << p.y << " mix " << mix << " for " << plain;
    }
  }
}

TEST(IrisRound, TheMixInDoubleIsTheMixInExtendedPrecision) {
  // Within 2^-21 <= |f| <= 2 in double, elsewhere in extended precision.
  const float factors[] = {0.0f, 0x1.8p-50f, 0x1.fffffep-22f, -0x1.fffffep-22f, 0x1p-21f, -0x1p-21f, 0.3f,
                           0.99999994f, -0.7f, 2.0f, 2.5f, 1e6f};
  std::srand(11);
  for (const float f : factors) {
    for (int i = 0; i < 200; ++i) {
      const uint32_t from = static_cast<uint32_t>(std::rand()) << 16 ^ static_cast<uint32_t>(std::rand());
      const uint32_t to = static_cast<uint32_t>(std::rand()) << 16 ^ static_cast<uint32_t>(std::rand());
      ASSERT_EQ(EdgeBlend(from, to, f), EdgeBlendExtended(from, to, f)) << f << " " << from << " " << to;
    }
  }
}

emu::Frame RenderStar(const emu::Frame& a, const emu::Frame& b, int32_t smoothing, uint32_t prior) {
  emu::Instance star(Library(), Effect(Library(), "Iris Star"));
  for (const auto& [key, value] : FieldValues{{"SmoothingFactor", smoothing}, {"Divide_X", 2}, {"Divide_Y", 2},
                                              {"BorderWidth", 3}}) {
    star.SetValue(key, value);
  }
  star.SetColor("Color", kPenFromHost);
  emu::Frame out(a.width, a.height, prior);
  EXPECT_EQ(star.Render(a, b, out, 0.5), 1);
  return out;
}

TEST(IrisStar, NoneOnlyMakesTheOuterStarOpaqueTheBoxSmoothsInPlace) {
  // Clips with alpha 0, so that the unfiltered picture tells which pixels lie
  // in the outer star (made opaque) and which in the inner one (B).
  emu::Frame a = emu::SampleClipA(82, 56), b = emu::SampleClipB(82, 56);
  for (emu::Frame* clip : {&a, &b}) {
    for (uint32_t& px : clip->pixels) px &= 0x00FFFFFF;
  }
  for (const int32_t smoothing : {0, 4, -1}) {
    const emu::Frame out = RenderStar(a, b, smoothing, 0xFF000000);
    size_t opaqueB = 0;
    for (size_t i = 0; i < out.pixels.size(); ++i) {
      const uint32_t px = out.pixels[i];
      ASSERT_TRUE(px == a.pixels[i] || px == (b.pixels[i] | 0xFF000000) || px == kPen) << i;
      opaqueB += px == (b.pixels[i] | 0xFF000000);
    }
    EXPECT_GT(opaqueB, 100u) << smoothing;
    EXPECT_EQ(RenderStar(a, b, smoothing, 0xFFFFFFFF).pixels, out.pixels) << smoothing;
  }
  // The box around a cell's star reaches into the cells drawn after it,
  // which still hold what the host left there.
  for (const int32_t smoothing : {1, 3}) {
    EXPECT_NE(RenderStar(a, b, smoothing, 0xFF000000).pixels, RenderStar(a, b, smoothing, 0xFFFFFFFF).pixels);
  }
}

}  // namespace
}  // namespace krl::test
