// Origami Unfold: where the packet and each flap lie in every phase, what a
// flap shows (B in perspective or the back colour, lit by how steeply it
// stands), the soft packet edge and the ends.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/threed/sheet_support.h"

namespace krl::test {
namespace {

TEST(OrigamiUnfold, UnfoldsInThreePhases) {
  const struct {
    const char* what;
    double progress;
    std::map<char, std::string> regions;  // '*' marks the flaps showing B shaded or the shaded back
  } cases[] = {
      {"Progress 0", 0.0, {{'A', "0..99 x 0..79 (8000)"}}},
      // g = 0.5: columns 37 and 62 have their centres exactly on the packet's edge.
      {"the packet grows", 0.1, {{'A', "0..99 x 0..79 (7480)"}, {'K', "37..62 x 30..49 (520)"}}},
      {"the side flaps lie folded, backs up", 0.2, {{'A', "0..99 x 0..79 (6000)"}, {'K', "25..74 x 20..59 (2000)"}}},
      // Upright flaps in perspective: strips in columns 21..24 and 75..78, taller outside.
      {"the side flaps stand upright", 0.4,
       {{'*', "21..78 x 17..62 (344)"}, {'A', "0..99 x 0..79 (5656)"}, {'B', "25..74 x 20..59 (2000)"}}},
      {"the band lies open", 0.6, {{'A', "0..99 x 0..79 (4000)"}, {'B', "0..99 x 20..59 (4000)"}}},
      {"the end flaps tilted back by 45 degrees", 0.8,
       {{'*', "0..99 x 8..71 (2320)"}, {'A', "0..99 x 0..79 (1680)"}, {'B', "0..99 x 20..59 (4000)"}}},
      {"Progress 1", 1.0, {{'B', "0..99 x 0..79 (8000)"}}},
      {"NaN shows A", std::numeric_limits<double>::quiet_NaN(), {{'A', "0..99 x 0..79 (8000)"}}},
  };
  for (const auto& c : cases) EXPECT_EQ(Regions(Render({"Origami Unfold", 100, 80, c.progress})), c.regions) << c.what;
}

TEST(OrigamiUnfold, FlapsShowBInPerspectiveOrTheirBack) {
  constexpr uint32_t kUpright = 154, kAt45Degrees = 226;  // shade 0.6 and 0.8828
  const struct {
    const char* what;
    double progress;
    int32_t x, y;
    uint32_t expected;
  } cases[] = {
      // Dc = 200. Column 24: rho = 3.92, B's column floor(25 - rho) = 21.
      {"upright, beside the hinge", 0.4, 24, 40, Shaded(Code(kTagB, 21, 40), kUpright)},
      {"upright, the free edge", 0.4, 21, 40, Shaded(Code(kTagB, 0, 40), kUpright)},
      {"upright, the free edge taller than the band", 0.4, 21, 17, Shaded(Code(kTagB, 0, 20), kUpright)},
      {"the right flap mirrors the left", 0.4, 78, 40, Shaded(Code(kTagB, 99, 40), kUpright)},
      {"rising, seen from behind", 0.3, 30, 40, Shaded(kBack, kAt45Degrees)},
      // Row 70: rho = 17.52, B's row floor(60 + rho) = 77; widened by dz / Dc = 1.062.
      {"the top flap", 0.8, 50, 70, Shaded(Code(kTagB, 50, 77), kAt45Degrees)},
      {"the top flap's far corner", 0.8, 3, 70, Shaded(Code(kTagB, 0, 77), kAt45Degrees)},
      {"the bottom flap mirrors the top", 0.8, 50, 9, Shaded(Code(kTagB, 50, 2), kAt45Degrees)},
      {"beside the far corner: A", 0.8, 2, 70, Code(kTagA, 2, 70)},
  };
  for (const auto& c : cases) EXPECT_EQ(Render({"Origami Unfold", 100, 80, c.progress}).At(c.x, c.y), c.expected) << c.what;
}

TEST(OrigamiUnfold, AntiAliasingBlendsAcrossTheEdge) {
  const emu::Frame out = Render({"Origami Unfold", 100, 80, 0.1, {{"IsAntiAlias", 1}}});
  // The packet's side edges pass through the centres of columns 37 and 62: half and half.
  EXPECT_EQ(KindRuns(out, 40), "A37 *1 K24 *1 A37");
  EXPECT_EQ(out.At(37, 40), Mixed(Code(kTagA, 37, 40), kBack, 128));
  // Its top and bottom edges lie on pixel borders: no blend.
  EXPECT_EQ(KindRuns(out, 30), "A37 *1 K24 *1 A37");
  EXPECT_EQ(KindRuns(out, 29), "A100");
}

TEST(OrigamiUnfold, DrawsEveryPixelOfAnyFrame) {
  for (const auto& [w, h] : {std::pair{1, 1}, {2, 7}, {7, 2}, {13, 5}, {300, 3}}) {
    for (const double p : {1e-9, 0.15, 0.2, 0.35, 0.5, 0.6, 0.75, 0.999}) {
      for (const int32_t aa : {0, 1}) {
        const emu::Frame out = Render({"Origami Unfold", w, h, p, {{"IsAntiAlias", aa}}});
        for (int32_t y = 0; y < h; ++y) {
          for (int32_t x = 0; x < w; ++x) ASSERT_NE(Kind(out, x, y), '.') << w << "x" << h << " at " << p;
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
