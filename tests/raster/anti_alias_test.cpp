// The edge blenders: walks that draw nothing, bytes worked out by hand for a
// flat and a steep edge in each mode, rows held at the frame, the limits of
// the neighbour (AntiAlias3 keeping one more row than AntiAlias1), and that
// no end point takes a write outside the frame. Also the degree tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "raster/anti_alias.h"
#include "raster/degree_tables.h"

namespace krl {
namespace {

using Blender = void (*)(uint8_t*, uint8_t*, uint8_t*, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t,
                         int32_t, int32_t, int32_t, int32_t, _color_t*);
constexpr Blender kBlenders[] = {AntiAlias1, AntiAlias2, AntiAlias3, AntiAlias4};

constexpr uint32_t kDst = 0x11223344, kSrc1 = 0xFF0064C8, kSrc2 = 0x40802010;  // bytes (b, g, r, a) low first
constexpr _color_t kColor{0x00, 0x32, 0xFF, 0x00};

// Three frames of w x h pixels: dst, src1 and src2 filled flat.
struct Frames {
  int32_t w, h;
  std::vector<uint32_t> dst, src1, src2;
  _color_t color = kColor;

  Frames(int32_t width, int32_t height)
      : w(width), h(height), dst(size_t(w) * h, kDst), src1(size_t(w) * h, kSrc1), src2(size_t(w) * h, kSrc2) {}

