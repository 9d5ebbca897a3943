// Iris Round: the circle from the cell diagonal, the pen ring, and the soft
// edges, checked pixel for pixel against the rule written out plainly, the
// angle measured from the first cell's centre whatever the cell; the soft
// edges' shortcuts (bounds on the softness, the mix in double) against the
// plain rule where they decide and where they hand over.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "pen_grid_support.h"
#include "transitions/pengrid/soft_edge.h"

namespace krl::test {
namespace {

TEST(IrisRound, ACircleFromTheCellDiagonal) {
  // 10 x 10 at 0.5: rad = sqrt(200) / 4 = 3.54, so q < trunc(12.5) = 12 is inside, about (5, 5).
  EXPECT_EQ(RowsFromTop(RenderCoded("Iris Round", 10, 10, 0.5)),
            (std::vector<std::string>{"A10", "A4 B3 A3", "A3 B5 A2", "A2 B7 A1", "A2 B7 A1", "A2 B7 A1", "A3 B5 A2",
                                      "A4 B3 A3", "A10", "A10"}));
  // BorderWidth 2 as it is: ro = trunc(5.54) = 5, the pen up to q < 25.
  const emu::Frame pen = RenderCoded("Iris Round", 10, 10, 0.5, {{"BorderWidth", 2}});
  EXPECT_EQ(RowRuns(pen, 5), "A1 P1 B7 P1");
  EXPECT_EQ(RowRuns(pen, 0), "A10");
  EXPECT_EQ(RowRuns(pen, 1), "A3 P5 A2");
  // Closing at 0.5 keeps the same circle of A in B.
  EXPECT_EQ(RowRuns(RenderCoded("Iris Round", 10, 10, 0.5, {{"Direction", 1}}), 5), "B2 A7 B1");
}

uint32_t Mixed(uint32_t from, uint32_t to, float f) {
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const int p = (from >> shift) & 0xFF, q = (to >> shift) & 0xFF;
    out |= uint32_t{static_cast<uint8_t>(static_cast<int32_t>(p + (q - p) * static_cast<long double>(f)))} << shift;
  }
  return out;
}

// The plain softness: (cos + sin) / 2 of the angle from the first cell's centre.
long double PlainSoftness(int32_t centreX, int32_t centreY, int32_t x, int32_t y, int32_t cx) {
  if (x == cx) return 0.5L;
  const long double angle = std::atan(std::fabs(static_cast<long double>(centreY - y)) /
                                      std::fabs(static_cast<long double>(centreX - x)));
  return (std::cos(angle) + std::sin(angle)) * 0.5L;
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
    const long double k = PlainSoftness(p.centreX, p.centreY, p.x, p.y, p.cx);
    // Far from k the bounds decide; at k, a step from it, or where (1 - k) + e
    // lies on a midpoint between two floats, only k itself can.
    const long double distances[] = {k, std::nextafter(k, 0.0L), std::nextafter(k, 1.0L), k - 0x1p-41L, k + 0x1p-41L,
                                      k - 0x1p-30L, k + 0.01L, -0.3L, 0.9L,
                                      0.75L + 0x1p-25L - (1 - k), 0.5L - 0x1p-26L - (1 - k), -0.75L - (1 - k)};
    for (const long double e : distances) {
      EXPECT_EQ(SoftnessBounds(p.centreX, p.centreY, p.x, p.y, p.cx).Exceeds(e), e < k) << p.x << "," << p.y;
      const float plain = static_cast<float>((1 - k) + e);
      const float mix = SoftnessBounds(p.centreX, p.centreY, p.x, p.y, p.cx).Mix(e);
      EXPECT_EQ(std::memcmp(&plain, &mix, sizeof plain), 0) << p.x << "," << p.y << " mix " << mix << " for " << plain;
    }
  }
}

TEST(IrisRound, TheMixInDoubleIsTheMixInExtendedPrecision) {
  // Within 2^-21 <= |f| <= 2 in double, elsewhere in extended precision.
  const float factors[] = {0.0f,     1e-30f,    0x1.8p-50f, -0x1.8p-50f, 0x1.fffffep-22f, -0x1.fffffep-22f,
                           0x1p-21f, -0x1p-21f, 0.3f,       0.5f,        0.99999994f,     -0.7f,
                           1.0f,     2.0f,      2.5f,       1e6f};
  std::srand(11);
  for (const float f : factors) {
    for (int i = 0; i < 200; ++i) {
      const uint32_t from = static_cast<uint32_t>(std::rand()) << 16 ^ static_cast<uint32_t>(std::rand());
      const uint32_t to = static_cast<uint32_t>(std::rand()) << 16 ^ static_cast<uint32_t>(std::rand());
      ASSERT_EQ(EdgeBlend(from, to, f), Mixed(from, to, f)) << f << " " << from << " " << to;
    }
  }
}

