// Builder: ceil tile sizes, courses of ceil(th / 10) rows laid left to right
// and right to left in turn, the built length rounded to single precision,
// up from each tile's bottom or down from its top.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {
namespace {

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
      // 100 x 100 at 0.5: F = 500, course 6 holds nothing yet.
      {"five courses of ten rows", 100, 100, 0.5, {}, Join({Repeat(50, "A100"), Repeat(50, "B100")})},
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
      {"more tiles than columns", 3, 1, 1.0, {{"Divide_X", INT32_MAX}}, {"B3"}},
      {"all A at 0", 6, 3, 0.0, {{"Divide_X", 2}}, Repeat(3, "A6")},
      {"all B at 1", 6, 3, 1.0, {{"Divide_X", 2}, {"Direction", 1}}, Repeat(3, "B6")},
      {"NaN is A", 6, 3, nan, {}, Repeat(3, "A6")},
      {"below 0 is A", 6, 3, -1.0, {}, Repeat(3, "A6")},
      {"beyond 1 is B", 6, 3, 1e30, {}, Repeat(3, "B6")},
      // Nothing is built for other directions or for divisions below 1.
      {"Direction 2", 6, 3, 0.5, {{"Direction", 2}}, Repeat(3, ".6")},
      {"Direction -1", 6, 3, 0.5, {{"Direction", -1}}, Repeat(3, ".6")},
      {"Divide_X 0", 6, 3, 0.5, {{"Divide_X", 0}}, Repeat(3, ".6")},
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

// 720 x 576 in 7 x 1 tiles: cw = 103, the last tile 102 wide; courses of 58
// rows, the tenth 54. At 0.95 F = 978 (969 in the last tile): the tenth
// course, from the right, holds 51 columns.
TEST(Builder, TheTenthCourseIsShorter) {
  const emu::Frame out = RenderCoded("Builder", 720, 576, 0.95, {{"Divide_X", 7}});
  for (int32_t y = 0; y < 576; ++y) {
    ASSERT_EQ(RowRuns(out, y), y < 522 ? "B720"
                                       : "A52 B51 A52 B51 A52 B51 A52 B51 A52 B51 A52 B51 A51 B51")
        << "row " << y;
  }
}

}  // namespace
}  // namespace krl::test
