// Spiral: where A's turned and shrunk picture reads at the half and quarter
// turn, its soft border, and every pixel against the mapping worked out
// pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>

#include "raster/clamped_frame.h"
#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(Spiral, ShowsAShrunkAndTurnedAboutTheCentre) {
  const struct {
    const char* what;
    int32_t w, h;
    double progress;
    FieldValues values;
    int32_t x, y;
    uint32_t shows;
  } cases[] = {
      {"no turn, half size: first pixel", 100, 80, 0.5, {{"Turns", 0}}, 25, 20, Code(kTagA, 1, 1)},
      {"no turn, half size: last pixel", 100, 80, 0.5, {{"Turns", 0}}, 74, 59, Code(kTagA, 99, 79)},
      {"no turn, half size: centre", 100, 80, 0.5, {{"Turns", 0}}, 50, 40, Code(kTagA, 51, 41)},
      {"no turn: left of A", 100, 80, 0.5, {{"Turns", 0}}, 24, 20, Code(kTagB, 24, 20)},
      {"no turn: below A", 100, 80, 0.5, {{"Turns", 0}}, 25, 19, Code(kTagB, 25, 19)},
      {"no turn: right of A", 100, 80, 0.5, {{"Turns", 0}}, 75, 59, Code(kTagB, 75, 59)},
      {"quarter turn: the top has come right", 100, 100, 0.25, {}, 60, 50, Code(kTagA, 49, 64)},
      {"quarter turn counter-clockwise", 100, 100, 0.25, {{"Direction", 1}}, 60, 50, Code(kTagA, 50, 36)},
      {"half turn: upside down", 100, 80, 0.5, {}, 50, 40, Code(kTagA, 49, 39)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RenderCodedClips("Spiral", c.w, c.h, c.progress, c.values).At(c.x, c.y), c.shows) << c.what;
  }
}

TEST(Spiral, AntiAliasingSamplesBilinearlyAndBlendsTheBorder) {
  const emu::Frame a = Coded(100, 80, kTagA);
  const emu::Frame out = RenderCodedClips("Spiral", 100, 80, 0.5, {{"Turns", 0}, {"Anti-Aliasing", 1}});
  // (25, 20) maps to (1, 1), half a pixel inside A's border scaled by 0.5: the four pixels around it, halved.
  const ClampedFrame clip{reinterpret_cast<const PixelWord*>(a.pixels.data()), 100, 80};
  EXPECT_EQ(out.At(25, 20), clip.Bilinear(1.0, 1.0));
  EXPECT_NE(out.At(25, 20), Code(kTagA, 0, 0));
  EXPECT_EQ(out.At(24, 20), Code(kTagB, 24, 20));  // e = -0.5
}

// The mapping as written, for every pixel.
emu::Frame SpiralPixelByPixel(const emu::Frame& a, const emu::Frame& b, double p, int32_t turns, bool ccw, bool aa) {
  const int32_t w = a.width, h = a.height;
  const double theta = ccw ? -(((p * turns) * 2) * kPi) : ((p * turns) * 2) * kPi;
  const double g = 1 - p, k1 = Cos(theta) / g, k2 = Sin(theta) / g, cx = w * 0.5, cy = h * 0.5;
  const ClampedFrame clip{reinterpret_cast<const PixelWord*>(a.pixels.data()), w, h};
  emu::Frame out(w, h);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) {
      const double X = (x + 0.5) - cx, Y = (y + 0.5) - cy;
      const double u = cx + (X * k1 - Y * k2), v = cy + (X * k2 + Y * k1);
      if (aa) {
        const double e = std::min({u, w - u, v, h - v}) * g;
        out.At(x, y) = Edge(b.At(x, y), clip.Bilinear(u, v), e, true);
      } else {
        out.At(x, y) = 0 <= u && u < w && 0 <= v && v < h ? clip.Nearest(u, v) : b.At(x, y);
      }
    }
  }
  return out;
}

TEST(Spiral, EveryPixelAsMappedOneByOne) {
  // 150 x 40 spans several tiles of columns, some rows of a tile showing none of A.
  for (const auto& [w, h] : {std::pair{64, 48}, {150, 40}, {33, 47}, {1, 9}, {7, 1}, {1, 1}}) {
    for (const int32_t turns : {0, 1, 3, -2}) {
      for (const double p : {0.01, 0.3, 0.5, 0.93}) {
        for (const bool ccw : {false, true}) {
          for (const bool aa : {false, true}) {
            const emu::Frame out = RenderCodedClips("Spiral", w, h, p,
                                                    {{"Turns", turns}, {"Direction", ccw ? 1 : 0}, {"Anti-Aliasing", aa}});
            ASSERT_EQ(out.pixels, SpiralPixelByPixel(Coded(w, h, kTagA), Coded(w, h, kTagB), p, turns, ccw, aa).pixels)
                << w << "x" << h << " turns " << turns << " at " << p << (ccw ? " ccw" : "") << (aa ? " aa" : "");
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
