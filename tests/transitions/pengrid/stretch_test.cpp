// Cross Stretch and Cube Stretch: B's strip and A's rest each hold their
// clip's whole cell, the pen at the seam no thicker than either, nothing
// leaving its cell; Cube Stretch turns the strips as two faces of a cube,
// full height at the seam, shortened and compressed toward the far edges,
// the background beside them, blended along the slanted edges on request.
#include <gtest/gtest.h>

#include <limits>

#include "pen_grid_support.h"
#include "raster/pixel_mix.h"

namespace krl::test {
namespace {

// Output column (row, for vertical travel) `at` shows `clip` ('A', 'B' or
// 'P' for the pen) read at along-index `from`, its across position unchanged.
struct Probe {
  int32_t at;
  char clip;
  int32_t from = 0;
};

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
      {"Bottom > Top", 5, 80, 0.5, {{"Direction", 3}, {"BorderWidth", 2}}, false,
       {{0, 'B', 1}, {39, 'B', 79}, {40, 'P'}, {41, 'P'}, {42, 'A', 1}, {79, 'A', 78}}},
      // Cells 0..32, 33..65 and 66..99; n = 16, 16 and 17.
      {"three cells, Divide_Y ignored", 100, 6, 0.5, {{"Divide_X", 3}, {"Divide_Y", 5}}, true,
       {{0, 'B', 1}, {15, 'B', 31}, {16, 'A', 0}, {32, 'A', 32}, {33, 'B', 34}, {48, 'B', 64}, {49, 'A', 33},
        {65, 'A', 65}, {66, 'B', 67}, {82, 'B', 99}, {83, 'A', 67}, {99, 'A', 99}}},
      {"a huge pen fills what B leaves", 10, 2, 0.5, {{"BorderWidth", INT32_MAX}}, true,
       {{0, 'B', 1}, {4, 'B', 9}, {5, 'P'}, {9, 'P'}}},
      {"a division beyond the width leaves one cell", 10, 2, 0.5, {{"Divide_X", INT32_MAX}}, true,
       {{0, 'B', 1}, {5, 'A', 1}}},
  };
  for (const StretchCase& c : cases) {
    const emu::Frame out = RenderCoded("Cross Stretch", c.w, c.h, c.progress, c.values);
    const int32_t lines = c.alongRows ? out.height : out.width;
    for (const Probe& probe : c.probes) {
      for (int32_t line = 0; line < lines; ++line) {
        const uint32_t px = c.alongRows ? out.At(probe.at, line) : out.At(line, probe.at);
        const std::string where = std::string(c.what) + ", at " + std::to_string(probe.at) + ", line " +
                                  std::to_string(line);
        ASSERT_EQ(SourceOf(px), probe.clip) << where;
        if (probe.clip == 'P') continue;
        ASSERT_EQ(c.alongRows ? CodedX(px) : CodedY(px), probe.from) << where;
        ASSERT_EQ(c.alongRows ? CodedY(px) : CodedX(px), line) << where;
      }
    }
  }
}

class StretchEnds : public testing::TestWithParam<std::string> {};

