// Clock: the worked frames of its description on 100 x 80 (centre (50, 40)),
// and frames with grids, pens and anti-aliasing compared pixel for pixel with
// the rule written out plainly.
#include <gtest/gtest.h>

#include "raster/edge_profile.h"
#include "raster/exact_trig.h"
#include "sweep_support.h"

namespace krl::test {
namespace {

const std::string kClock = "Clock";

TEST(Clock, WholeFrames) {
  const PictureCase cases[] = {
      {"a quarter turn from 12", 0.25, {{"BorderWidth", 2}},
       [](int32_t x, int32_t y) { return x < 50 ? 'A' : y >= 40 ? 'B' : y >= 38 ? 'P' : 'A'; }},
      {"three quarters from 12", 0.75, {{"BorderWidth", 2}},
       [](int32_t x, int32_t y) { return x >= 50 ? 'B' : y >= 42 ? 'A' : y >= 40 ? 'P' : 'B'; }},
      {"a quarter counter-clockwise from 3", 0.25, {{"BorderWidth", 2}, {"Direction", 1}, {"StartPosition", 1}},
       [](int32_t x, int32_t y) { return y < 40 ? 'A' : x >= 50 ? 'B' : x >= 48 ? 'P' : 'A'; }},
      {"half a turn", 0.5, {}, [](int32_t x, int32_t) { return x < 50 ? 'A' : 'B'; }},
      {"half a turn in four cells", 0.5, {{"Divide_X", 2}, {"Divide_Y", 2}},
       [](int32_t x, int32_t) { return x % 50 < 25 ? 'A' : 'B'; }},
      {"6 o'clock is 12, Direction 4 clockwise", 0.25, {{"BorderWidth", 2}, {"StartPosition", 6}, {"Direction", 4}},
       [](int32_t x, int32_t y) { return x < 50 ? 'A' : y >= 40 ? 'B' : y >= 38 ? 'P' : 'A'; }},
      {"first frame", 0.0, {{"BorderWidth", 2}}, [](int32_t, int32_t) { return 'A'; }},
      {"last frame", 1.0, {{"BorderWidth", 2}}, [](int32_t, int32_t) { return 'B'; }},
      {"no cells", 0.5, {{"Divide_X", -2}}, [](int32_t, int32_t) { return '.'; }},
      {"no cells, last frame", 1.0, {{"Divide_X", 0}}, [](int32_t, int32_t) { return 'B'; }},
  };
  ExpectPictures(kClock, 100, 80, cases);
}

// The description's pixel rule, cell by cell.
uint32_t ClockRule(const emu::Frame& a, const emu::Frame& b, int32_t x, int32_t y, const Setting& setting) {
  const bool ccw = ValueIn(setting.values, "Direction") == 1;
  const int32_t hour = ValueIn(setting.values, "StartPosition");
  double ux = hour == 1 ? 1 : hour == 3 ? -1 : 0, uy = hour == 2 ? -1 : hour == 1 || hour == 3 ? 0 : 1;
  if (ccw) ux = -ux;
  const double phi = setting.progress * 2 * kPi, c = Cos(phi), s = Sin(phi);
  const double dx = ux * c + uy * s, dy = uy * c - ux * s;
  const GridCell cell = CellOf(a.width, a.height, ValueIn(setting.values, "Divide_X"),
                               ValueIn(setting.values, "Divide_Y"), x, y);
  double X = (x + 0.5) - (cell.x0 + (cell.x1 - cell.x0) * 0.5);
  if (ccw) X = -X;
  const double Y = (y + 0.5) - (cell.y0 + (cell.y1 - cell.y0) * 0.5);
  const double hd = dx * Y - dy * X, sd = uy * X - ux * Y;
  const bool aa = ValueIn(setting.values, "Anti-Aliasing") != 0;
  const uint32_t start = Edge(a.At(x, y), b.At(x, y), sd, aa);
  const uint32_t behind = phi <= kPi ? start : b.At(x, y), ahead = phi <= kPi ? a.At(x, y) : start;
  const double t = dx * X + dy * Y >= 0 ? std::max(ValueIn(setting.values, "BorderWidth"), 0) : 0;
  return Band(behind, kPen, ahead, -hd, t, aa);
}

TEST(Clock, EveryPixelFollowsTheRule) {
  const Setting settings[] = {
      {97, 61, 0.13, {{"Anti-Aliasing", 1}, {"BorderWidth", 4}}},
      {97, 61, 0.62, {{"Anti-Aliasing", 1}, {"BorderWidth", 10}, {"Divide_X", 3}, {"Divide_Y", 2}, {"StartPosition", 1}}},
      {120, 45, 0.41, {{"Direction", 1}, {"Anti-Aliasing", 1}, {"BorderWidth", 2}, {"StartPosition", 2}}},
      {120, 45, 0.93, {{"Direction", 1}, {"Anti-Aliasing", 1}, {"BorderWidth", 1}, {"StartPosition", 3}, {"Divide_Y", 3}}},
      {33, 90, 0.55, {{"BorderWidth", 5}, {"Divide_X", 2}, {"Divide_Y", 2}, {"StartPosition", 3}}},
      {64, 64, 0.999, {{"Anti-Aliasing", 1}, {"BorderWidth", -3}}},
      {50, 7, 0.3, {{"Anti-Aliasing", 1}, {"BorderWidth", 3}, {"Divide_X", 60}, {"Divide_Y", 9}}},
  };
  ExpectEveryPixelFollows(kClock, settings, ClockRule);
}

}  // namespace
}  // namespace krl::test