// The soft rule pixel by pixel, for one frame of whole cells.
emu::Frame SoftReference(const emu::Frame& a, const emu::Frame& b, int32_t dx, int32_t dy, int32_t t, bool close,
                         double p, uint32_t pen) {
  const int32_t cw = a.width / dx, ch = a.height / dy, hx = cw >> 1, hy = ch >> 1;
  const float diagonal = static_cast<float>(std::sqrt(static_cast<long double>(cw * cw + ch * ch)));
  float d = static_cast<float>(p * static_cast<long double>(diagonal));
  if (close) d = static_cast<float>(static_cast<long double>(diagonal) - d);
  const float rad = d * 0.5f;
  const int64_t r2 = static_cast<int64_t>(static_cast<long double>(rad) * rad);
  const int64_t ro = static_cast<int32_t>(t + static_cast<long double>(rad)), ro2 = ro * ro;
  emu::Frame out(a.width, a.height, kUntouched);
  for (int32_t i = 0; i < dx; ++i) {
    for (int32_t j = 0; j < dy; ++j) {
      for (int32_t y = j * ch; y < (j + 1) * ch; ++y) {
        for (int32_t x = i * cw; x < (i + 1) * cw; ++x) {
          const uint32_t in = close ? a.At(x, y) : b.At(x, y), outside = close ? b.At(x, y) : a.At(x, y);
          const int64_t ux = i * cw + hx - x, uy = j * ch + hy - y, q = ux * ux + uy * uy;
          const long double dist = std::sqrt(static_cast<long double>(q));
          const long double angle = std::atan(std::fabs(static_cast<long double>(hy - y)) /
                                              std::fabs(static_cast<long double>(hx - x)));
          const long double k = x == i * cw + hx ? 0.5L : (std::cos(angle) + std::sin(angle)) * 0.5L;
          auto f = [&](long double e) { return static_cast<float>((1 - k) + e); };
          uint32_t& px = out.At(x, y);
          if (q < r2) {
            const long double e = rad - dist;
            px = e < k ? Mixed(t == 0 ? outside : pen, in, f(e)) : in;
          } else if (q >= ro2) {
            const long double e = (dist - rad) - t;
            px = e < k ? Mixed(t == 0 ? in : pen, outside, f(e)) : outside;
          } else {
            const long double e = dist - rad;
            if (e < k) {
              px = Mixed(in, t == 0 ? outside : pen, f(e));
            } else if (t - e < k) {
              px = Mixed(outside, t == 0 ? in : pen, f(t - e));
            } else {
              px = pen;
            }
          }
        }
      }
    }
  }
  return out;
}

TEST(IrisRound, SoftEdgesFollowTheRulePixelForPixel) {
  const emu::Frame a = emu::SampleClipA(97, 61), b = emu::SampleClipB(97, 61);
  const struct {
    int32_t dx, dy, t;
    bool close;
    double p;
  } cases[] = {{1, 1, 0, false, 0.37}, {1, 1, 4, false, 0.5},  {2, 3, 1, false, 0.8}, {3, 2, 10, true, 0.3},
               {1, 1, 0, true, 0.05},  {4, 1, 2, false, 1.0},  {1, 1, 7, false, 0.0}, {2, 2, 3, true, 0.999}};
  for (const auto& c : cases) {
    emu::Instance round(Library(), Effect(Library(), "Iris Round"));
    round.SetValue("Anti-Aliasing", 1);
    round.SetValue("Divide_X", c.dx);
    round.SetValue("Divide_Y", c.dy);
    round.SetValue("BorderWidth", c.t);
    round.SetValue("Direction", c.close ? 1 : 0);
    round.SetColor("Color", kPenFromHost);
    emu::Frame out(97, 61, kUntouched);
    ASSERT_EQ(round.Render(a, b, out, c.p), 1);
    const emu::Frame expected = SoftReference(a, b, c.dx, c.dy, c.t, c.close, c.p, kPen);
    size_t differing = 0;
    for (size_t i = 0; i < out.pixels.size(); ++i) differing += out.pixels[i] != expected.pixels[i];
    EXPECT_EQ(differing, 0u) << c.dx << "x" << c.dy << " t " << c.t << " close " << c.close << " at " << c.p;
  }
}

}  // namespace
}  // namespace krl::test
