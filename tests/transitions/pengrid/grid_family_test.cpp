// What the pen-grid members that draw whole cells only share: whatever the
// values, every whole cell is drawn and the columns and rows beyond them are
// never written; Progress beyond an end draws as that end, NaN as the start;
// divisions below one, or beyond the frame, draw nothing; and the opening
// shapes open for any Direction but 1.
#include <gtest/gtest.h>

#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

class WholeCellMember : public testing::TestWithParam<std::string> {};

TEST_P(WholeCellMember, OddValuesDrawEveryWholeCellAndNothingBeyond) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (const double progress : {nan, inf, -inf, -2.0, 7.0, 0.37}) {
    for (const int32_t width : {INT32_MIN, -7, 11, INT32_MAX}) {
      for (const int32_t direction : {0, 1, -1}) {
        const FieldValues values = {{"BorderWidth", width}, {"Divide_X", 3}, {"Divide_Y", 2}, {"Direction", direction}};
        const emu::Frame out = RenderCoded(GetParam(), 41, 31, progress, values);
        // 41 / 3 and 31 / 2 leave columns 39..40 and row 30 beyond the whole cells.
        for (int32_t y = 0; y < 31; ++y) {
          for (int32_t x = 0; x < 41; ++x) {
            ASSERT_EQ(out.At(x, y) == kUntouched, x >= 39 || y == 30)
                << x << "," << y << " at " << progress << ", pen " << width << ", Direction " << direction;
          }
        }
      }
    }
  }
}

TEST_P(WholeCellMember, ProgressBeyondTheEndsDrawsTheEnds) {
  const FieldValues values = {{"BorderWidth", 2}, {"Divide_X", 2}};
  const std::vector<uint32_t> start = RenderCoded(GetParam(), 30, 20, 0.0, values).pixels;
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, std::numeric_limits<double>::quiet_NaN(), values).pixels, start);
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, -2.0, values).pixels, start);
  EXPECT_EQ(RenderCoded(GetParam(), 30, 20, 7.0, values).pixels, RenderCoded(GetParam(), 30, 20, 1.0, values).pixels);
}

TEST_P(WholeCellMember, DivisionsBelowOneOrLargerThanTheFrameDrawNothing) {
  for (const int32_t division : {0, -3, INT32_MIN, INT32_MAX, 41}) {
    for (const char* key : {"Divide_X", "Divide_Y"}) {
      const emu::Frame out = RenderCoded(GetParam(), 40, 30, 0.5, {{key, division}});
      EXPECT_EQ(out.pixels, emu::Frame(40, 30, kUntouched).pixels) << key << " " << division;
    }
  }
}

TEST_P(WholeCellMember, AnyDirectionButOneOpens) {
  if (GetParam() == "Inset" || GetParam() == "Sliding Doors") GTEST_SKIP() << "its Direction is a corner or an axis";
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

INSTANTIATE_TEST_SUITE_P(Grid, WholeCellMember,
                         testing::Values("Cross Split", "Sliding Doors", "Inset", "Iris Cross", "Iris Diamond",
                                         "Iris Round", "Iris Squared", "Iris Star"),
                         NameOfMember);

}  // namespace
}  // namespace krl::test
