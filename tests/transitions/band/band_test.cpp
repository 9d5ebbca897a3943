// The wipes in place. Band Push, Band Slide and Band Wipe: band bounds from
// the extended band size with the last band ending at the frame's edge,
// parity by band index (empty bands included), and the three copy rules.
// Builder: ceil tile sizes, courses of ceil(th / 10) rows laid left to right
// and right to left in turn, the built length rounded to single precision,
// up from each tile's bottom or down from its top. Chess Wipe: the board
// coming in over the first half of the sweep and B over the second, in four
// directions with their own vertical phases. Last, these, Swap and Rotation
// stay inside the frames for any field value and Progress.
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
      // 2^31 - 1 bands on 2 rows: band 1073741823 ends at row 1, the last band holds row 1.
      {"Band Slide", 10, 2, 0.3, {{"BandCount", INT32_MAX}}, "oe", "A8@0 B2@0", "B2@8 A8@2"},
      {"Band Push", 10, 4, 0.3, {{"BandCount", 2}, {"Direction", -1}}, "eeoo", "A8@2 B2@0", "B2@8 A8@0"},
      // No bands leave the output as it was.
      {"Band Push", 10, 3, 0.5, {{"BandCount", 0}}, "eee", ".10", ".10"},
      {"Band Wipe", 3, 10, 0.5, {{"BandCount", INT32_MIN}, {"Direction", 1}}, "eee", ".10", ".10"},
      // Both ends, and a Progress outside 0..1: A or B in place.
      {"Band Push", 10, 4, 0.0, {{"BandCount", 2}}, "eeoo", "A10@0", "A10@0"},
      {"Band Slide", 4, 10, 1.0, {{"BandCount", 2}, {"Direction", 1}}, "eeoo", "B10@0", "B10@0"},
      {"Band Push", 10, 4, 1e300, {{"BandCount", 2}}, "eeoo", "B10@0", "B10@0"},
      {"Band Slide", 4, 10, std::numeric_limits<double>::quiet_NaN(), {{"BandCount", 2}, {"Direction", 1}}, "eeoo",
       "A10@0", "A10@0"},
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

struct BuildCase {
  const char* what;
  int32_t w, h;
  double progress;
  FieldValues values;
  std::vector<std::string> rows;  // the runs of every row, from the top
};

std::vector<std::string> Repeat(int n, const std::string& row) { return std::vector<std::string>(n, row); }

std::vector<std::string> Join(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& p : parts) all.insert(all.end(), p.begin(), p.end());
  return all;
}

