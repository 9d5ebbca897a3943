// Band Push, Band Slide and Band Wipe: band bounds from the extended band
// size with the last band ending at the frame's edge, parity by band index
// (empty bands included), and the three copy rules.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

// The reads of every line across the bands: rows for horizontal bands,
// columns (from row 0 up) for vertical ones.
std::string LineReads(const emu::Frame& out, bool vertical, int32_t line) {
  return vertical ? ColumnReads(out, line) : RowReads(out, line);
}

struct CopyCase {
  const char* effect;
  int32_t w, h;
  double progress;
  FieldValues values;
  const char* parity;  // of the band holding each line, from line 0: 'e' even, 'o' odd
  const char* even;     // the reads of a line in an even band
  const char* odd;
};

TEST(Bands, CopyEachBandByItsRuleAndItsIndexParity) {
  const CopyCase cases[] = {
      // 10 x 0.3 in extended precision lies just below 3 (in double it would be
      // 3): the shift is 2. Even rows: B enters at the right; odd ones at the left.
      {"Band Push", 10, 4, 0.3, {{"BandCount", 2}}, "eeoo", "A8@2 B2@0", "B2@8 A8@0"},
      {"Band Slide", 10, 4, 0.3, {{"BandCount", 2}}, "eeoo", "A8@0 B2@0", "B2@8 A8@2"},
      {"Band Wipe", 10, 4, 0.3, {{"BandCount", 2}}, "eeoo", "A8@0 B2@8", "B2@0 A8@2"},
      // Even columns: B enters at row 0; odd ones at the top.
      {"Band Push", 4, 10, 0.3, {{"BandCount", 2}, {"Direction", 1}}, "eeoo", "B2@8 A8@0", "A8@2 B2@0"},
      {"Band Slide", 4, 10, 0.3, {{"BandCount", 2}, {"Direction", 1}}, "eeoo", "B2@8 A8@2", "A8@0 B2@0"},
      {"Band Wipe", 4, 10, 0.3, {{"BandCount", 2}, {"Direction", 1}}, "eeoo", "B2@0 A8@2", "A8@0 B2@8"},
      // 3 rows, 5 bands of 0.6: bands 0 and 2 are empty, rows 0..2 lie in bands 1, 3 and 4.
      {"Band Push", 10, 3, 0.3, {{"BandCount", 5}}, "ooe", "A8@2 B2@0", "B2@8 A8@0"},
      {"Band Wipe", 3, 10, 0.3, {{"BandCount", 5}, {"Direction", 1}}, "ooe", "B2@0 A8@2", "A8@0 B2@8"},
      // 2^31 - 1 bands on 2 rows: band 1073741823 ends at row 1, the last band holds row 1.
      {"Band Slide", 10, 2, 0.3, {{"BandCount", INT32_MAX}}, "oe", "A8@0 B2@0", "B2@8 A8@2"},
      {"Band Slide", 10, 3, 0.3, {{"BandCount", 1}}, "eee", "A8@0 B2@0", "B2@8 A8@2"},
      {"Band Push", 10, 4, 0.3, {{"BandCount", 2}, {"Direction", 5}}, "eeoo", "A8@2 B2@0", "B2@8 A8@0"},
      {"Band Push", 10, 4, 0.3, {{"BandCount", 2}, {"Direction", -1}}, "eeoo", "A8@2 B2@0", "B2@8 A8@0"},
      // Both ends, and a Progress outside 0..1: A or B in place.
      {"Band Push", 10, 4, 0.0, {{"BandCount", 2}}, "eeoo", "A10@0", "A10@0"},
      {"Band Push", 10, 4, 1.0, {{"BandCount", 2}}, "eeoo", "B10@0", "B10@0"},
      {"Band Slide", 4, 10, 1.0, {{"BandCount", 2}, {"Direction", 1}}, "eeoo", "B10@0", "B10@0"},
      {"Band Wipe", 10, 4, 1.0, {{"BandCount", 2}}, "eeoo", "B10@0", "B10@0"},
      {"Band Push", 10, 4, -0.5, {{"BandCount", 2}}, "eeoo", "A10@0", "A10@0"},
      {"Band Push", 10, 4, 1e300, {{"BandCount", 2}}, "eeoo", "B10@0", "B10@0"},
      {"Band Slide", 4, 10, std::numeric_limits<double>::quiet_NaN(), {{"BandCount", 2}, {"Direction", 1}}, "eeoo",
       "A10@0", "A10@0"},
      {"Band Wipe", 10, 4, std::numeric_limits<double>::infinity(), {{"BandCount", 2}}, "eeoo", "B10@0", "B10@0"},
  };
  for (const CopyCase& c : cases) {
    const emu::Frame out = RenderCoded(c.effect, c.w, c.h, c.progress, c.values);
    const bool vertical = c.h > c.w;  // the cases cut their shorter side into bands
    for (int32_t line = 0; line < (vertical ? c.w : c.h); ++line) {
      ASSERT_EQ(LineReads(out, vertical, line), c.parity[line] == 'e' ? c.even : c.odd)
          << c.effect << " " << c.w << "x" << c.h << " at " << c.progress << ", line " << line;
    }
  }
}

