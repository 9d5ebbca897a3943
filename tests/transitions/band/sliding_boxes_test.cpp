// Sliding Boxes: the box width, the total travel as a product in single
// precision, the stage and offset of the moving box, and the direction read
// through an index no statement declares, which the host answers for its
// field 0.
#include <gtest/gtest.h>

#include <algorithm>

#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(SlidingBoxes, MovesOneBoxAtATimeAtOneSpeed) {
  const RowReadsCase cases[] = {
      {"Progress 0 is A", 720, 1, 0.0, {}, 0, "A720@0,0"},
      {"720: eight boxes of 90 fill the width", 720, 1, 1.0, {}, 0, "B720@0,0"},
      {"90: boxes of 11 leave two columns of A", 90, 1, 1.0, {}, 0, "A2@0,0 B88@2,0"},
      {"100: boxes of 13, the last 9 wide on screen", 100, 1, 1.0, {}, 0, "B100@0,0"},
      // T = 43: the first box, wholly inside, its right edge at 43.
      {"the first box on its way", 100, 3, 0.1, {}, 2, "A30@0,2 B13@87,2 A57@43,2"},
      // T = 106: the second box entering, 6 columns of it shown.
      {"the second box entering", 100, 1, 0.245, {}, 0, "B6@81,0 A81@6,0 B13@87,0"},
      // float(3240) x float(1/3) is 1080; in double the product is just below it.
      {"the product in single precision", 720, 1, 1.0 / 3.0, {}, 0, "A270@0,0 B90@540,0 A270@360,0 B90@630,0"},
      {"below 4 columns the boxes are empty", 3, 1, 0.5, {}, 0, "A3@0,0"},
      {"Progress beyond 1 stops at the last stage", 100, 1, 7.0, {}, 0, "B100@0,0"},
      {"Progress below 0 is A", 100, 1, -0.5, {}, 0, "A100@0,0"},
  };
  ExpectRowReads("Sliding Boxes", cases);
}

TEST(SlidingBoxes, ReadsItsDirectionAsTheHostsFieldZero) {
  const emu::Frame a = Coded(40, 3, kTagA), b = Coded(40, 3, kTagB);
  for (const int32_t direction : {0, 1, 2, 3, 4, -1}) {
    emu::Instance boxes(Library(), Effect(Library(), "Sliding Boxes"));
    EXPECT_NE(std::find(boxes.defaultsSet().begin(), boxes.defaultsSet().end(), "SetFieldDefault(field 0, 0)"),
              boxes.defaultsSet().end());
    // The user (or another effect) has given the host's field 0 a value.
    Library().table().SetFieldDefault(const_cast<t_KrRenderInfo*>(&boxes.record()), 0, 0, direction);
    emu::Frame out(40, 3, kUntouched);
    ASSERT_EQ(boxes.Render(a, b, out, 0.5), 1);
    const bool draws = direction != 1 && direction != 2 && direction != 3;
    EXPECT_EQ(out.pixels == Filled(40, 3, kUntouched).pixels, !draws) << direction;
    EXPECT_TRUE(boxes.diagnostics().empty());
    EXPECT_EQ(boxes.fieldZeroCalls().back(), "GetFieldValue(field 0)");
  }
}

}  // namespace
}  // namespace krl::test