TEST(Builder, LaysCoursesInAlternatingDirections) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const BuildCase cases[] = {
      // One 10 x 10 tile: courses of one row, L = 100.
      {"third course from the left", 10, 10, 0.25, {}, Join({Repeat(7, "A10"), {"B5 A5"}, Repeat(2, "B10")})},
      {"fourth course from the right", 10, 10, 0.35, {}, Join({Repeat(6, "A10"), {"A5 B5"}, Repeat(3, "B10")})},
      {"built down from the top", 10, 10, 0.35, {{"Direction", 1}},
       Join({Repeat(3, "B10"), {"A5 B5"}, Repeat(6, "A10")})},
      // 100 x 0.2499999999 rounds to 25 in single precision (24 in double).
      {"single-precision length", 10, 10, 0.25 - 1e-10, {}, Join({Repeat(7, "A10"), {"B5 A5"}, Repeat(2, "B10")})},
      // 2 x 2 tiles of 5 x 5, L = 25, F = 12: two courses and two columns of the third.
      {"every tile alike", 10, 10, 0.5, {{"Divide_X", 2}, {"Divide_Y", 2}},
       Join({Repeat(2, "A10"), {"B2 A3 B2 A3"}, Repeat(2, "B10"), Repeat(2, "A10"), {"B2 A3 B2 A3"},
             Repeat(2, "B10")})},
      // ch = ceil(10 / 3) = 4: tiles of 4, 4 and 2 rows, the short one at the bottom ...
      {"the short tile at the bottom", 3, 10, 0.5, {{"Divide_Y", 3}},
       Join({Repeat(2, "A3"), Repeat(2, "B3"), Repeat(2, "A3"), Repeat(2, "B3"), {"A3", "B3"}})},
      // ... and at the top when built down.
      {"the short tile at the top", 3, 10, 0.5, {{"Divide_Y", 3}, {"Direction", 1}},
       Join({{"B3", "A3"}, Repeat(2, "B3"), Repeat(2, "A3"), Repeat(2, "B3"), Repeat(2, "A3")})},
      // cw = ceil(10 / 4) = 3: tiles at 0, 3, 6 and 9, the last one column wide (F = 0).
      {"the narrow last tile", 10, 1, 0.5, {{"Divide_X", 4}}, {"B1 A2 B1 A2 B1 A3"}},
      // H = 10, Divide_Y 8: ch = 2, the tiles starting at rows 10, 12 and 14 hold nothing.
      {"tiles beyond the frame", 1, 10, 1.0, {{"Divide_Y", 8}}, Repeat(10, "B1")},
      {"all B at 1", 6, 3, 1.0, {{"Divide_X", 2}, {"Direction", 1}}, Repeat(3, "B6")},
      {"NaN is A", 6, 3, nan, {}, Repeat(3, "A6")},
      {"beyond 1 is B", 6, 3, 1e30, {}, Repeat(3, "B6")},
      // Nothing is built for other directions or for divisions below 1.
      {"Direction 2", 6, 3, 0.5, {{"Direction", 2}}, Repeat(3, ".6")},
      {"Divide_Y negative", 6, 3, 0.5, {{"Divide_Y", -3}}, Repeat(3, ".6")},
  };
  for (const BuildCase& c : cases) {
    const emu::Frame out = RenderCoded("Builder", c.w, c.h, c.progress, c.values);
    EXPECT_EQ(RowsFromTop(out), c.rows) << c.what;
    for (int32_t y = 0; y < out.height; ++y) {
      for (int32_t x = 0; x < out.width; ++x) {
        if (SourceOf(out.At(x, y)) != '.') {
          ASSERT_EQ(out.At(x, y) & 0xFFFFFF, Code(0, x, y)) << c.what << ": read in place";
        }
      }
    }
  }
}

// Every pixel of a 24 x 8 frame, whose board squares are one pixel (f = 1):
// the rows from the top, one letter a pixel.
std::vector<std::string> Picture(const emu::Frame& out) {
  std::vector<std::string> rows;
  for (int32_t y = out.height - 1; y >= 0; --y) {
    std::string row;
    for (int32_t x = 0; x < out.width; ++x) {
      const uint32_t px = out.At(x, y);
      row += SourceOf(px);
      EXPECT_EQ(px & 0xFFFFFF, Code(0, x, y)) << "read in place, pixel " << x << "," << y;
    }
    rows.push_back(row);
  }
  return rows;
}

const std::string kA(12, 'A'), kB(12, 'B'), kEven = "ABABABABABAB", kOdd = "BABABABABABA";
const std::string kAllA(24, 'A'), kAllB(24, 'B'), kRowEven = kEven + kEven, kRowOdd = kOdd + kOdd;

struct ChessCase {
  const char* what;
  double progress;
  int32_t direction;
  std::vector<std::string> rows;  // from the top
};

