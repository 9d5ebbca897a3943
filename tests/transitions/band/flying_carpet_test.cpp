// Flying Carpet: the plain slide from each side, a wave trough's reads from
// both horizontal sides, and the leading edge.
#include <gtest/gtest.h>

#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(FlyingCarpet, SlidesInAndRipples) {
  const struct {
    const char* what;
    double progress;
    FieldValues values;
    bool alongColumn;  // else along a row
    int32_t line;
    const char* reads;  // runs with where they read: "@column,row" along a row, "@row,column" down a column
  } cases[] = {
      {"a plain slide from the left", 0.5, {{"Amplitude", 0}}, false, 7, "B50@50,7 A50@50,7"},
      {"the trough at column 12 is 4 lower", 0.5, {{"Amplitude", 10}}, true, 12, "B76@4,62 A4@76,12"},
      {"the same from the right at column 87", 0.5, {{"Amplitude", 10}, {"Direction", 1}}, true, 87,
       "B76@4,37 A4@76,87"},
      {"a plain slide from the top: B's bottom leads", 0.25, {{"Amplitude", 0}, {"Direction", 2}}, true, 30,
       "A60@0,30 B20@0,30"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCodedClips("Flying Carpet", 100, 80, c.progress, c.values);
    EXPECT_EQ(c.alongColumn ? Reads(out, false, c.line, true) : RowReadsWithRows(out, c.line), c.reads) << c.what;
  }
}

TEST(FlyingCarpet, TheLeadingEdgeFromTheRight) {
  const emu::Frame out = RenderCodedClips("Flying Carpet", 100, 80, 0.5, {{"Amplitude", 10}, {"Direction", 1}});
  EXPECT_EQ(out.At(50, 5), Code(kTagB, 0, 5));
  EXPECT_EQ(out.At(49, 5), Code(kTagA, 49, 5));
}

}  // namespace
}  // namespace krl::test
