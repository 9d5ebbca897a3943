// Chess Wipe: the board coming in over the first half of the sweep and B
// over the second, in four directions with their own vertical phases, and
// every pixel a copy of A or B from its own place.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

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
      {"Direction 9 is Left > Right", 0.25, 9, {kEven + kA, kOdd + kA, kEven + kA, kOdd + kA, kEven + kA, kOdd + kA,
                                                kEven + kA, kOdd + kA}},
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
      {"Top > Bottom in double", 0.3125 - 1e-12, 2,
       {kRowOdd, kRowEven, kRowOdd, kRowEven, kAllA, kAllA, kAllA, kAllA}},
      {"all A at 0", 0.0, 0, std::vector<std::string>(8, kAllA)},
      {"all B at 1", 1.0, 0, std::vector<std::string>(8, kAllB)},
      {"all B at 1, Bottom > Top", 1.0, 3, std::vector<std::string>(8, kAllB)},
      {"all B at 1, Right > Left", 1.0, 1, std::vector<std::string>(8, kAllB)},
      {"all B at 1, Top > Bottom", 1.0, 2, std::vector<std::string>(8, kAllB)},
      {"NaN is A", std::numeric_limits<double>::quiet_NaN(), 2, std::vector<std::string>(8, kAllA)},
      {"below 0 is A", -2.0, 1, std::vector<std::string>(8, kAllA)},
      {"far beyond 1 is B", 1e12, 3, std::vector<std::string>(8, kAllB)},
      {"beyond 1 is B", 3.0, 1, std::vector<std::string>(8, kAllB)},
  };
  for (const ChessCase& c : cases) {
    const emu::Frame out = RenderCoded("Chess Wipe", 24, 8, c.progress, {{"Direction", c.direction}});
    EXPECT_EQ(Picture(out), c.rows) << c.what;
  }
}

// 720 x 576 at 0.25: f = 8/576, d = 360; the top row starts in an A square,
// squares are 72 columns wide and the first and the cut one are halved.
TEST(ChessWipe, SquaresAreSquareOnTheSmallerSide) {
  const emu::Frame out = RenderCoded("Chess Wipe", 720, 576, 0.25);
  EXPECT_EQ(RowRuns(out, 575), "A36 B72 A72 B72 A72 B36 A360");
  EXPECT_EQ(RowRuns(out, 575 - 36), "B36 A72 B72 A72 B72 A396");
  EXPECT_EQ(ColumnRuns(out, 0), "A36 B72 A72 B72 A72 B72 A72 B72 A36");
}

}  // namespace
}  // namespace krl::test
