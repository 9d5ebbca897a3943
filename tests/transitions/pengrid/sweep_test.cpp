// Clock and Windscreen Wiper, a line turning about a pivot in every cell:
// the worked frames of their descriptions on 100 x 80, the same with
// anti-aliasing where the edges lie on pixel borders, and the pixels beside
// slanted blades.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

// 'A', 'B' (each read in place), 'P' or '.' (untouched) at (x, y).
using Picture = std::function<char(int32_t x, int32_t y)>;

// The first pixel that differs from the picture, or "" when none does.
std::string FirstMismatch(const emu::Frame& f, const Picture& expected) {
  for (int32_t y = 0; y < f.height; ++y) {
    for (int32_t x = 0; x < f.width; ++x) {
      const uint32_t px = f.At(x, y);
      const char shown = SourceOf(px);
      const bool inPlace = shown == 'P' || shown == '.' || (CodedX(px) == x && CodedY(px) == y);
      if (shown != expected(x, y) || !inPlace) {
        return "(" + std::to_string(x) + ", " + std::to_string(y) + ") shows " + shown + ", expected " + expected(x, y);
      }
    }
  }
  return "";
}

TEST(Sweep, WholeFrames) {
  auto a = [](int32_t, int32_t) { return 'A'; };
  auto b = [](int32_t, int32_t) { return 'B'; };
  auto none = [](int32_t, int32_t) { return '.'; };
  const struct {
    const char* effect;
    const char* what;
    double progress;
    FieldValues values;
    Picture expected;
    bool onPixelBorders = true;  // then anti-aliasing must give the same frame
  } cases[] = {
      {"Clock", "a quarter turn from 12", 0.25, {{"BorderWidth", 2}},
       [](int32_t x, int32_t y) { return x < 50 ? 'A' : y >= 40 ? 'B' : y >= 38 ? 'P' : 'A'; }},
      {"Clock", "three quarters from 12", 0.75, {{"BorderWidth", 2}},
       [](int32_t x, int32_t y) { return x >= 50 ? 'B' : y >= 42 ? 'A' : y >= 40 ? 'P' : 'B'; }},
      {"Clock", "a quarter counter-clockwise from 3", 0.25,
       {{"BorderWidth", 2}, {"Direction", 1}, {"StartPosition", 1}},
       [](int32_t x, int32_t y) { return y < 40 ? 'A' : x >= 50 ? 'B' : x >= 48 ? 'P' : 'A'; }},
      {"Clock", "half a turn in four cells", 0.5, {{"Divide_X", 2}, {"Divide_Y", 2}},
       [](int32_t x, int32_t) { return x % 50 < 25 ? 'A' : 'B'; }},
      {"Clock", "6 o'clock is 12, Direction 4 clockwise", 0.25,
       {{"BorderWidth", 2}, {"StartPosition", 6}, {"Direction", 4}},
       [](int32_t x, int32_t y) { return x < 50 ? 'A' : y >= 40 ? 'B' : y >= 38 ? 'P' : 'A'; }},
      {"Clock", "no cells", 0.5, {{"Divide_X", -2}}, none},
      {"Clock", "no cells, last frame", 1.0, {{"Divide_X", 0}}, b},
      {"Windscreen Wiper", "upright blade", 0.5, {{"BorderWidth", 3}},
       [](int32_t x, int32_t) { return x < 50 ? 'B' : x < 53 ? 'P' : 'A'; }},
      {"Windscreen Wiper", "blade lying on the left, no pen right of the pivot", 0.001, {{"BorderWidth", 4}},
       [](int32_t x, int32_t y) { return x < 50 && y < 4 ? 'P' : 'A'; }, false},
      {"Windscreen Wiper", "two cells, from the right", 0.5, {{"Direction", 1}, {"Divide_X", 2}},
       [](int32_t x, int32_t) { return x % 50 < 25 ? 'A' : 'B'; }},
      {"Windscreen Wiper", "Direction 9 is Left > Right", 0.5, {{"Direction", 9}},
       [](int32_t x, int32_t) { return x < 50 ? 'B' : 'A'; }},
      {"Windscreen Wiper", "NaN shows the first frame", NAN, {{"BorderWidth", 4}}, a},
      {"Windscreen Wiper", "no cells", 0.5, {{"Divide_Y", 0}}, none},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FirstMismatch(RenderCoded(c.effect, 100, 80, c.progress, c.values), c.expected), "") << c.what;
    if (!c.onPixelBorders) continue;
    FieldValues smooth = c.values;
    smooth.emplace_back("Anti-Aliasing", 1);
    EXPECT_EQ(FirstMismatch(RenderCoded(c.effect, 100, 80, c.progress, smooth), c.expected), "") << c.what << " AA";
  }
}

TEST(WindscreenWiper, PixelsBesideSlantedBlades) {
  const struct {
    const char* what;
    double progress;
    int32_t direction;
    std::vector<std::pair<int32_t, int32_t>> onB, onA;
  } cases[] = {
      {"45 degrees, up and to the left", 0.25, 0, {{0, 20}, {0, 48}, {10, 20}, {30, 5}}, {{0, 50}, {30, 30}, {60, 5}}},
      {"centre to sides", 0.5, 2, {{0, 50}, {99, 50}, {60, 20}}, {{0, 48}, {99, 48}, {80, 10}}},
      {"sides to centre", 0.5, 3, {{0, 48}, {99, 48}}, {{0, 50}, {99, 50}}},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCoded("Windscreen Wiper", 100, 80, c.progress, {{"Direction", c.direction}});
    for (const auto& [x, y] : c.onB) EXPECT_EQ(SourceOf(out.At(x, y)), 'B') << c.what << " at " << x << ", " << y;
    for (const auto& [x, y] : c.onA) EXPECT_EQ(SourceOf(out.At(x, y)), 'A') << c.what << " at " << x << ", " << y;
  }
}

}  // namespace
}  // namespace krl::test
