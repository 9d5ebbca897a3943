// Sphere: which clip, and which of its columns or rows, lands on the ball in
// each phase. The clips are coded, so every output pixel names where it was
// read; the background is the only other colour.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "emulator/digest.h"
#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

emu::Frame RenderSphere(int32_t w, int32_t h, double p, int32_t direction) {
  return RenderCoded("Sphere", w, h, p, {{"Direction", direction}});
}

// The lowest and highest source column (or row) of one clip's pixels; empty
// (lo > hi) when the clip does not show.
struct Reach {
  int32_t lo = std::numeric_limits<int32_t>::max(), hi = std::numeric_limits<int32_t>::min();
  bool operator==(const Reach&) const = default;
};
constexpr Reach kNone{};

TEST(Sphere, ThePhaseFollowsTheHorizontalTravelAndTheScrollItsDirection) {
  const struct {
    const char* what;
    int32_t w, h;
    double p;
    int32_t direction;
    bool rows;  // the reaches are of source rows, else of columns
    Reach a, b;
  } cases[] = {
      // Radius 2.1 W: a mild barrel squeeze, the corners pulled in by 3 pixels.
      {"beyond the end: B alone", 200, 150, 1.1, 0, false, kNone, {0, 199}},
      // pos = 78, Rx = 58.536: o = 19, A shifted right, the last 19 columns of B at its left.
      {"ball, Left > Right", 40, 30, 0.5, 0, false, {0, 20}, {21, 39}},
      {"ball, Right > Left", 40, 30, 0.5, 1, false, {19, 39}, {0, 18}},
      // posY = 58, Ry = 43.902: o = 14.
      {"ball, Top > Bottom", 40, 30, 0.5, 2, true, {14, 29}, {0, 13}},
      {"ball, Bottom > Top", 40, 30, 0.5, 3, true, {0, 15}, {16, 29}},
      // 20 x 80: pos = 29 <= Rx = 29.268 still curls, though posY = 119 is past Ry = 117.072.
      {"curling by pos, Top > Bottom", 20, 80, 0.3819, 2, true, {0, 79}, kNone},
      // pos = 49 <= Rx + w = 49.268 is the ball, but o = 81 passes H: B row y + 1, held to the frame.
      {"scroll past H, Top > Bottom", 20, 80, 0.634, 2, true, kNone, {1, 79}},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderSphere(c.w, c.h, c.p, c.direction);
    Reach a, b;
    for (const uint32_t px : out.pixels) {
      const char source = SourceOf(px);
      ASSERT_TRUE(source == 'A' || source == 'B' || source == 'P') << c.what;
      if (source == 'P') continue;
      Reach& r = source == 'A' ? a : b;
      const int32_t at = c.rows ? CodedY(px) : CodedX(px);
      r = {std::min(r.lo, at), std::max(r.hi, at)};
    }
    EXPECT_EQ(a, c.a) << c.what << ": A " << a.lo << ".." << a.hi;
    EXPECT_EQ(b, c.b) << c.what << ": B " << b.lo << ".." << b.hi;
    for (const auto& [x, y] : {std::pair{0, 0}, {c.w - 1, 0}, {0, c.h - 1}, {c.w - 1, c.h - 1}}) {
      EXPECT_EQ(out.At(x, y), kPen) << c.what << ": corner " << x << "," << y;
    }
  }
}

TEST(Sphere, RowsOffTheFrameAndFramesPast32767KeepTheirPixels) {
  // Where a row's places do not all lie inside the frame (a Progress outside
  // 0..1 throws its last column just past it), and on frames of 2^15 columns
  // or rows or more, each place is tested instead of going into a pixel
  // index. The frames of those cases as each place tested alone rendered them.
  const struct {
    int32_t w, h;
    double p;
    int32_t direction;
    const char* digest;
  } cases[] = {
      {97, 61, std::nan(""), 0, "7e8ce95868a1b5c5"}, {64, 47, 1e300, 2, "8064258943349965"},
      {40, 31, -1e300, 1, "172762ea811eaf4e"},      {32768, 3, 0.5, 0, "9b045ad09276ecc0"},
      {32769, 2, 0.3, 2, "58b00b435c95f9ad"},       {3, 32768, 0.5, 3, "fee91edb19f33f2e"},
      {2, 32769, 0.7, 1, "d51646ebfe1b7cf4"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(emu::DigestText(RenderSphere(c.w, c.h, c.p, c.direction)), c.digest) << c.w << "x" << c.h << " p=" << c.p;
  }
}

}  // namespace
}  // namespace krl::test
