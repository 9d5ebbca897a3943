// Pin Wheel: the wedges at the quarter and half turn of two and four blades,
// the blade count's guard, and every pixel of odd and even frames against
// the wheel worked out pixel by pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(PinWheel, TwoBladesAtHalfTurnShowBInOppositeQuadrants) {
  const struct {
    const char* what;
    FieldValues values;
    char upperRight, lowerLeft, upperLeft, lowerRight;
  } cases[] = {
      {"clockwise", {}, 'B', 'B', 'A', 'A'},
      {"counter-clockwise", {{"Direction", 1}}, 'A', 'A', 'B', 'B'},
      {"anti-aliased: no centre lies within half a pixel of an edge", {{"Anti-Aliasing", 1}}, 'B', 'B', 'A', 'A'},
  };
  for (const auto& c : cases) {
    FieldValues values = c.values;
    values.push_back({"Blades", 2});
    const emu::Frame out = RenderCodedClips("Pin Wheel", 100, 100, 0.5, values);
    for (int32_t y = 0; y < 100; ++y) {
      for (int32_t x = 0; x < 100; ++x) {
        const char expected = y >= 50 ? (x >= 50 ? c.upperRight : c.upperLeft) : (x >= 50 ? c.lowerRight : c.lowerLeft);
        ASSERT_EQ(out.At(x, y), Code(expected == 'A' ? kTagA : kTagB, x, y)) << c.what << " at " << x << "," << y;
      }
    }
  }
}

TEST(PinWheel, FourBladesAtHalfTurnShowBInTheFirstHalfOfEachQuadrant) {
  const emu::Frame out = RenderCodedClips("Pin Wheel", 100, 100, 0.5);
  const struct {
    int32_t x, y;
    uint8_t tag;
  } pixels[] = {{75, 90, kTagB}, {90, 25, kTagB}, {25, 10, kTagB}, {10, 75, kTagB},
                {90, 75, kTagA}, {75, 10, kTagA}, {10, 25, kTagA}, {25, 90, kTagA}};
  for (const auto& px : pixels) EXPECT_EQ(out.At(px.x, px.y), Code(px.tag, px.x, px.y)) << px.x << "," << px.y;
}

TEST(PinWheel, BladeCountsOutsideTheRangeAreHeldAtTwoAndAt360) {
  const struct {
    int32_t blades, drawnAs;
  } cases[] = {{1, 2}, {0, 2}, {-7, 2}, {INT32_MIN, 2}, {361, 360}, {INT32_MAX, 360}};
  for (const auto& c : cases) {
    EXPECT_EQ(RenderCodedClips("Pin Wheel", 41, 30, 0.3, {{"Blades", c.blades}}).pixels,
              RenderCodedClips("Pin Wheel", 41, 30, 0.3, {{"Blades", c.drawnAs}}).pixels)
        << c.blades;
  }
}

// The wheel as written: every start ray's distance at every pixel, the first
// sector that fits, the hand, three edges.
emu::Frame WheelPixelByPixel(const emu::Frame& a, const emu::Frame& b, double p, int32_t n, bool ccw, bool aa) {
  const double delta = (2 * kPi) / n, phi = p * delta;
  std::vector<double> ux, uy, dx, dy;
  for (int32_t k = 0; k < n; ++k) {
    ux.push_back(Sin(k * delta));
    uy.push_back(Cos(k * delta));
    dx.push_back(Sin(k * delta + phi));
    dy.push_back(Cos(k * delta + phi));
  }
  emu::Frame out(a.width, a.height);
  std::vector<double> sd(n);
  for (int32_t y = 0; y < a.height; ++y) {
    for (int32_t x = 0; x < a.width; ++x) {
      const double X = ccw ? -((x + 0.5) - a.width * 0.5) : (x + 0.5) - a.width * 0.5;
      const double Y = (y + 0.5) - a.height * 0.5;
      for (int32_t k = 0; k < n; ++k) sd[k] = uy[k] * X - ux[k] * Y;
      int32_t k = 0;
      while (k < n && !(sd[k] >= 0 && sd[(k + 1) % n] < 0)) ++k;
      if (k == n) k = 0;
      const double hd = dx[k] * Y - dy[k] * X;
      const uint32_t pa = a.At(x, y), pb = b.At(x, y);
      out.At(x, y) = Edge(Edge(pa, pb, sd[k], aa), Edge(pa, pb, sd[(k + 1) % n], aa), -hd, aa);
    }
  }
  return out;
}

TEST(PinWheel, EveryPixelAsWorkedOutOneByOne) {
  for (const auto& [w, h] : {std::pair{64, 48}, {33, 47}, {1, 9}, {7, 1}, {120, 3}}) {
    for (const int32_t n : {2, 3, 5, 12, 100}) {
      for (const double p : {0.01, 0.37, 0.5, 0.99}) {
        for (const bool ccw : {false, true}) {
          for (const bool aa : {false, true}) {
            const emu::Frame out = RenderCodedClips("Pin Wheel", w, h, p,
                                                    {{"Blades", n}, {"Direction", ccw ? 1 : 0}, {"Anti-Aliasing", aa}});
            ASSERT_EQ(out.pixels, WheelPixelByPixel(Coded(w, h, kTagA), Coded(w, h, kTagB), p, n, ccw, aa).pixels)
                << w << "x" << h << " blades " << n << " at " << p << (ccw ? " ccw" : "") << (aa ? " aa" : "");
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
