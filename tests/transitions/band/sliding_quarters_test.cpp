// Sliding Quarters: the phase chosen by the column travel, the quarters at
// rest and the moving one, the trailing B fill that runs into the quarter
// above, fills clipped to the frame on tall frames, and the exported helper
// called on its own as a host would.
#include <gtest/gtest.h>

#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(SlidingQuarters, MovesTheQuartersOneAfterAnother) {
  const RowReadsCase cases[] = {
      {"Progress 0 is A", 100, 80, 0.0, {}, 10, "A100@0,10"},
      {"Progress 1 is B", 100, 80, 1.0, {}, 70, "B100@0,70"},
      {"beyond 1: phase 0, all A", 100, 80, 1.01, {}, 70, "A100@0,70"},
      // s = 20, t = 16: Q1 shifted in its rows 0..23, B in its rows 24..39.
      {"phase 1, shifted rows", 100, 80, 0.1, {}, 0, "A30@20,16 B20@30,0 A50@50,0"},
      {"phase 1, trailing rows", 100, 80, 0.1, {}, 24, "B50@0,24 A50@50,24"},
      // s = 75: phase 2 with (25, 20); Q1 B, Q3 and Q4 A.
      {"phase 2, Q1 done", 100, 80, 0.375, {}, 10, "B50@0,10 A50@50,10"},
      {"phase 2, B uncovered", 100, 80, 0.375, {}, 50, "A50@0,50 B50@50,50"},
      {"phase 2, shifted rows", 100, 80, 0.375, {}, 70, "A50@0,70 B25@50,70 A25@50,50"},
      // 200 x 0.3 is just below 60 in extended precision: s = 59, phase 2 with (9, 7).
      {"the travel in extended precision", 100, 80, 0.3, {}, 79, "A50@0,79 B9@50,79 A41@50,72"},
      // Phase 1 on a tall frame, t = 57 > hh = 50: the B fill covers rows 0..56, into Q4.
      {"the trailing fill runs into Q4", 10, 100, 0.29, {}, 53, "B5@0,53 A5@5,53"},
      {"above the fill Q4 is A", 10, 100, 0.29, {}, 57, "A10@0,57"},
      // Phase 2 with t = 58: the B fill of rows 50..107 stops at the top row.
      {"fills clipped to the frame", 10, 100, 0.54, {}, 99, "A5@0,99 B5@5,99"},
      {"phase 3", 100, 80, 0.6, {}, 10, "B69@0,10 A31@50,25"},
      {"phase 4", 100, 80, 0.85, {}, 50, "B100@0,50"},
      {"phase 4, shifted rows", 100, 80, 0.85, {}, 60, "A31@19,45 B69@31,60"},
  };
  ExpectRowReads("Sliding Quarters", cases);
}

using QuartersHelper = void (*)(unsigned char*, unsigned char*, unsigned char*, int32_t, int32_t, int32_t, double);

QuartersHelper Helper() {
  auto* helper = reinterpret_cast<QuartersHelper>(Library().Symbol("bxglVTRSlidingQuarters"));
  EXPECT_NE(helper, nullptr);
  return helper;
}

// A host's rows may be longer than the width: the helper then counts
// width x height / stride rows and leaves the padding alone.
TEST(SlidingQuarters, HelperDrawsRowsOfAnyStride) {
  constexpr int32_t kW = 8, kStride = 10, kHeight = 6, kRows = kW * kHeight / kStride;  // 4
  emu::Frame a = Coded(kStride, kHeight, kTagA), b = Coded(kStride, kHeight, kTagB);
  for (const double p : {0.1, 0.3, 0.55, 0.8, 1.0}) {
    emu::Frame out(kStride, kHeight, kUntouched);
    Helper()(out.Bytes(), a.Bytes(), b.Bytes(), 4 * kStride, kW, kHeight, p);
    const emu::Frame alone = RenderCodedClips("Sliding Quarters", kW, kRows, p);
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kStride; ++x) {
        const uint32_t expected = y < kRows && x < kW ? alone.At(x, y) : kUntouched;
        // Coded pixels name their own column and row; the padded frame's rows are the same rows.
        ASSERT_EQ(out.At(x, y), expected) << p << " at " << x << "," << y;
      }
    }
  }
}

TEST(SlidingQuarters, HelperDrawsNothingWhereRowsWouldOverlapOrDivideByZero) {
  emu::Frame a = Coded(8, 4, kTagA), b = Coded(8, 4, kTagB), out(8, 4, kUntouched);
  const struct {
    int32_t rowBytes, width, height;
  } calls[] = {{0, 0, 4}, {0, 8, 4}, {3, 8, 4}, {28, 8, 4}, {-32, 8, 4}, {32, 8, 0}, {32, -8, 4}, {32, 8, INT32_MAX}};
  for (const auto& c : calls) {
    Helper()(out.Bytes(), a.Bytes(), b.Bytes(), c.rowBytes, c.width, c.height, 0.5);
    EXPECT_EQ(out.pixels, Filled(8, 4, kUntouched).pixels) << c.rowBytes << " " << c.width << " " << c.height;
  }
}

}  // namespace
}  // namespace krl::test
