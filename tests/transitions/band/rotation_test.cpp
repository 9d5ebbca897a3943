// Rotation: the exact-angle shortcuts, the boundary of the turned A in its
// upper and lower part, single-precision samples rounded half up, and the
// mirror hinge.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(Rotation, TurnsAAwayFromItsHinge) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* what;
    double progress;
    int32_t direction;
    const char* row0;   // the sources of the bottom row
    const char* row28;  // the top row of the lower part (yb = 29 at a quarter of a turn)
    const char* row29;  // the first row of the upper part, d = 70
    const char* row99;  // the top row
  } cases[] = {
      {"Progress 0 copies A", 0.0, 0, "A100", "A100", "A100", "A100"},
      {"Progress 1 copies B", 1.0, 0, "B100", "B100", "B100", "B100"},
      // Square frame at pi / 4: the upper part's boundary is the diagonal x = d.
      {"Top Left at half way", 0.5, 0, "A44 B56", "A72 B28", "A70 B30", "B100"},
      {"Direction 5 is Top Left", 0.5, 5, "A44 B56", "A72 B28", "A70 B30", "B100"},
      // Not quite the mirror image: both round half up.
      {"Top Right at half way", 0.5, 1, "B57 A43", "B29 A71", "B30 A70", "B100"},
      {"a negative angle draws nothing", -0.1, 0, ".100", ".100", ".100", ".100"},
      {"beyond the quarter turn draws nothing", 1.2, 1, ".100", ".100", ".100", ".100"},
      {"NaN draws nothing", nan, 0, ".100", ".100", ".100", ".100"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCodedClips("Rotation", 100, 100, c.progress, {{"Direction", c.direction}});
    EXPECT_EQ(RowRuns(out, 0), c.row0) << c.what;
    EXPECT_EQ(RowRuns(out, 28), c.row28) << c.what;
    EXPECT_EQ(RowRuns(out, 29), c.row29) << c.what;
    EXPECT_EQ(RowRuns(out, 99), c.row99) << c.what;
    if (c.progress > 0.0 && c.progress < 1.0) {  // B does not move
      for (int32_t x = 0; x < 100; ++x) {
        if (SourceOf(out.At(x, 29)) == 'B') {
          ASSERT_EQ(out.At(x, 29), Code(kTagB, x, 29)) << c.what;
        }
      }
    }
  }
}

TEST(Rotation, SamplesAInSinglePrecisionRoundedHalfUp) {
  // At pi / 4, s = c = 0.70710677f. Row 50 (d = 49), column 0:
  // row trunc(99 + 0 - 34.648232 + 0.5) = 64, column trunc(34.648232 + 0.5) = 35.
  const emu::Frame left = RenderCodedClips("Rotation", 100, 100, 0.5);
  EXPECT_EQ(left.At(0, 50), Code(kTagA, 35, 64));
  EXPECT_EQ(left.At(10, 50), Code(kTagA, 42, 71));  // 99 + 7.0710677 - 34.648232 + 0.5; 7.0710677 + 35.148232
  // Top Right mirrors it: e = 0 at column 99.
  const emu::Frame right = RenderCodedClips("Rotation", 100, 100, 0.5, {{"Direction", 1}});
  EXPECT_EQ(right.At(99, 50), Code(kTagA, 64, 64));  // column trunc(99 - 0 - 34.648232 + 0.5)
}

// Every sample lies in the frame whatever the angle and shape.
TEST(Rotation, EverySampleStaysInsideTheFrame) {
  for (const auto& [w, h] : {std::pair{1, 1}, {1, 9}, {9, 1}, {37, 5}, {5, 37}}) {
    for (const double p : {1e-9, 0.013, 0.5, 0.97, 0.999999999}) {
      for (const int32_t direction : {0, 1}) {
        const emu::Frame out = RenderCodedClips("Rotation", w, h, p, {{"Direction", direction}});
        for (const uint32_t px : out.pixels) {
          ASSERT_NE(SourceOf(px), '.') << w << "x" << h << " at " << p;
          ASSERT_LT(CodedX(px), w);
          ASSERT_LT(CodedY(px), h);
        }
      }
    }
  }
}

}  // namespace
}  // namespace krl::test
