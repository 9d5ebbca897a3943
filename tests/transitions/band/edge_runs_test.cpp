// The first and last frames of Pin Wheel, Spiral and Flying Carpet, and
// Progress outside 0..1; the search for a run from a guess.
#include <gtest/gtest.h>

#include <limits>

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

}  // namespace
}  // namespace krl::test
