// Cross Stretch: B's strip and A's rest each hold their clip's whole cell,
// the pen at the seam no thicker than either, nothing leaving its cell.
#include <gtest/gtest.h>

#include <limits>

#include "stretch_support.h"

namespace krl::test {
namespace {

struct StretchCase {
  const char* what;
  int32_t w, h;
  double progress;
  FieldValues values;
  bool alongRows;  // horizontal travel: probes are columns, checked in every row
  std::vector<Probe> probes;
};

// Half way across 100 columns: column x of each half reads column 2x + 1 of its clip.
std::vector<Probe> Halves() {
  std::vector<Probe> probes;
  for (int32_t x = 0; x < 100; ++x) probes.push_back({x, x < 50 ? 'B' : 'A', 2 * (x % 50) + 1});
  return probes;
}

TEST(CrossStretch, SqueezesEachClipWholeIntoItsStrip) {
  const StretchCase cases[] = {
      {"half way", 100, 80, 0.5, {}, true, Halves()},
      {"Direction 7 is Left > Right", 100, 3, 0.5, {{"Direction", 7}}, true, Halves()},
      {"pen 4 at half way", 100, 80, 0.5, {{"BorderWidth", 4}}, true,
       {{0, 'B', 1}, {49, 'B', 99}, {50, 'P'}, {53, 'P'}, {54, 'A', 1}, {55, 'A', 3}, {98, 'A', 96}, {99, 'A', 98}}},
      {"the pen no thicker than B's strip", 100, 4, 0.02, {{"BorderWidth", 10}}, true,
       {{0, 'B', 25}, {1, 'B', 75}, {2, 'P'}, {3, 'P'}, {4, 'A', 0}, {99, 'A', 99}}},
      {"n from the double product (100 x 0.3 is 30)", 100, 2, 0.3, {}, true, {{29, 'B', 98}, {30, 'A', 0}}},
      {"Right > Left", 100, 4, 0.25, {{"Direction", 1}}, true,
       {{0, 'A', 0}, {1, 'A', 2}, {74, 'A', 99}, {75, 'B', 2}, {76, 'B', 6}, {99, 'B', 98}}},
      {"Top > Bottom: B in the upper half", 5, 80, 0.5, {{"Direction", 2}}, false,
       {{40, 'B', 1}, {41, 'B', 3}, {79, 'B', 79}, {0, 'A', 1}, {39, 'A', 79}}},
      {"Bottom > Top", 5, 80, 0.5, {{"Direction", 3}, {"BorderWidth", 2}}, false,
       {{0, 'B', 1}, {39, 'B', 79}, {40, 'P'}, {41, 'P'}, {42, 'A', 1}, {79, 'A', 78}}},
      // Cells 0..32, 33..65 and 66..99; n = 16, 16 and 17.
      {"three cells, Divide_Y ignored", 100, 6, 0.5, {{"Divide_X", 3}, {"Divide_Y", 5}}, true,
       {{0, 'B', 1}, {15, 'B', 31}, {16, 'A', 0}, {32, 'A', 32}, {33, 'B', 34}, {48, 'B', 64}, {49, 'A', 33},
        {65, 'A', 65}, {66, 'B', 67}, {82, 'B', 99}, {83, 'A', 67}, {99, 'A', 99}}},
      {"two cells of rows, Divide_X ignored", 3, 80, 0.5, {{"Direction", 2}, {"Divide_Y", 2}, {"Divide_X", 4}},
       false, {{0, 'A', 1}, {19, 'A', 39}, {20, 'B', 1}, {39, 'B', 39}, {40, 'A', 41}, {79, 'B', 79}}},
      {"a huge pen fills what B leaves", 10, 2, 0.5, {{"BorderWidth", INT32_MAX}}, true,
       {{0, 'B', 1}, {4, 'B', 9}, {5, 'P'}, {9, 'P'}}},
      {"a negative pen is none", 10, 2, 0.5, {{"BorderWidth", -4}}, true, {{4, 'B', 9}, {5, 'A', 1}}},
      {"a division beyond the width leaves one cell", 10, 2, 0.5, {{"Divide_X", INT32_MAX}}, true,
       {{0, 'B', 1}, {5, 'A', 1}}},
  };
  for (const StretchCase& c : cases) {
    ExpectProbes(RenderCoded("Cross Stretch", c.w, c.h, c.progress, c.values), c.alongRows, c.probes, c.what);
  }
}

struct EndCase {
  const char* what;
  double progress;
  FieldValues values;
  char shows;
};

// Shared with Cube Stretch: the ends come before the grid.
const EndCase kEnds[] = {
    {"0 is A", 0.0, {{"BorderWidth", 10}}, 'A'},
    {"1 is B", 1.0, {{"BorderWidth", 10}, {"Direction", 2}}, 'B'},
    {"below 0 is A", -2.0, {}, 'A'},
    {"above 1 is B", 7.0, {{"Direction", 1}}, 'B'},
    {"NaN is A", std::numeric_limits<double>::quiet_NaN(), {{"BorderWidth", 3}}, 'A'},
    {"the ends even without cells", 0.0, {{"Divide_X", 0}}, 'A'},
    {"no cells in between draw nothing", 0.5, {{"Divide_X", 0}}, '.'},
    {"nor a negative division", 0.5, {{"Direction", 3}, {"Divide_Y", -1}}, '.'},
};

class StretchEnds : public testing::TestWithParam<std::string> {};

TEST_P(StretchEnds, ShowAOrBExactly) {
  for (const EndCase& c : kEnds) ExpectWhole(RenderCoded(GetParam(), 13, 9, c.progress, c.values), c.shows, c.what);
}

INSTANTIATE_TEST_SUITE_P(Both, StretchEnds, testing::Values("Cross Stretch", "Cube Stretch"), NameOfMember);

}  // namespace
}  // namespace krl::test
