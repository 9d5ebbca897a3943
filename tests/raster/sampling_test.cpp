// The shared reads and blends of the geometric transitions: clamped and
// bilinear samples, 256th-weighted mixes and the edge profiles.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "raster/clamped_frame.h"
#include "raster/edge_profile.h"
#include "raster/pixel_mix.h"

namespace krl {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(FloorToInt32, RoundsDownAndHoldsTheRange) {
  const struct { double x; int32_t floor; } cases[] = {
      {2.5, 2}, {-2.5, -3}, {-3.0, -3}, {0.0, 0}, {-0.25, -1}, {1e300, INT32_MAX}, {-1e300, INT32_MIN}, {kNaN, 0}};
  for (const auto& c : cases) EXPECT_EQ(FloorToInt32(c.x), c.floor) << c.x;
}

// A 3 x 2 frame whose pixel (c, r) has bytes c*16, r*16, c + r*3, 255.
std::vector<uint32_t> SmallFrame() {
  std::vector<uint32_t> px;
  for (uint32_t r = 0; r < 2; ++r)
    for (uint32_t c = 0; c < 3; ++c) px.push_back((c * 16) | (r * 16) << 8 | (c + r * 3) << 16 | 0xFF000000u);
  return px;
}

TEST(ClampedFrame, ReadsHeldInsideTheFrameAndBilinearInTwoHundredFiftySixths) {
  const auto px = SmallFrame();
  const ClampedFrame f{px.data(), 3, 2};
  EXPECT_EQ(f.At(-5, -5), px[0]);
  EXPECT_EQ(f.At(9, 9), px[5]);
  EXPECT_EQ(f.Nearest(2.99, 0.5), px[2]);
  EXPECT_EQ(f.Nearest(-0.01, 1.0), px[3]);
  EXPECT_EQ(f.Nearest(kNaN, kNaN), px[0]);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(f.Bilinear(i % 3 + 0.5, i / 3 + 0.5), px[i]) << "at a pixel centre";
  // Halfway between columns 0 and 1 and rows 0 and 1 (fx = fy = 128): bytes
  // (0 + 16) / 2, (0 + 16) / 2 and (0 + 1 + 3 + 4) / 4.
  EXPECT_EQ(f.Bilinear(1.0, 1.0), 0xFF020808u);
  // A quarter of the way: fx = 64, q0 = 16 x 64, bytes (1024 x 256 + 32768) >> 16 = 4.
  EXPECT_EQ(f.Bilinear(0.75, 0.5) & 0xFF, 4u);
  // Past the frame the clamp repeats the edge pixel.
  EXPECT_EQ(f.Bilinear(-7.0, 40.0), px[3]);
  EXPECT_EQ(f.Bilinear(kNaN, 1e300), px[3]);
}

TEST(PixelMix, EndsAreExactAndMiddlesRound) {
  const uint32_t p = 0xFF102030u, q = 0xFFF0E0D0u;
  EXPECT_EQ(Mix(p, q, 0.0), p);
  EXPECT_EQ(Mix(p, q, 1.0), q);
  EXPECT_EQ(Mix(p, q, 7.0), q);
  EXPECT_EQ(Mix(p, q, kNaN), p);
  EXPECT_EQ(Mix(p, q, 0.5), 0xFF808080u);  // (0x30 x 128 + 0xD0 x 128 + 128) >> 8 = 0x80
  EXPECT_EQ(MixWeight(0.3), 77);           // floor(76.8 + 0.5)
  EXPECT_EQ(Shade(0x80808080u, 0.5), 0x80404040u);
  EXPECT_EQ(Shade(0xFF808080u, 0.0), 0xFF000000u);
}

TEST(EdgeProfile, SidesPenAndCoverage) {
  const uint32_t p = 0xFF0000FFu, m = 0xFF00FF00u, q = 0xFFFF0000u;
  const struct { double r, t; bool aa; uint32_t expected; } cases[] = {
      {-0.5, 2, false, p}, {0.0, 2, false, m}, {1.9, 2, false, m}, {2.0, 2, false, q},
      {-0.5, 0, true, p},  {0.5, 0, true, q},  {0.0, 0, true, 0xFF800080u},  // half and half
      {0.5, 2, true, m},   {2.5, 2, true, q},  {-0.5, 2, true, p},
      {kNaN, 2, false, q}, {kNaN, 0, true, q},
  };
  for (const auto& c : cases) EXPECT_EQ(Band(p, m, q, c.r, c.t, c.aa), c.expected) << c.r << " " << c.t << " " << c.aa;
  // A pixel straddling the pen's far border: wP = 0, wQ = 64, wM = 192:
  // red (255 x 64 + 128) >> 8 = 64, green (255 x 192 + 128) >> 8 = 191.
  EXPECT_EQ(Band(p, m, q, 1.75, 2, true), 0xFF40BF00u);
  EXPECT_EQ(Edge(p, q, 0.25, true), MixWeighted(q, p, 64));
  EXPECT_EQ(Edge(p, q, 0.25, false), q);
}

}  // namespace
}  // namespace krl