  // A blend with the limits of the whole frame, but for those given.
  void Run(Blender blend, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t mode, int32_t minRow = 0,
           int32_t minCol = 0, int32_t maxCol = -1) {
    blend(Bytes(dst), Bytes(src1), Bytes(src2), w, h, x0, y0, x1, y1, minCol, h, maxCol < 0 ? w : maxCol, minRow, mode,
          &color);
  }
  static uint8_t* Bytes(std::vector<uint32_t>& v) { return reinterpret_cast<uint8_t*>(v.data()); }
  uint32_t At(int32_t c, int32_t r) const { return dst[size_t(r) * w + c]; }
  std::vector<int32_t> ChangedRows() const {
    std::vector<int32_t> rows;
    for (int32_t r = 0; r < h; ++r) {
      if (std::any_of(&dst[size_t(r) * w], &dst[size_t(r) * w] + w, [](uint32_t px) { return px != kDst; })) {
        rows.push_back(r);
      }
    }
    return rows;
  }
};

// inv = 0.5 / sqrt(5) as a single = 0.2236068; D = -2 inv at the first step
// (t = -2), 0 at the second. Weights: main (4 inv - D) x 0.6666667, side -D x 0.6666667:
//   step 1: main 0.8944272, side 0.2981424; step 2: main 0.5962848, side 0.
TEST(EdgeBlenders, BytesOfAFlatAndASteepEdge) {
  const struct {
    const char* what;
    int32_t x1, y1, mode;
    int32_t c, r;
    uint32_t expected;
  } cases[] = {
      // Flat, (0,0) to (2,1): main S2 + (S1 - S2) x main, the row below it S2 + (S1 - S2) x side.
      // Mode 0: S1 c8 64 00 ff, S2 10 20 80 40.
      {"flat, first main", 2, 1, 0, 1, 1, 0xEA0D5CB4},  // 180.57 92.82 13.51 234.84
      {"flat, first neighbour", 2, 1, 0, 1, 0, 0x78593446},  // 70.86 52.27 89.84 120.95
      {"flat, second neighbour gets S2", 2, 1, 0, 2, 0, kSrc2},
      // Mode 1 (S1 the colour 00 32 ff 00) and mode 2 (S2 the colour).
      {"flat, mode 1", 2, 1, 1, 1, 1, 0x06F13001},  // 1.69 48.10 241.59 6.76
      {"flat, mode 2", 2, 1, 2, 1, 1, 0xE41A5EB2},  // 178.89 94.72 26.92 228.08
      // Steep, (0,0) to (1,2): one row, then the column reaches x1 and the walk ends.
      // Main S1 + (S2 - S1) x side at (1,1), its right neighbour S1 + (S2 - S1) x main.
      {"steep, main", 1, 2, 0, 1, 1, 0xC6264F91},  // 145.14 79.73 38.16 198.05
      {"steep, neighbour", 1, 2, 0, 2, 1, 0x54722723},  // 35.43 39.18 114.49 84.16
  };
  for (const auto& c : cases) {
    Frames f(4, 4);
    f.Run(AntiAlias1, 0, 0, c.x1, c.y1, c.mode);
    EXPECT_EQ(f.At(c.c, c.r), c.expected) << c.what << std::hex << " got " << f.At(c.c, c.r);
    EXPECT_EQ(f.At(0, 0), kDst) << c.what << ": the start point is not written";
  }
  Frames steep(4, 4);
  steep.Run(AntiAlias1, 0, 0, 1, 2, 0);
  EXPECT_EQ(steep.ChangedRows(), std::vector<int32_t>{1}) << "the walk stops with the column, before row 2";
}

TEST(EdgeBlenders, WalksThatDrawNothingRowsHeldAtTheFrameAndNeighboursAtTheirLimits) {
  const struct {
    const char* what;
    int blender;
    int32_t x0, y0, x1, y1, mode, minRow;
    std::vector<int32_t> rows;  // the rows written in a 7 x 3 frame (7 x 5 with a minRow)
  } cases[] = {
      // Each blender walks from x0 toward its own side (AntiAlias3 and 4 leftward).
      {"a vertical edge", 1, 3, 0, 3, 7, 0, 0, {}},
      {"a single point", 2, 4, 1, 4, 1, 1, 0, {}},
      {"mode 3", 3, 6, 0, 0, 2, 3, 0, {}},
      {"a negative mode", 4, 6, 2, 0, 0, -1, 0, {}},
      {"a walk away from the blender's side", 1, 6, 0, 1, 2, 0, 0, {}},
      {"the same leftward", 3, 1, 0, 6, 2, 0, 0, {}},
      {"main pixels held in row 2, neighbours in row 1", 1, 0, 2, 6, 5, 0, 0, {1, 2}},
      {"the same walking left", 3, 6, 2, 0, 5, 0, 0, {1, 2}},
      {"held at row 0, neighbours in row 1", 2, 0, 0, 6, -3, 0, 0, {0, 1}},
      {"the same walking left", 4, 6, 0, 0, -3, 0, 0, {0, 1}},
      {"steep: every step ends in row 2", 1, 0, 1, 3, 30, 0, 0, {2}},
      // A flat edge in row minRow + 1: AntiAlias1 writes the row above it, AntiAlias3 does not.
      {"AntiAlias1 at minRow + 1", 1, 0, 2, 5, 2, 0, 1, {1, 2}},
      {"AntiAlias3 at minRow + 1", 3, 5, 2, 0, 2, 0, 1, {2}},
      {"AntiAlias3 at minRow + 2", 3, 5, 3, 0, 3, 0, 1, {2, 3}},
      {"AntiAlias1 at minRow", 1, 0, 1, 5, 1, 0, 1, {1}},
  };
  for (const auto& c : cases) {
    Frames f(7, c.minRow == 0 ? 3 : 5);
    f.Run(kBlenders[c.blender - 1], c.x0, c.y0, c.x1, c.y1, c.mode, c.minRow);
    EXPECT_EQ(f.ChangedRows(), c.rows) << c.what;
  }
  // Steep edges: the neighbour column stays inside maxCol - 1 (right) or
  // minCol + 1 (left); the last main pixel lands in column x1 itself (row 5).
  for (const int32_t limit : {3, 4}) {
    Frames right(6, 6), left(6, 6);
    right.Run(AntiAlias1, 0, 0, 3, 5, 0, 0, 0, limit);
    left.Run(AntiAlias3, 5, 0, 2, 5, 0, 0, 5 - limit);
    int rightWrites = 0, leftWrites = 0;
    for (int32_t r = 0; r < 5; ++r) {
      rightWrites += right.At(3, r) != kDst;
      leftWrites += left.At(2, r) != kDst;
    }
    EXPECT_EQ(rightWrites > 0, limit == 4) << "maxCol " << limit;
    EXPECT_EQ(leftWrites > 0, limit == 4) << "minCol " << 5 - limit;
  }
}

// Whatever the end points and limits, nothing outside the stride x height
// pixels is read or written (the frame sits between guard words).
TEST(EdgeBlenders, NoWriteLeavesTheFrame) {
  constexpr int32_t kW = 5, kH = 4, kGuard = 64;
  constexpr uint32_t kFence = 0x5A5A5A5A;
  const int32_t ends[] = {-100000, -1000, -6, -1, 0, 2, 4, 5, 9, 1000, 100000};
  for (Blender blend : kBlenders) {
    for (int32_t x0 : {-3, 0, 4, 8}) {
      for (int32_t y : ends) {
        std::vector<uint32_t> dst(kGuard + kW * kH + kGuard, kFence), src(dst.size(), kSrc1);
        uint8_t* frame = reinterpret_cast<uint8_t*>(dst.data() + kGuard);
        uint8_t* source = reinterpret_cast<uint8_t*>(src.data() + kGuard);
        _color_t color = kColor;
        const int32_t x1 = x0 < 2 ? x0 + 9 : x0 - 9;
        blend(frame, source, source, kW, kH, x0, y, x1, -y, -50, 50, 50, -50, 0, &color);
        blend(frame, source, source, kW, kH, x0, 1, x1, y, INT32_MIN, INT32_MAX, INT32_MAX, INT32_MIN, 2, &color);
        for (int32_t i = 0; i < kGuard; ++i) {
          ASSERT_EQ(dst[i], kFence) << "before the frame, y " << y;
          ASSERT_EQ(dst[kGuard + kW * kH + i], kFence) << "after the frame, y " << y;
        }
      }
    }
  }
}

TEST(DegreeTables, HoldSineAndCosineRoundedToSixDecimals) {
  auto rounded = [](long double v) { return static_cast<double>(std::round(v * 1e6L)) / 1e6; };
  for (int d = 0; d < 360; ++d) {
    const long double radians = d * 3.14159265358979323846264338327950288L / 180;
    EXPECT_EQ(kSinDegrees[d], rounded(std::sin(radians))) << d;
    EXPECT_EQ(kCosDegrees[d], rounded(std::cos(radians))) << d;
  }
}

}  // namespace
}  // namespace krl
