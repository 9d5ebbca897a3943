// Cube Stretch: the strips of Cross Stretch as two faces of a turning cube,
// full height at the seam, shortened and compressed toward the far edges,
// the background beside them, blended along the slanted edges on request.
#include <gtest/gtest.h>

#include "raster/pixel_mix.h"
#include "stretch_support.h"

namespace krl::test {
namespace {

constexpr KrColor kBackFromHost{0x40, 0x30, 0x20, 0x00};
constexpr uint32_t kBack = 0xFF203040;

// 'K' for the background, otherwise as SourceOf.
char Letter(uint32_t px) { return px == kBack ? 'K' : SourceOf(px); }

emu::Frame RenderCube(int32_t w, int32_t h, double progress, const FieldValues& values) {
  emu::Instance instance(Library(), Effect(Library(), "Cube Stretch"));
  instance.SetColor("Color", kPenFromHost);
  instance.SetColor("BackColor", kBackFromHost);
  for (const auto& [key, value] : values) instance.SetValue(key, value);
  emu::Frame out(w, h, kUntouched);
  EXPECT_EQ(instance.Render(Coded(w, h, kTagA), Coded(w, h, kTagB), out, progress), 1);
  EXPECT_TRUE(instance.diagnostics().empty());
  return out;
}

// Output pixel `at` of the line reads `clip` at (x, y).
struct Read {
  int32_t at;
  char clip;
  int32_t x, y;
};

struct CubeCase {
  const char* what;
  int32_t w, h;
  double progress;
  FieldValues values;
  bool column;  // the line is a column (from the bottom), else a row (from the left)
  int32_t line;
  const char* runs;
  std::vector<Read> reads;
};

std::string LineRuns(const emu::Frame& out, bool column, int32_t line) {
  std::string text;
  const int32_t count = column ? out.height : out.width;
  for (int32_t i = 0; i < count;) {
    auto letter = [&](int32_t k) { return Letter(column ? out.At(line, k) : out.At(k, line)); };
    int32_t j = i;
    while (j < count && letter(j) == letter(i)) ++j;
    text += (text.empty() ? "" : " ") + std::string(1, letter(i)) + std::to_string(j - i);
    i = j;
  }
  return text;
}

TEST(CubeStretch, TurnsTheStripsAsFacesOfACube) {
  const CubeCase cases[] = {
      // 100 x 80 half way: q = 0.69783... for both faces.
      {"B's seam", 100, 80, 0.5, {}, true, 49, "B80", {{0, 'B', 99, 0}, {40, 'B', 99, 40}, {79, 'B', 99, 79}}},
      {"A's seam", 100, 80, 0.5, {}, true, 50, "A80", {{0, 'A', 0, 0}, {79, 'A', 0, 79}}},
      {"B's far edge", 100, 80, 0.5, {}, true, 0, "K12 B56 K12", {{12, 'B', 1, 0}, {67, 'B', 1, 79}}},
      {"perspective: B's middle shows 59 %", 100, 80, 0.5, {}, true, 25, "K6 B68 K6", {{40, 'B', 59, 40}}},
      {"A's middle", 100, 80, 0.5, {}, true, 74, "K6 A68 K6", {{40, 'A', 40, 40}}},
      {"A's far edge", 100, 80, 0.5, {}, true, 99, "K12 A56 K12", {{12, 'A', 98, 0}}},
      {"the pen over the full height", 100, 80, 0.5, {{"BorderWidth", 3}}, true, 51, "P80", {}},
      {"A's face after the pen", 100, 80, 0.5, {{"BorderWidth", 3}}, false, 40, "B50 P3 A47", {{53, 'A', 0, 40}}},
      {"Right > Left: A's far edge on the left", 100, 80, 0.5, {{"Direction", 1}}, true, 0, "K12 A56 K12",
       {{12, 'A', 1, 0}}},
      {"Right > Left: B's far edge", 100, 80, 0.5, {{"Direction", 1}}, true, 99, "K12 B56 K12", {{12, 'B', 98, 0}}},
      {"each cell its own cube", 100, 80, 0.5, {{"Divide_X", 2}, {"Divide_Y", 3}}, true, 50, "K12 B56 K12",
       {{12, 'B', 51, 0}}},
      // At 0.01 A fills 99 of 100 columns and is already turned: q = 0.934.
      {"A tilts from the first frames", 100, 80, 0.01, {}, true, 99, "K3 A74 K3", {{3, 'A', 99, 0}}},
      {"B's one column", 100, 80, 0.01, {}, true, 0, "K7 B66 K7", {{7, 'B', 59, 1}}},
      // Vertical travel: trapezoids with horizontal parallel sides.
      {"Top > Bottom: B's far edge at the top", 80, 100, 0.5, {{"Direction", 2}}, false, 99, "K12 B56 K12",
       {{12, 'B', 0, 98}, {67, 'B', 79, 98}}},
      {"Top > Bottom: B's seam", 80, 100, 0.5, {{"Direction", 2}}, false, 50, "B80", {{0, 'B', 0, 0}, {79, 'B', 79, 0}}},
      {"Top > Bottom: A's seam", 80, 100, 0.5, {{"Direction", 2}}, false, 49, "A80", {{40, 'A', 40, 99}}},
      {"Top > Bottom: A's far edge", 80, 100, 0.5, {{"Direction", 2}}, false, 0, "K12 A56 K12", {{12, 'A', 0, 1}}},
      {"Bottom > Top: B's far edge at the bottom", 80, 100, 0.5, {{"Direction", 3}}, false, 0, "K12 B56 K12",
       {{12, 'B', 0, 1}}},
      // Anti-aliasing: one pixel each side of the far edge is blended.
      {"blended edges", 100, 80, 0.5, {{"Anti-Aliasing", 1}}, true, 0, "K11 ?1 B56 ?1 K11", {{12, 'B', 1, 0}}},
  };
  for (const CubeCase& c : cases) {
    const emu::Frame out = RenderCube(c.w, c.h, c.progress, c.values);
    EXPECT_EQ(LineRuns(out, c.column, c.line), c.runs) << c.what;
    for (const Read& r : c.reads) {
      const uint32_t px = c.column ? out.At(c.line, r.at) : out.At(r.at, c.line);
      EXPECT_EQ(px, Code(r.clip == 'A' ? kTagA : kTagB, r.x, r.y)) << c.what << ", at " << r.at;
    }
  }
}

// The background's share of a pixel is wP 256ths.
uint32_t Blend(uint32_t background, uint32_t face, int32_t wP) { return MixWeighted(face, background, wP); }

TEST(CubeStretch, BlendsTheBackgroundByCoverage) {
  // 5 x 7 half way: A's face has q = 1 / 1.4, and at column 3 hc x sc is 3
  // exactly, so rows 0 and 6 have their centres on the slanted edges.
  const struct {
    int32_t x, y;
    bool antiAlias;
    uint32_t expected;
  } cases[] = {
      {3, 0, true, Blend(kBack, Code(kTagA, 2, 0), 128)},
      {3, 6, true, Blend(kBack, Code(kTagA, 2, 6), 128)},
      {3, 0, false, Code(kTagA, 2, 0)},  // r = 0 is inside the face
      // 100 x 80: row 11 of column 0 lies 0.453 outside B's face.
      {0, 11, true, Blend(kBack, Code(kTagB, 1, 0), 244)},
  };
  for (const auto& c : cases) {
    const emu::Frame out = c.x == 0 ? RenderCube(100, 80, 0.5, {{"Anti-Aliasing", 1}})
                                    : RenderCube(5, 7, 0.5, {{"Anti-Aliasing", c.antiAlias ? 1 : 0}});
    EXPECT_EQ(out.At(c.x, c.y), c.expected) << c.x << "," << c.y << (c.antiAlias ? " blended" : "");
  }
}

// The reads of a frame 2^15 pixels wide are formed one at a time, those of
// narrower frames four at a time: every cell of a wide frame split into
// eight cells 4096 wide shows what a frame of one such cell shows (the
// coded columns count within 4096).
TEST(CubeStretch, WideFramesReadAsNarrowOnes) {
  const struct {
    double progress;
    int32_t antiAlias;
  } cases[] = {{0.3, 0}, {0.7, 1}};
  for (const auto& c : cases) {
    const emu::Frame narrow = RenderCube(4096, 9, c.progress, {{"Anti-Aliasing", c.antiAlias}});
    const emu::Frame wide = RenderCube(8 * 4096, 9, c.progress, {{"Divide_X", 8}, {"Anti-Aliasing", c.antiAlias}});
    for (int32_t y = 0; y < 9; ++y) {
      for (int32_t x = 0; x < wide.width; ++x) {
        ASSERT_EQ(wide.At(x, y), narrow.At(x % 4096, y)) << c.progress << " at " << x << "," << y;
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