// The ends come before the grid: A or B read in place, or nothing at all.
TEST_P(StretchEnds, ShowAOrBExactly) {
  const struct {
    const char* what;
    double progress;
    FieldValues values;
    char shows;
  } cases[] = {
      {"0 is A", 0.0, {{"BorderWidth", 10}}, 'A'},
      {"1 is B", 1.0, {{"BorderWidth", 10}, {"Direction", 2}}, 'B'},
      {"above 1 is B", 7.0, {{"Direction", 1}}, 'B'},
      {"NaN is A", std::numeric_limits<double>::quiet_NaN(), {{"BorderWidth", 3}}, 'A'},
      {"the ends even without cells", 0.0, {{"Divide_X", 0}}, 'A'},
      {"no cells in between draw nothing", 0.5, {{"Divide_X", 0}}, '.'},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCoded(GetParam(), 13, 9, c.progress, c.values);
    for (int32_t y = 0; y < out.height; ++y) {
      for (int32_t x = 0; x < out.width; ++x) {
        // Read in place, or not written at all.
        const uint32_t expected = c.shows == '.' ? kUntouched : Code(c.shows == 'A' ? kTagA : kTagB, x, y);
        ASSERT_EQ(out.At(x, y), expected) << c.what << " at " << x << "," << y;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Both, StretchEnds, testing::Values("Cross Stretch", "Cube Stretch"), NameOfMember);

constexpr KrColor kBackFromHost{0x40, 0x30, 0x20, 0x00};
constexpr uint32_t kBack = 0xFF203040;

emu::Frame RenderCube(int32_t w, int32_t h, double progress, const FieldValues& values) {
  emu::Instance instance(Library(), Effect(Library(), "Cube Stretch"));
  instance.SetColor("Color", kPenFromHost);
  instance.SetColor("BackColor", kBackFromHost);
  for (const auto& [key, value] : values) instance.SetValue(key, value);
  emu::Frame out(w, h, kUntouched);
  EXPECT_EQ(instance.Render(Coded(w, h, kTagA), Coded(w, h, kTagB), out, progress), 1);
  return out;
}

// A render of the cube, the runs of one line and where one of its pixels reads.
struct CubeCase {
  const char* what;
  int32_t w, h;
  double progress;
  FieldValues values;
  bool column;  // the line is a column (from the bottom), else a row (from the left)
  int32_t line;
  const char* runs;  // '?' for the background
  int32_t at;        // and pixel `at` of the line reads clip `clip` at (x, y)
  char clip;
  int32_t x, y;
};

TEST(CubeStretch, TurnsTheStripsAsFacesOfACube) {
  const CubeCase cases[] = {
      // 100 x 80 half way: q = 0.69783... for both faces.
      {"B's seam", 100, 80, 0.5, {}, true, 49, "B80", 40, 'B', 99, 40},
      {"B's far edge", 100, 80, 0.5, {}, true, 0, "?12 B56 ?12", 67, 'B', 1, 79},
      {"perspective: B's middle shows 59 %", 100, 80, 0.5, {}, true, 25, "?6 B68 ?6", 40, 'B', 59, 40},
      {"A's face after the pen", 100, 80, 0.5, {{"BorderWidth", 3}}, false, 40, "B50 P3 A47", 53, 'A', 0, 40},
      {"Right > Left: A's far edge left", 100, 80, 0.5, {{"Direction", 1}}, true, 0, "?12 A56 ?12", 12, 'A', 1, 0},
      {"a cube per cell", 100, 80, 0.5, {{"Divide_X", 2}, {"Divide_Y", 3}}, true, 50, "?12 B56 ?12", 12, 'B', 51, 0},
      // At 0.01 A fills 99 of 100 columns and is already turned: q = 0.934.
      {"A tilts from the first frames", 100, 80, 0.01, {}, true, 99, "?3 A74 ?3", 3, 'A', 99, 0},
      // Vertical travel: trapezoids with horizontal parallel sides, B's far edge on top or at the bottom.
      {"Top > Bottom", 80, 100, 0.5, {{"Direction", 2}}, false, 99, "?12 B56 ?12", 67, 'B', 79, 98},
      {"Bottom > Top", 80, 100, 0.5, {{"Direction", 3}}, false, 0, "?12 B56 ?12", 12, 'B', 0, 1},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCube(c.w, c.h, c.progress, c.values);
    EXPECT_EQ(c.column ? ColumnRuns(out, c.line) : RowRuns(out, c.line), c.runs) << c.what;
    EXPECT_EQ(c.column ? out.At(c.line, c.at) : out.At(c.at, c.line), Code(c.clip == 'A' ? kTagA : kTagB, c.x, c.y))
        << c.what;
  }
}

TEST(CubeStretch, BlendsTheBackgroundByCoverage) {
  // The background's share of a pixel is its weight in 256ths. 5 x 7 half
  // way: A's face has q = 1 / 1.4, and at column 3 hc x sc is 3 exactly, so
  // row 0 has its centre on the slanted edge.
  const emu::Frame small = RenderCube(5, 7, 0.5, {{"Anti-Aliasing", 1}});
  EXPECT_EQ(small.At(3, 0), MixWeighted(Code(kTagA, 2, 0), kBack, 128));
  EXPECT_EQ(RenderCube(5, 7, 0.5, {}).At(3, 0), Code(kTagA, 2, 0)) << "r = 0 is inside the face";
  // 100 x 80: row 11 of column 0 lies 0.453 outside B's face; row 0 wholly.
  EXPECT_EQ(RenderCube(100, 80, 0.5, {}).At(0, 0), kBack);
  EXPECT_EQ(RenderCube(100, 80, 0.5, {{"Anti-Aliasing", 1}}).At(0, 11), MixWeighted(Code(kTagB, 1, 0), kBack, 244));
}

// The reads of a frame 2^15 pixels wide are formed one at a time, those of
// narrower frames four at a time: every cell of a wide frame split into
// eight cells 4096 wide shows what a frame of one such cell shows (the
// coded columns count within 4096).
TEST(CubeStretch, WideFramesReadAsNarrowOnes) {
  for (const int32_t antiAlias : {0, 1}) {
    const double progress = antiAlias ? 0.7 : 0.3;
    const emu::Frame narrow = RenderCube(4096, 9, progress, {{"Anti-Aliasing", antiAlias}});
    const emu::Frame wide = RenderCube(8 * 4096, 9, progress, {{"Divide_X", 8}, {"Anti-Aliasing", antiAlias}});
    for (int32_t y = 0; y < 9; ++y) {
      for (int32_t x = 0; x < wide.width; ++x) {
        ASSERT_EQ(wide.At(x, y), narrow.At(x % 4096, y)) << progress << " at " << x << "," << y;
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
