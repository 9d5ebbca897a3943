// The turning transitions: the ends of Pin Wheel, Spiral and Flying Carpet;
// Pin Wheel's wedges of two blades at the half turn and its blade count's
// guard; where Spiral's turned and shrunk A reads; every pixel of both, soft
// borders included, against the mapping worked out pixel by pixel (their
// renders search runs of columns, checked on their own too); Rotation's
// exact-angle shortcuts, its boundary rounded half up and its mirror hinge.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "raster/clamped_frame.h"
#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "transitions/band/edge_runs.h"
#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(TurningTransitions, EndsShowAOrBWhole) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    double progress;
    uint8_t shows;
  } ends[] = {{0.0, kTagA}, {-3.0, kTagA}, {nan, kTagA}, {1.0, kTagB}, {7.5, kTagB}};
  for (const char* effect : {"Pin Wheel", "Spiral", "Flying Carpet"}) {
    for (const auto& end : ends) {
      for (const bool aa : {false, true}) {
        const emu::Frame out = RenderCodedClips(effect, 31, 20, end.progress, {{"Anti-Aliasing", aa}});
        EXPECT_EQ(out.pixels, Coded(31, 20, end.shows).pixels) << effect << " at " << end.progress;
      }
    }
  }
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

// Pin Wheel's two blades at the half turn show B in opposite quadrants;
// Spiral's A shrinks and turns about the centre.
TEST(TurningTransitions, APixelShowsWhereTheTurnHasCome) {
  const struct {
    const char* effect;
    const char* what;
    int32_t w, h, x, y;  // the frame, and the pixel looked at
    double progress;
    FieldValues values;
    uint8_t tag;
    int32_t readX, readY;
  } cases[] = {
      {"Pin Wheel", "clockwise: upper right", 100, 100, 75, 60, 0.5, {{"Blades", 2}}, kTagB, 75, 60},
      {"Pin Wheel", "clockwise: lower left", 100, 100, 10, 49, 0.5, {{"Blades", 2}}, kTagB, 10, 49},
      {"Pin Wheel", "clockwise: upper left", 100, 100, 49, 99, 0.5, {{"Blades", 2}}, kTagA, 49, 99},
      {"Pin Wheel", "counter-clockwise: upper left", 100, 100, 49, 99, 0.5, {{"Blades", 2}, {"Direction", 1}}, kTagB,
       49, 99},
      {"Pin Wheel", "counter-clockwise: lower right", 100, 100, 50, 0, 0.5, {{"Blades", 2}, {"Direction", 1}}, kTagB,
       50, 0},
      {"Pin Wheel", "counter-clockwise: upper right", 100, 100, 99, 50, 0.5, {{"Blades", 2}, {"Direction", 1}}, kTagA,
       99, 50},
      {"Spiral", "no turn, half size: first pixel", 100, 80, 25, 20, 0.5, {{"Turns", 0}}, kTagA, 1, 1},
      {"Spiral", "no turn: left of A", 100, 80, 24, 20, 0.5, {{"Turns", 0}}, kTagB, 24, 20},
      {"Spiral", "no turn: right of A", 100, 80, 75, 59, 0.5, {{"Turns", 0}}, kTagB, 75, 59},
      {"Spiral", "quarter turn: the top has come right", 100, 100, 60, 50, 0.25, {}, kTagA, 49, 64},
      {"Spiral", "quarter turn counter-clockwise", 100, 100, 60, 50, 0.25, {{"Direction", 1}}, kTagA, 50, 36},
      {"Spiral", "half turn: upside down", 100, 80, 50, 40, 0.5, {}, kTagA, 49, 39},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCodedClips(c.effect, c.w, c.h, c.progress, c.values);
    EXPECT_EQ(out.At(c.x, c.y), Code(c.tag, c.readX, c.readY)) << c.effect << ": " << c.what;
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

// Spiral's mapping as written, for every pixel.
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

using Mapping = emu::Frame (*)(const emu::Frame&, const emu::Frame&, double, int32_t, bool, bool);

TEST(TurningTransitions, EveryPixelAsWorkedOutOneByOne) {
  const struct {
    const char* effect;
    const char* countField;
    std::vector<int32_t> counts;
    Mapping mapping;
  } effects[] = {{"Pin Wheel", "Blades", {2, 3, 5, 12, 100}, WheelPixelByPixel},
                 {"Spiral", "Turns", {0, 1, 3, -2}, SpiralPixelByPixel}};
  for (const auto& e : effects) {
    // 150 x 40 spans several of Spiral's tiles of columns, some rows of a tile showing none of A.
    for (const auto& [w, h] : {std::pair{64, 48}, {150, 40}, {33, 47}, {1, 9}, {7, 1}, {1, 1}, {120, 3}}) {
      for (const int32_t n : e.counts) {
        for (const double p : {0.01, 0.3, 0.5, 0.99}) {
          for (const bool ccw : {false, true}) {
            for (const bool aa : {false, true}) {
              const emu::Frame out =
                  RenderCodedClips(e.effect, w, h, p, {{e.countField, n}, {"Direction", ccw}, {"Anti-Aliasing", aa}});
              ASSERT_EQ(out.pixels, e.mapping(Coded(w, h, kTagA), Coded(w, h, kTagB), p, n, ccw, aa).pixels)
                  << e.effect << " " << w << "x" << h << " " << e.countField << " " << n << " at " << p
                  << " ccw " << ccw << " aa " << aa;
            }
          }
        }
      }
    }
  }
}

// Spiral finds its soft samples' taps one way in frames up to 65536 pixels
// across and down and another beyond; both as worked out pixel by pixel.
TEST(TurningTransitions, SoftSamplesOfFramesEitherSideOfTheTapsLimit) {
  const struct {
    int32_t w, h;
  } sizes[] = {{3, 65536}, {3, 65537}, {65536, 3}, {65537, 4}};
  for (const auto& [w, h] : sizes) {
    for (const double p : {0.01, 0.3}) {
      const emu::Frame out = RenderCodedClips("Spiral", w, h, p, {{"Turns", 0}, {"Anti-Aliasing", 1}});
      ASSERT_EQ(out.pixels, SpiralPixelByPixel(Coded(w, h, kTagA), Coded(w, h, kTagB), p, 0, false, true).pixels)
          << w << "x" << h << " at " << p;
    }
  }
}

TEST(EdgeRuns, ASearchFromAnyGuessFindsTheSameRun) {
  // A predicate true up to (or from) a column, over ranges long and short.
  const struct {
    int32_t begin, end, change;
    bool prefix;
  } cases[] = {{0, 100, 37, true}, {0, 100, 37, false}, {0, 100, 1, true}, {0, 100, 99, false},
               {0, 100, 0, true},  {0, 100, 100, true}, {5, 6, 5, false},  {5, 7, 6, true},
               {3, 3, 3, true},    {0, 1000, 999, true}};
  for (const auto& c : cases) {
    auto holds = [&](int32_t x) { return c.prefix == (x < c.change); };
    const ColumnRange expected = HoldingRange(c.begin, c.end, holds);
    for (int32_t guess = c.begin - 2; guess <= c.end + 2; ++guess) {
      int32_t found = guess;
      const ColumnRange run = HoldingRangeFrom(c.begin, c.end, found, holds);
      EXPECT_EQ(run.begin, expected.begin) << c.change << " from " << guess;
      EXPECT_EQ(run.end, expected.end) << c.change << " from " << guess;
      // The guess becomes the column where the predicate changes (the end for none).
      if (c.begin < c.end) {
        EXPECT_EQ(found, holds(c.begin) ? run.end : run.begin) << c.change << " from " << guess;
      }
    }
  }
}

TEST(Rotation, TurnsAAwayFromItsHinge) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* what;
    double progress;
    int32_t direction;
    const char* row0;   // the sources of the bottom row
    const char* row28;  // the top row of the lower part (yb = 29 at a quarter of a turn)
    const char* row29;  // the first row of the upper part, d = 70
    const char* row99;  // the top row
  } cases[] = {
      {"Progress 0 copies A", 0.0, 0, "A100", "A100", "A100", "A100"},
      {"Progress 1 copies B", 1.0, 0, "B100", "B100", "B100", "B100"},
      // Square frame at pi / 4: the upper part's boundary is the diagonal x = d.
      {"Top Left at half way", 0.5, 0, "A44 B56", "A72 B28", "A70 B30", "B100"},
      {"Direction 5 is Top Left", 0.5, 5, "A44 B56", "A72 B28", "A70 B30", "B100"},
      // Not quite the mirror image: both round half up.
      {"Top Right at half way", 0.5, 1, "B57 A43", "B29 A71", "B30 A70", "B100"},
      {"beyond the quarter turn draws nothing", 1.2, 1, ".100", ".100", ".100", ".100"},
      {"NaN draws nothing", nan, 0, ".100", ".100", ".100", ".100"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCodedClips("Rotation", 100, 100, c.progress, {{"Direction", c.direction}});
    EXPECT_EQ(RowRuns(out, 0), c.row0) << c.what;
    EXPECT_EQ(RowRuns(out, 28), c.row28) << c.what;
    EXPECT_EQ(RowRuns(out, 29), c.row29) << c.what;
    EXPECT_EQ(RowRuns(out, 99), c.row99) << c.what;
    if (c.progress > 0.0 && c.progress < 1.0) {  // B does not move
      for (int32_t x = 0; x < 100; ++x) {
        if (SourceOf(out.At(x, 29)) == 'B') {
          ASSERT_EQ(out.At(x, 29), Code(kTagB, x, 29)) << c.what;
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