TEST(ChessWipe, SweepsTheBoardInThenBOver) {
  const ChessCase cases[] = {
      // Left > Right: d = 48p; the board's rows counted from the top (v = 0 at the top).
      {"board in, first half", 0.25, 0, {kEven + kA, kOdd + kA, kEven + kA, kOdd + kA, kEven + kA, kOdd + kA,
                                         kEven + kA, kOdd + kA}},
      {"B over, second half", 0.75, 0, {kB + kEven, kB + kOdd, kB + kEven, kB + kOdd, kB + kEven, kB + kOdd,
                                        kB + kEven, kB + kOdd}},
      {"Right > Left, first half", 0.25, 1, {kA + kEven, kA + kOdd, kA + kEven, kA + kOdd, kA + kEven, kA + kOdd,
                                             kA + kEven, kA + kOdd}},
      {"Right > Left, second half", 0.75, 1, {kEven + kB, kOdd + kB, kEven + kB, kOdd + kB, kEven + kB, kOdd + kB,
                                              kEven + kB, kOdd + kB}},
      // Top > Bottom: d = 16p; first half v = m (row 7 odd), second half v = e - 1 - m.
      {"Top > Bottom, first half", 0.25, 2, {kRowOdd, kRowEven, kRowOdd, kRowEven, kAllA, kAllA, kAllA, kAllA}},
      {"Top > Bottom, second half", 0.75, 2, {kAllB, kAllB, kAllB, kAllB, kRowEven, kRowOdd, kRowEven, kRowOdd}},
      // The phase jumps at the midpoint: row 7 is odd just before it, even at it.
      {"Top > Bottom, just before the middle", 0.49, 2,
       {kRowOdd, kRowEven, kRowOdd, kRowEven, kRowOdd, kRowEven, kRowOdd, kAllA}},
      {"Top > Bottom, the middle", 0.5, 2,
       {kRowEven, kRowOdd, kRowEven, kRowOdd, kRowEven, kRowOdd, kRowEven, kRowOdd}},
      // Bottom > Top: first half v = e - 1 - m, second half v = H - 1 - (m - e).
      {"Bottom > Top, first half", 0.25, 3, {kAllA, kAllA, kAllA, kAllA, kRowEven, kRowOdd, kRowEven, kRowOdd}},
      {"Bottom > Top, second half", 0.75, 3, {kRowEven, kRowOdd, kRowEven, kRowOdd, kAllB, kAllB, kAllB, kAllB}},
      // 16 x 0.3125 lies just below 5 in double but is 5 in single precision.
      {"Bottom > Top in single precision", 0.3125 - 1e-12, 3,
       {kAllA, kAllA, kAllA, kRowEven, kRowOdd, kRowEven, kRowOdd, kRowEven}},
      {"all A at 0", 0.0, 0, std::vector<std::string>(8, kAllA)},
      {"all B at 1, Bottom > Top", 1.0, 3, std::vector<std::string>(8, kAllB)},
      {"NaN is A", std::numeric_limits<double>::quiet_NaN(), 2, std::vector<std::string>(8, kAllA)},
      {"far beyond 1 is B", 1e12, 1, std::vector<std::string>(8, kAllB)},
  };
  for (const ChessCase& c : cases) {
    const emu::Frame out = RenderCoded("Chess Wipe", 24, 8, c.progress, {{"Direction", c.direction}});
    EXPECT_EQ(Picture(out), c.rows) << c.what;
  }
}

// Any size, field value and Progress: every pixel is untouched or A or B read
// from inside the frame, and (under the sanitizers) nothing is read or
// written outside the frames.
TEST(BandFamily, StaysInsideTheFramesForAnyValue) {
  const int32_t values[] = {INT32_MIN, -1, 0, 1, 3, INT32_MAX};
  const double progresses[] = {std::nan(""), -1.0, 1e-9, 0.37, 0.999999999, 1.0, 1.5, 1e300};
  const struct {
    const char* effect;
    const char* fields[2];
  } effects[] = {{"Band Push", {"Direction", "BandCount"}}, {"Band Slide", {"Direction", "BandCount"}},
                 {"Band Wipe", {"Direction", "BandCount"}}, {"Chess Wipe", {"Direction", "Direction"}},
                 {"Builder", {"Divide_X", "Divide_Y"}}, {"Swap", {"Direction", "Divide_X"}},
                 {"Rotation", {"Direction", "Direction"}}};
  for (const auto& e : effects) {
    for (const auto& [w, h] : {std::pair{1, 1}, {1, 9}, {9, 1}, {5, 3}}) {
      for (const int32_t v : values) {
        for (const double p : progresses) {
          const emu::Frame out = RenderCoded(e.effect, w, h, p, {{e.fields[0], v}, {e.fields[1], v}});
          for (const uint32_t px : out.pixels) {
            ASSERT_NE(SourceOf(px), '?') << e.effect << " " << v << " " << p;
            if (px != kUntouched) {
              ASSERT_TRUE(CodedX(px) < w && CodedY(px) < h) << e.effect << " " << v << " " << p;
            }
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
