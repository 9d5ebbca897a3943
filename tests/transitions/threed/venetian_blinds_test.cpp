// Venetian Blinds: the runs of A, pen and squeezed B in each blind, and the
// whole frame against the drawing written out plainly, blinds last to first,
// with the seam blur taken pixel by pixel in place.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

struct Blinds {
  int32_t vertical, n, pw, smoothing;
  double p;
};

emu::Frame RenderBlinds(const emu::Frame& a, const emu::Frame& b, const Blinds& c, uint32_t prior = kUntouched) {
  emu::Instance blinds(Library(), Effect(Library(), "Venetian Blinds"));
  blinds.SetValue("Orientation", c.vertical);
  blinds.SetValue("NumberOfBlinds", c.n);
  blinds.SetValue("BorderWidth", c.pw);
  blinds.SetValue("SmoothingFactor", c.smoothing);
  blinds.SetColor("Color", kPenFromHost);
  emu::Frame out(a.width, a.height, prior);
  EXPECT_EQ(blinds.Render(a, b, out, c.p), 1);
  return out;
}

TEST(VenetianBlinds, EachBlindShowsAThenThePenThenSqueezedB) {
  const emu::Frame a = Coded(30, 40, kTagA), b = Coded(30, 40, kTagB);
  const struct {
    const char* what;
    Blinds blinds;
    const char* line;  // column 7 from the bottom, or row 7 from the left
  } cases[] = {
      {"start, no pen: A alone", {0, 4, 0, 0, 0.0}, "A40"},
      {"d = 5 of 10 rows", {0, 4, 2, 0, 0.5}, "A3 P2 B5 A3 P2 B5 A3 P2 B5 A3 P2 B5"},
      {"the pen beyond A's part starts at the blind's first row", {0, 4, 8, 0, 0.5}, "P5 B5 P5 B5 P5 B5 P5 B5"},
      {"end: B, the pen clipped away", {0, 4, 3, 0, 1.0}, "B40"},
      {"down the picture: B, pen, A from each blind's left", {1, 3, 2, 0, 0.5}, "B5 P2 A3 B5 P2 A3 B5 P2 A3"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderBlinds(a, b, c.blinds);
    EXPECT_EQ(c.blinds.vertical ? RowRuns(out, 7) : ColumnRuns(out, 7), c.line) << c.what;
  }
  // At the end every row y shows B's row y + 1, the top row its own.
  const emu::Frame end = RenderBlinds(a, b, {0, 4, 3, 0, 1.0});
  for (int32_t y = 0; y < 40; ++y) EXPECT_EQ(end.At(7, y), Code(kTagB, 7, std::min(y + 1, 39))) << y;
}

// The drawing as described, one pixel at a time (Progress within 0..1).
emu::Frame Plainly(const emu::Frame& a, const emu::Frame& b, const Blinds& c, uint32_t prior) {
  emu::Frame out(a.width, a.height, prior);
  const int32_t W = a.width, H = a.height, L = c.vertical ? W : H;
  const int32_t box = c.smoothing == 1 ? 5 : c.smoothing == 2 ? 9 : c.smoothing == 3 ? 13 : 0, h = box / 2;
  const double size = static_cast<double>(L) / c.n, t = c.p;
  const int32_t d = static_cast<int32_t>(t * size);
  auto put = [&](int32_t x, int32_t y, uint32_t px) {
    if (x >= 0 && x < W && y >= 0 && y < H) out.At(x, y) = px;
  };
  for (int32_t i = c.n - 1; i >= 0; --i) {
    const int32_t lo = static_cast<int32_t>(i * size), hi = i == c.n - 1 ? L : static_cast<int32_t>((i + 1) * size);
    if (!c.vertical) {
      const int32_t s = hi - d, e = std::max(s - c.pw, lo);
      // B's row is formed only where B shows (at Progress 0 it nowhere does, and 1 / t is infinite).
      auto rowOfB = [&](int32_t y) { return std::clamp(static_cast<int32_t>(lo + (y - s) * (1.0 / t)) + 1, 0, H - 1); };
      for (int32_t y = lo; y < hi; ++y) {
        for (int32_t x = 0; x < W; ++x) {
          put(x, y, y < e ? a.At(x, y) : y < s ? kPen : b.At(x, rowOfB(y)));
        }
      }
      for (int32_t y = std::max(s - h, 0); box && y < std::min(s + h, H); ++y) {
        for (int32_t x = W - 1; x >= 0; --x) out.At(x, y) = BoxMean(out, x, y, box);
      }
    } else {
      const int32_t seam = lo + d, e = std::min(seam + c.pw, hi);
      for (int32_t y = H - 1; y >= 0; --y) {
        for (int32_t x = lo; x < hi; ++x) {
          auto columnOfB = [&] { return std::clamp(static_cast<int32_t>(hi - (d - 1 - (x - lo)) / t) - 1, 0, W - 1); };
          put(x, y, x < seam ? b.At(columnOfB(), y) : x < e ? kPen : a.At(x, y));
        }
      }
      for (int32_t x = std::max(seam - h, 0); box && x < std::min(seam + h, W); ++x) {
        for (int32_t y = H - 1; y >= 0; --y) out.At(x, y) = BoxMean(out, x, y, box);
      }
    }
  }
  return out;
}

TEST(VenetianBlinds, DrawsAndBlursAsWrittenOutPlainly) {
  const emu::Frame a = emu::SampleClipA(97, 61), b = emu::SampleClipB(97, 61);
  const Blinds cases[] = {
      {0, 8, 0, 0, 0.3},   {0, 8, 3, 3, 0.5},  {0, 5, 2, 1, 0.77},  {0, 20, 10, 3, 0.9}, {0, 1, 4, 2, 0.25},
      {0, 3, 0, 3, 1.0},   {0, 8, 2, 3, 0.0},  {1, 8, 0, 3, 0.5},   {1, 7, 2, 1, 0.99},  {1, 20, 4, 3, 0.6},
      {1, 1, 10, 2, 0.33}, {1, 3, 1, 3, 1.0},  {0, 13, 1, 2, 0.61}, {1, 13, 1, 2, 0.61},
  };
  for (const Blinds& c : cases) {
    // A blind thinner than the box blurs rows of the blind drawn after it,
    // which still hold what the host left there.
    for (const uint32_t prior : {0xFF808080u, 0x00123456u}) {
      EXPECT_EQ(RenderBlinds(a, b, c, prior).pixels, Plainly(a, b, c, prior).pixels)
          << (c.vertical ? "vertical " : "horizontal ") << c.n << " blinds, pen " << c.pw << ", smoothing "
          << c.smoothing << " at " << c.p;
    }
  }
}

TEST(VenetianBlinds, AThinBlindsBlurReachesTheBlindDrawnAfterIt) {
  // 61 rows in 8 blinds of 7.6: the box of 13 around each seam reads rows of
  // the blind below it before that one is drawn.
  const emu::Frame a = emu::SampleClipA(97, 61), b = emu::SampleClipB(97, 61);
  EXPECT_NE(RenderBlinds(a, b, {0, 8, 0, 3, 0.5}, 0xFF000000).pixels,
            RenderBlinds(a, b, {0, 8, 0, 3, 0.5}, 0xFFFFFFFF).pixels);
  EXPECT_EQ(RenderBlinds(a, b, {0, 8, 0, 0, 0.5}, 0xFF000000).pixels,
            RenderBlinds(a, b, {0, 8, 0, 0, 0.5}, 0xFFFFFFFF).pixels);
}

TEST(VenetianBlinds, OddCountsPensAndProgressStayInside) {
  const emu::Frame a = emu::SampleClipA(23, 17), b = emu::SampleClipB(23, 17);
  for (const int32_t vertical : {0, 1}) {
    for (const int32_t n : {0, -3, 1, 40, 2147483647}) {
      for (const int32_t pw : {-2147483647 - 1, -5, 0, 2147483647}) {
        for (const double p : {std::nan(""), -0.5, 0.5, 3.0, 1e300}) {
          const emu::Frame out = RenderBlinds(a, b, {vertical, n, pw, 3, p});
          if (n <= 0) {
            EXPECT_EQ(out.pixels, emu::Frame(23, 17, kUntouched).pixels) << "no blinds draw nothing";
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