// 100 lines in 7 bands: q = 100/7 puts the band starts at 0, 14, 28, 42, 57,
// 71 and 85, and the last band runs to line 99.
TEST(Bands, StartAtTheTruncatedMultiplesOfTheExtendedBandSize) {
  const int32_t starts[] = {0, 14, 28, 42, 57, 71, 85, 100};
  for (const bool vertical : {false, true}) {
    const emu::Frame out = RenderCoded("Band Wipe", vertical ? 100 : 4, vertical ? 4 : 100, 0.5,
                                       {{"Direction", vertical ? 1 : 0}});
    for (int k = 0; k < 7; ++k) {
      const bool entersLow = (k % 2 == 1) != vertical;
      for (int32_t line = starts[k]; line < starts[k + 1]; ++line) {
        const std::string runs = vertical ? ColumnRuns(out, line) : RowRuns(out, line);
        ASSERT_EQ(runs, entersLow ? "B2 A2" : "A2 B2") << "band " << k << ", line " << line;
      }
    }
  }
}

TEST(Bands, NoBandsLeaveTheOutputAsItWas) {
  for (const int32_t count : {0, -5, INT32_MIN}) {
    for (const char* effect : {"Band Push", "Band Slide", "Band Wipe"}) {
      const emu::Frame out = RenderCoded(effect, 6, 3, 0.5, {{"BandCount", count}});
      for (int32_t y = 0; y < 3; ++y) ASSERT_EQ(RowRuns(out, y), ".6") << effect << " " << count;
    }
  }
}

TEST(Bands, ImageTwoFirstPushesBAway) {
  const emu::Frame out = RenderCoded("Band Push", 10, 2, 0.3, {{"BandCount", 2}, {"TransType", 1}});
  EXPECT_EQ(RowRuns(out, 0), "B8 A2");
  EXPECT_EQ(RowRuns(out, 1), "A2 B8");
}

}  // namespace
}  // namespace krl::test

namespace krl::test {
namespace {

// Any size, field value and Progress: every pixel is A, B or untouched, and
// (under the sanitizers) nothing is read or written outside the frames.
TEST(BandFamily, StaysInsideTheFramesForAnyValue) {
  const int32_t values[] = {INT32_MIN, -1, 0, 1, 2, 3, 4, 7, INT32_MAX};
  const double progresses[] = {std::nan(""), -1.0, 0.0, 0.37, 1.0, 2.0, 1e300};
  const struct {
    const char* effect;
    const char* fields[2];
  } effects[] = {{"Band Push", {"Direction", "BandCount"}}, {"Band Slide", {"Direction", "BandCount"}},
                 {"Band Wipe", {"Direction", "BandCount"}}, {"Chess Wipe", {"Direction", "Direction"}},
                 {"Builder", {"Divide_X", "Divide_Y"}}};
  for (const auto& e : effects) {
    for (const auto& [w, h] : {std::pair{1, 1}, {1, 9}, {9, 1}, {5, 3}}) {
      for (const int32_t v : values) {
        for (const double p : progresses) {
          const emu::Frame out = RenderCoded(e.effect, w, h, p, {{e.fields[0], v}, {e.fields[1], v}});
          for (const uint32_t px : out.pixels) ASSERT_NE(SourceOf(px), '?') << e.effect << " " << v << " " << p;
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
