// Roll: which columns (rows) show B, the roll and the flat A; which sheet
// column each layer of the roll shows and how it is lit; the see-through
// layers; the four directions.
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "transitions/threed/sheet_support.h"

namespace krl::test {
namespace {

constexpr uint32_t kTopOfRoll = 256, kAtHalfRadius = 239;  // shade 1 and 0.9330

TEST(Roll, RollsAUpAndUncoversB) {
  const struct {
    const char* what;
    double progress;
    int32_t direction;
    const char* row;  // the same on every row
  } cases[] = {
      // R = 10, c = 65.5: column 55 (delta = R) is behind the roll, 75 (delta = -R) ahead of it.
      {"half way", 0.5, 0, "B56 *19 A45"},
      {"Right > Left mirrors it", 0.5, 1, "A45 *19 B56"},
      // c = 32.75: ahead of the contact line less than half a turn is wound, the front still bare.
      {"a quarter of the way", 0.25, 0, "B23 *11 A86"},
      {"Direction 7 is Left > Right", 0.25, 7, "B23 *11 A86"},
      {"Progress 0", 0.0, 0, "A120"},
      {"Progress 1", 1.0, 0, "B120"},
      {"NaN shows A", std::numeric_limits<double>::quiet_NaN(), 0, "A120"},
      {"beyond the end", 3.0, 0, "B120"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = Render({"Roll", 120, 80, c.progress, {{"Direction", c.direction}}});
    for (const int32_t y : {0, 37, 79}) EXPECT_EQ(KindRuns(out, y), c.row) << c.what << ", row " << y;
  }
}

TEST(Roll, WrapsAsColumnsRoundTheRoll) {
  const struct {
    const char* what;
    int32_t direction, transparent, x;
    std::function<uint32_t(int32_t y)> expected;
  } cases[] = {
      // delta = 0: the top of the roll shows m = 65.5 - 10 pi = 34.08, unshaded.
      {"top of the roll", 0, 0, 65, [](int32_t y) { return Code(kTagA, 34, y); }},
      {"behind the top", 0, 0, 60, [](int32_t y) { return Shaded(Code(kTagA, 39, y), kAtHalfRadius); }},
      {"front of the roll", 0, 0, 70, [](int32_t y) { return Shaded(Code(kTagA, 28, y), kAtHalfRadius); }},
      // Right > Left: column W - 1 - x shows the sheet column W - 1 - m.
      {"mirrored top", 1, 0, 54, [](int32_t y) { return Code(kTagA, 85, y); }},
      {"mirrored front", 1, 0, 49, [](int32_t y) { return Shaded(Code(kTagA, 91, y), kAtHalfRadius); }},
      // Both layers at half strength over B: B shows at a quarter.
      {"see-through top", 0, 1, 65,
       [](int32_t y) { return Mixed(Mixed(Code(kTagB, 65, y), Code(kTagA, 65, y), 128), Code(kTagA, 34, y), 128); }},
      {"see-through front over A", 0, 1, 70,
       [](int32_t y) { return Mixed(Code(kTagA, 70, y), Shaded(Code(kTagA, 28, y), kAtHalfRadius), 128); }},
  };
  for (const auto& c : cases) {
    const emu::Frame out = Render({"Roll", 120, 80, 0.5, {{"Direction", c.direction}, {"Transparent", c.transparent}}});
    for (const int32_t y : {0, 41, 79}) EXPECT_EQ(out.At(c.x, y), c.expected(y)) << c.what << ", row " << y;
  }
}

TEST(Roll, VerticalTravelRollsRows) {
  // H = 120 so that the rows repeat the columns' numbers: R = 10, c = 65.5.
  const emu::Frame fromTop = Render({"Roll", 40, 120, 0.5, {{"Direction", 2}}});
  const emu::Frame fromBottom = Render({"Roll", 40, 120, 0.5, {{"Direction", 3}}});
  for (const int32_t x : {0, 17, 39}) {
    EXPECT_EQ(KindRuns(fromTop, x, false), "A45 *19 B56");
    EXPECT_EQ(KindRuns(fromBottom, x, false), "B56 *19 A45");
    EXPECT_EQ(fromTop.At(x, 54), Code(kTagA, x, 85));  // the top of the roll, read in the pixel's own column
    EXPECT_EQ(fromBottom.At(x, 65), Code(kTagA, x, 34));
    EXPECT_EQ(fromBottom.At(x, 60), Shaded(Code(kTagA, x, 39), kAtHalfRadius));
  }
  EXPECT_EQ(fromBottom.At(3, 40), Code(kTagB, 3, 40));
}

TEST(Roll, DrawsEveryPixelOfTinyFrames) {
  for (const auto& [w, h] : {std::pair{1, 1}, {2, 5}, {5, 2}, {11, 3}, {23, 23}}) {
    for (const int32_t direction : {0, 1, 2, 3}) {
      for (const double p : {1e-9, 0.3, 0.5, 0.97}) {
        const emu::Frame out = Render({"Roll", w, h, p, {{"Direction", direction}, {"Transparent", 1}}});
        for (int32_t y = 0; y < h; ++y) {
          for (int32_t x = 0; x < w; ++x) ASSERT_NE(Kind(out, x, y), '.') << w << "x" << h << " at " << p;
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
