// What every iris member keeps: the columns and rows beyond the whole cells
// are never written, any Direction but 1 opens, and values outside the
// declared ranges draw inside the frame without trouble.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

class IrisMember : public testing::TestWithParam<std::string> {};

TEST_P(IrisMember, NeverWritesBeyondTheWholeCells) {
  // 720 / 7 = 102 leaves columns 714..719; 13 / 4 = 3 leaves row 12.
  for (const double progress : {0.0, 0.3, 1.0}) {
    const emu::Frame out =
        RenderCoded(GetParam(), 720, 13, progress, {{"Divide_X", 7}, {"Divide_Y", 4}, {"BorderWidth", 2}});
    for (int32_t y = 0; y < 13; ++y) {
      for (int32_t x = 0; x < 720; ++x) {
        ASSERT_EQ(out.At(x, y) == kUntouched, x >= 714 || y == 12) << x << "," << y << " at " << progress;
      }
    }
  }
}

TEST_P(IrisMember, AnyDirectionButOneOpens) {
  const FieldValues values = {{"Divide_X", 2}, {"BorderWidth", 3}};
  const emu::Frame open = RenderCoded(GetParam(), 40, 30, 0.4, values);
  for (const int32_t direction : {5, -1, 2, INT32_MIN}) {
    FieldValues other = values;
    other.push_back({"Direction", direction});
    EXPECT_EQ(RenderCoded(GetParam(), 40, 30, 0.4, other).pixels, open.pixels) << direction;
  }
  FieldValues close = values;
  close.push_back({"Direction", 1});
  EXPECT_NE(RenderCoded(GetParam(), 40, 30, 0.4, close).pixels, open.pixels);
}

TEST_P(IrisMember, OutOfRangeValuesStayInTheFrame) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  // Divisions below 1, or so large that every cell is empty, draw nothing.
  for (const int32_t division : {0, -3, INT32_MIN, INT32_MAX, 41}) {
    const emu::Frame out = RenderCoded(GetParam(), 40, 30, 0.5, {{"Divide_X", division}});
    EXPECT_EQ(RowRuns(out, 0), ".40") << division;
  }
  for (const double progress : {nan, inf, -inf, -2.0, 7.0}) {
    for (const int32_t width : {INT32_MIN, -7, 11, INT32_MAX}) {
      const emu::Frame out = RenderCoded(GetParam(), 41, 31, progress,
                                         {{"BorderWidth", width}, {"Divide_X", 3}, {"Divide_Y", 2}});
      for (int32_t y = 0; y < 30; ++y) {
        ASSERT_EQ(out.At(0, y) == kUntouched, false) << progress << " " << width;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Iris, IrisMember,
                         testing::Values("Iris Cross", "Iris Diamond", "Iris Round", "Iris Squared", "Iris Star"),
                         NameOfMember);

}  // namespace
}  // namespace krl::test
