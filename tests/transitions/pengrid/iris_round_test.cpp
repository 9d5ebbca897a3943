// Iris Round: the circle from the cell diagonal, the pen ring, and the soft
// edges, checked pixel for pixel against the rule written out plainly, the
// angle measured from the first cell's centre whatever the cell.
#include <gtest/gtest.h>

#include <cmath>

#include "pen_grid_support.h"

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
