// Peel: the unpeeled A, the flat flap showing the back, the lit curl, B with
// its shadow, the see-through back, the corners and the ends.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/threed/sheet_support.h"

namespace krl::test {
namespace {

constexpr uint32_t kGrey = 0xFFC8C8C8;  // 200, 200, 200

TEST(Peel, ShowsEachLayerWhereTheFoldPutsIt) {
  // 100 x 80, Bottom Right, half way: D = 128.06, R = 8.0039, F = 9.5537.
  const FieldValues plain = {{"Shadow", 0}};
  const FieldValues shadow = {{"Shadow", 1}};
  const FieldValues seeThrough = {{"Shadow", 0}, {"Transparent", 1}};
  const struct {
    const char* what;
    FieldValues values;
    bool greyB;
    int32_t x, y;
    uint32_t expected;
  } cases[] = {
      {"far from the fold: A", plain, false, 0, 79, Code(kTagA, 0, 79)},
      {"the flat flap: the back colour", plain, false, 30, 30, kBack},
      {"the flap's material would lie outside the sheet", plain, false, 20, 10, Code(kTagA, 20, 10)},
      {"the upper curl, lit by 0.9100", plain, false, 50, 40, Shaded(kBack, 233)},
      {"beyond the curl: B", plain, false, 40, 20, Code(kTagB, 40, 20)},
      {"the shadow near the curl, 0.5788", shadow, true, 40, 20, Shaded(kGrey, 148)},
      {"no shadow from 2R on", shadow, true, 99, 0, kGrey},
      {"far side without shadow", plain, false, 99, 0, Code(kTagB, 99, 0)},
      {"A seen through its own back", seeThrough, false, 30, 30, Mixed(Code(kTagA, 30, 30), Code(kTagA, 57, 8), 128)},
      {"Top Left: the mirrored flap", {{"Corner", 0}}, false, 69, 49, kBack},
  };
  for (const auto& c : cases) {
    SheetRender r{"Peel", 100, 80, 0.5, c.values};
    if (c.greyB) r.b = Filled(100, 80, kGrey);
    EXPECT_EQ(Render(r).At(c.x, c.y), c.expected) << c.what;
  }
}

TEST(Peel, EarlyOnTheLiftedCornerShowsTheLowerCurl) {
  // 100 x 80, Bottom Right, Progress 0.1: F = 64.38, and the flat flap's
  // material lies beyond the start corner wherever delta < 9.44. (90, 3) has
  // lifted (delta = 4.10): the upper curl's material lies outside the frame,
  // the lower curl's comes from (90.66, 3.37), lit by 0.9293 (a = 238).
  const emu::Frame out = Render({"Peel", 100, 80, 0.1, {{"Shadow", 0}}});
  EXPECT_EQ(out.At(90, 3), Shaded(Code(kTagA, 90, 3), 238));
  EXPECT_EQ(out.At(20, 70), Code(kTagA, 20, 70)) << "the sheet still lies here";
}

TEST(Peel, CornersBeyondTheListAreBottomRight) {
  const emu::Frame bottomRight = Render({"Peel", 100, 80, 0.37, {{"Corner", 3}}});
  for (const int32_t corner : {4, 5, -1, std::numeric_limits<int32_t>::max()}) {
    EXPECT_EQ(Render({"Peel", 100, 80, 0.37, {{"Corner", corner}}}).pixels, bottomRight.pixels) << corner;
  }
}

TEST(Peel, StartsWithAAndEndsWithB) {
  const FieldValues heavy = {{"Shadow", 1}, {"IsAntiAlias", 1}, {"Transparent", 1}};
  const struct {
    const char* what;
    double progress;
    const char* regions;
  } cases[] = {
      {"Progress 0", 0.0, "A 0..99 x 0..79 (8000)"},
      {"NaN shows A", std::numeric_limits<double>::quiet_NaN(), "A 0..99 x 0..79 (8000)"},
      {"Progress 1", 1.0, "B 0..99 x 0..79 (8000)"},
      // The fold already lies beyond the far corner.
      {"Progress 0.999", 0.999, "B 0..99 x 0..79 (8000)"},
  };
  for (const auto& c : cases) {
    for (const int32_t corner : {0, 1, 2, 3}) {
      FieldValues values = heavy;
      values.emplace_back("Corner", corner);
      const auto regions = Regions(Render({"Peel", 100, 80, c.progress, values}));
      ASSERT_EQ(regions.size(), 1u) << c.what;
      EXPECT_EQ(std::string(1, regions.begin()->first) + " " + regions.begin()->second, c.regions) << c.what;
    }
  }
}

TEST(Peel, AntiAliasingSoftensOnlyTheEdges) {
  // Away from every edge the soft render equals the hard one.
  const emu::Frame hard = Render({"Peel", 100, 80, 0.5, {{"Shadow", 0}}});
  const emu::Frame soft = Render({"Peel", 100, 80, 0.5, {{"Shadow", 0}, {"IsAntiAlias", 1}}});
  for (const auto& [x, y] : {std::pair{0, 79}, {30, 30}, {50, 40}, {40, 20}, {99, 0}}) {
    EXPECT_EQ(soft.At(x, y), hard.At(x, y)) << x << "," << y;
  }
  int differing = 0;
  for (size_t i = 0; i < hard.pixels.size(); ++i) differing += hard.pixels[i] != soft.pixels[i];
  EXPECT_GT(differing, 0);
  EXPECT_LT(differing, 800);  // a band about a pixel wide along the edges
}

}  // namespace
}  // namespace krl::test
