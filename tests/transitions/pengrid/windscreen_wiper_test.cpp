// Windscreen Wiper: the worked frames of its description on 100 x 80, and
// frames with grids, pens and anti-aliasing compared pixel for pixel with the
// rule written out plainly.
#include <gtest/gtest.h>

#include <cmath>

#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "sweep_support.h"

namespace krl::test {
namespace {

const std::string kWiper = "Windscreen Wiper";

TEST(WindscreenWiper, WholeFramesOfOneCell) {
  const PictureCase cases[] = {
      {"upright blade", 0.5, {{"BorderWidth", 3}}, [](int32_t x, int32_t) { return x < 50 ? 'B' : x < 53 ? 'P' : 'A'; }},
      {"blade lying on the left, no pen right of the pivot", 0.001, {{"BorderWidth", 4}},
       [](int32_t x, int32_t y) { return x < 50 && y < 4 ? 'P' : 'A'; }, false},
      {"two cells, from the right", 0.5, {{"Direction", 1}, {"Divide_X", 2}},
       [](int32_t x, int32_t) { return x % 50 < 25 ? 'A' : 'B'; }},
      {"Direction 9 is Left > Right", 0.5, {{"Direction", 9}}, [](int32_t x, int32_t) { return x < 50 ? 'B' : 'A'; }},
      {"first frame", 0.0, {{"BorderWidth", 4}}, [](int32_t, int32_t) { return 'A'; }},
      {"last frame", 1.0, {{"BorderWidth", 4}}, [](int32_t, int32_t) { return 'B'; }},
      {"NaN shows the first frame", NAN, {{"BorderWidth", 4}}, [](int32_t, int32_t) { return 'A'; }},
      {"no cells", 0.5, {{"Divide_Y", 0}}, [](int32_t, int32_t) { return '.'; }},
  };
  ExpectPictures(kWiper, 100, 80, cases);
}

TEST(WindscreenWiper, PixelsBesideSlantedBlades) {
  const struct {
    const char* what;
    double progress;
    int32_t direction;
    std::vector<Sample> samples;
  } cases[] = {
      {"45 degrees, up and to the left", 0.25, 0,
       {{0, 20, 'B'}, {0, 48, 'B'}, {10, 20, 'B'}, {30, 5, 'B'}, {0, 50, 'A'}, {30, 30, 'A'}, {60, 5, 'A'}}},
      {"centre to sides", 0.5, 2, {{0, 50, 'B'}, {99, 50, 'B'}, {60, 20, 'B'}, {0, 48, 'A'}, {99, 48, 'A'}, {80, 10, 'A'}}},
      {"sides to centre", 0.5, 3, {{0, 48, 'B'}, {0, 50, 'A'}, {99, 48, 'B'}, {99, 50, 'A'}}},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCoded(kWiper, 100, 80, c.progress, {{"Direction", c.direction}});
    for (const Sample& s : c.samples) EXPECT_EQ(SourceOf(out.At(s.x, s.y)), s.source) << c.what << " at " << s.x << ", " << s.y;
  }
}

// The description's pixel rule, cell by cell.
uint32_t WiperRule(const emu::Frame& a, const emu::Frame& b, int32_t x, int32_t y, const Setting& setting) {
  const int32_t direction = ValueIn(setting.values, "Direction");
  const bool two = direction == 2 || direction == 3;
  const double p = setting.progress, phi = two ? (p * kPi) * 0.5 : p * kPi, c = Cos(phi), s = Sin(phi);
  const double dx[] = {-c, c, s, c}, dy[] = {s, s, c, s}, k[] = {1, -1, 1, -1};
  const int d = direction >= 0 && direction <= 3 ? direction : 0;
  const GridCell cell = CellOf(a.width, a.height, ValueIn(setting.values, "Divide_X"),
                               ValueIn(setting.values, "Divide_Y"), x, y);
  const double px = cell.x0 + (cell.x1 - cell.x0) * 0.5;
  double X = (x + 0.5) - px;
  if (two) X = std::fabs(X);
  const double Y = (y + 0.5) - cell.y0;
  const double wd = k[d] * (dx[d] * Y - dy[d] * X);
  const double t = dx[d] * X + dy[d] * Y >= 0 ? std::max(ValueIn(setting.values, "BorderWidth"), 0) : 0;
  return Band(b.At(x, y), kPen, a.At(x, y), -wd, t, ValueIn(setting.values, "Anti-Aliasing") != 0);
}

TEST(WindscreenWiper, EveryPixelFollowsTheRule) {
  const Setting settings[] = {
      {97, 61, 0.37, {{"Anti-Aliasing", 1}, {"BorderWidth", 4}}},
      {97, 61, 0.81, {{"Direction", 1}, {"Anti-Aliasing", 1}, {"BorderWidth", 10}, {"Divide_X", 3}, {"Divide_Y", 2}}},
      {120, 45, 0.23, {{"Direction", 2}, {"Anti-Aliasing", 1}, {"BorderWidth", 2}, {"Divide_X", 2}}},
      {120, 45, 0.66, {{"Direction", 3}, {"Anti-Aliasing", 1}, {"BorderWidth", 1}, {"Divide_Y", 3}}},
      {33, 90, 0.02, {{"Direction", 3}, {"BorderWidth", 5}, {"Divide_X", 2}, {"Divide_Y", 2}}},
      {64, 64, 0.999, {{"Direction", 2}, {"Anti-Aliasing", 1}, {"BorderWidth", -3}}},
      {50, 7, 0.5, {{"Anti-Aliasing", 1}, {"BorderWidth", 3}, {"Divide_X", 60}, {"Divide_Y", 9}}},
  };
  ExpectEveryPixelFollows(kWiper, settings, WiperRule);
}

}  // namespace
}  // namespace krl::test
