// What Cross Split and Sliding Doors share through their door spans: any
// value outside the declared ranges draws from the clips and the pen only,
// inside the frame, and Progress beyond the ends draws as the end itself.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

class DoorMember : public testing::TestWithParam<std::string> {};

TEST_P(DoorMember, OutOfRangeValuesDrawOnlyClipsAndPen) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (const double progress : {nan, inf, -inf, -2.0, 7.0, 0.37}) {
    for (const int32_t width : {INT32_MIN, -7, 11, INT32_MAX}) {
      for (const int32_t direction : {0, 1, -1}) {
        const FieldValues values = {{"BorderWidth", width}, {"Divide_X", 3}, {"Divide_Y", 2}, {"Direction", direction}};
        const emu::Frame out = RenderCoded(GetParam(), 41, 31, progress, values);
        // 41 / 3 and 31 / 2 leave column 39..40 and row 30 beyond the whole cells.
        for (int32_t y = 0; y < 30; ++y) {
          const std::string runs = RowRuns(out, y);
          ASSERT_EQ(runs.find_first_of("?."), runs.size() - 2) << runs << " at " << progress << " " << width;
        }
      }
    }
  }
}

TEST_P(DoorMember, ProgressBeyondTheEndsDrawsTheEnds) {
  const FieldValues values = {{"BorderWidth", 2}, {"Divide_X", 2}};
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, -2.0, values).pixels, RenderCoded(GetParam(), 30, 20, 0.0, values).pixels);
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, 7.0, values).pixels, RenderCoded(GetParam(), 30, 20, 1.0, values).pixels);
}

TEST_P(DoorMember, DivisionsBelowOneOrLargerThanTheFrameDrawNothing) {
  for (const int32_t division : {0, -3, INT32_MIN, INT32_MAX, 41}) {
    const emu::Frame out = RenderCoded(GetParam(), 40, 30, 0.5, {{"Divide_X", division}});
    EXPECT_EQ(RowRuns(out, 0), ".40") << division;
  }
}

INSTANTIATE_TEST_SUITE_P(Doors, DoorMember, testing::Values("Cross Split", "Sliding Doors"), NameOfMember);

}  // namespace
}  // namespace krl::test
