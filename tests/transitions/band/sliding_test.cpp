// The sliding transitions, by where each line of the output reads: Swap's two
// halves in every cell, Sliding Boxes' one box at a time, Sliding Quarters'
// phases and fills, Flying Carpet's slide and ripples; then Sliding Boxes'
// direction from the host's field 0 and the exported Sliding Quarters helper
// called on its own as a host would. Shredder: one rand() draw per row (or
// column) while the wipe is incomplete, the nominal edge where the jitter is
// nil, and the four directions; the library shares the process's rand(), so
// each case seeds it first.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

#include "transitions/band/sliding_support.h"
#include "transitions/dissolve/flat_clips.h"

namespace krl::test {
namespace {

struct ReadsCase {
  const char* effect;
  const char* what;
  int32_t w, h;
  double progress;
  FieldValues values;
  bool column;  // else a row
  int32_t line;
  const char* reads;  // runs with where they read: "@column,row" along a row, "@row,column" up a column
};

TEST(Sliding, EachLineReadsWhereItsSlideHasCome) {
  const ReadsCase cases[] = {
      // 100 x 0.3 is just below 30 in extended precision, 30 once rounded to single.
      {"Swap", "first half", 100, 2, 0.3, {}, false, 1, "A70@30,1 B30@40,1"},
      {"Swap", "second half", 100, 2, 0.8, {}, false, 1, "A20@20,1 B80@0,1"},
      {"Swap", "the halves meet", 100, 2, 0.5, {}, false, 0, "A50@50,0 B50@0,0"},
      {"Swap", "Progress 0", 100, 2, 0.0, {}, false, 0, "A100@0,0"},
      {"Swap", "Progress 1", 100, 2, 1.0, {}, false, 0, "B100@0,0"},
      {"Swap", "Direction 2 is horizontal", 100, 2, 0.3, {{"Direction", 2}}, false, 0, "A70@30,0 B30@40,0"},
      {"Swap", "vertical: the low end at the bottom", 2, 100, 0.3, {{"Direction", 1}}, true, 1, "A70@30,1 B30@40,1"},
      {"Swap", "vertical, second half", 3, 100, 0.8, {{"Direction", 1}, {"Divide_X", 2}}, true, 0,
       "A20@20,0 B80@0,0"},
      {"Swap", "vertical, beyond 2 x 1 columns", 3, 100, 0.8, {{"Direction", 1}, {"Divide_X", 2}}, true, 2, ".100"},
      // Cells of 33: s = 9, the last column never written.
      {"Swap", "three cells", 100, 2, 0.3, {{"Divide_X", 3}}, false, 0,
       "A24@9,0 B9@15,0 A24@42,0 B9@48,0 A24@75,0 B9@81,0 .1"},
      {"Swap", "Divide_Y leaves the top row", 4, 10, 0.5, {{"Divide_Y", 3}}, false, 9, ".4"},
      {"Swap", "Divide_X 0 draws nothing", 10, 2, 0.5, {{"Divide_X", 0}}, false, 0, ".10"},
      {"Swap", "a division beyond the width", 10, 2, 0.5, {{"Divide_X", INT32_MAX}}, false, 0, ".10"},
      {"Sliding Boxes", "Progress 0 is A", 720, 1, 0.0, {}, false, 0, "A720@0,0"},
      {"Sliding Boxes", "720: eight boxes of 90 fill the width", 720, 1, 1.0, {}, false, 0, "B720@0,0"},
      {"Sliding Boxes", "90: boxes of 11 leave two columns of A", 90, 1, 1.0, {}, false, 0, "A2@0,0 B88@2,0"},
      // T = 43: the first box, wholly inside, its right edge at 43.
      {"Sliding Boxes", "the first box on its way", 100, 3, 0.1, {}, false, 2, "A30@0,2 B13@87,2 A57@43,2"},
      // T = 106: the second box entering, 6 columns of it shown.
      {"Sliding Boxes", "the second box entering", 100, 1, 0.245, {}, false, 0, "B6@81,0 A81@6,0 B13@87,0"},
      // float(3240) x float(1/3) is 1080; in double the product is just below it.
      {"Sliding Boxes", "the product in single precision", 720, 1, 1.0 / 3.0, {}, false, 0,
       "A270@0,0 B90@540,0 A270@360,0 B90@630,0"},
      {"Sliding Boxes", "below 4 columns the boxes are empty", 3, 1, 0.5, {}, false, 0, "A3@0,0"},
      {"Sliding Boxes", "Progress beyond 1 stops at the last stage", 100, 1, 7.0, {}, false, 0, "B100@0,0"},
      {"Sliding Quarters", "Progress 0 is A", 100, 80, 0.0, {}, false, 10, "A100@0,10"},
      {"Sliding Quarters", "Progress 1 is B", 100, 80, 1.0, {}, false, 70, "B100@0,70"},
      {"Sliding Quarters", "beyond 1: phase 0, all A", 100, 80, 1.01, {}, false, 70, "A100@0,70"},
      // s = 20, t = 16: Q1 shifted in its rows 0..23, B in its rows 24..39.
      {"Sliding Quarters", "phase 1, shifted rows", 100, 80, 0.1, {}, false, 0, "A30@20,16 B20@30,0 A50@50,0"},
      {"Sliding Quarters", "phase 1, trailing rows", 100, 80, 0.1, {}, false, 24, "B50@0,24 A50@50,24"},
      // s = 75: phase 2 with (25, 20); Q1 B, Q3 and Q4 A.
      {"Sliding Quarters", "phase 2, shifted rows", 100, 80, 0.375, {}, false, 70, "A50@0,70 B25@50,70 A25@50,50"},
      // 200 x 0.3 is just below 60 in extended precision: s = 59, phase 2 with (9, 7).
      {"Sliding Quarters", "the travel in extended precision", 100, 80, 0.3, {}, false, 79,
       "A50@0,79 B9@50,79 A41@50,72"},
      // Phase 1 on a tall frame, t = 57 > hh = 50: the B fill covers rows 0..56, into Q4.
      {"Sliding Quarters", "the trailing fill runs into Q4", 10, 100, 0.29, {}, false, 53, "B5@0,53 A5@5,53"},
      // Phase 2 with t = 58: the B fill of rows 50..107 stops at the top row.
      {"Sliding Quarters", "fills clipped to the frame", 10, 100, 0.54, {}, false, 99, "A5@0,99 B5@5,99"},
      {"Sliding Quarters", "phase 3", 100, 80, 0.6, {}, false, 10, "B69@0,10 A31@50,25"},
      {"Sliding Quarters", "phase 4, shifted rows", 100, 80, 0.85, {}, false, 60, "A31@19,45 B69@31,60"},
      {"Flying Carpet", "a plain slide from the left", 100, 80, 0.5, {{"Amplitude", 0}}, false, 7, "B50@50,7 A50@50,7"},
      {"Flying Carpet", "the trough at column 12 is 4 lower", 100, 80, 0.5, {{"Amplitude", 10}}, true, 12,
       "B76@4,62 A4@76,12"},
      {"Flying Carpet", "the same from the right at column 87", 100, 80, 0.5, {{"Amplitude", 10}, {"Direction", 1}},
       true, 87, "B76@4,37 A4@76,87"},
      {"Flying Carpet", "a plain slide from the top: B's bottom leads", 100, 80, 0.25,
       {{"Amplitude", 0}, {"Direction", 2}}, true, 30, "A60@0,30 B20@0,30"},
  };
  for (const ReadsCase& c : cases) {
    const emu::Frame out = RenderCodedClips(c.effect, c.w, c.h, c.progress, c.values);
    EXPECT_EQ(Reads(out, !c.column, c.line, true), c.reads) << c.effect << ": " << c.what;
  }
}

TEST(SlidingBoxes, ReadsItsDirectionAsTheHostsFieldZero) {
  const emu::Frame a = Coded(40, 3, kTagA), b = Coded(40, 3, kTagB);
  for (const int32_t direction : {0, 1, 2, 3, 4, -1}) {
    emu::Instance boxes(Library(), Effect(Library(), "Sliding Boxes"));
    EXPECT_NE(std::find(boxes.defaultsSet().begin(), boxes.defaultsSet().end(), "SetFieldDefault(field 0, 0)"),
              boxes.defaultsSet().end());
    // The user (or another effect) has given the host's field 0 a value.
    Library().table().SetFieldDefault(const_cast<t_KrRenderInfo*>(&boxes.record()), 0, 0, direction);
    emu::Frame out(40, 3, kUntouched);
    ASSERT_EQ(boxes.Render(a, b, out, 0.5), 1);
    const bool draws = direction != 1 && direction != 2 && direction != 3;
    EXPECT_EQ(out.pixels == Filled(40, 3, kUntouched).pixels, !draws) << direction;
    EXPECT_TRUE(boxes.diagnostics().empty());
    EXPECT_EQ(boxes.fieldZeroCalls().back(), "GetFieldValue(field 0)");
  }
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

constexpr unsigned kSeed = 4711;

// One draw per line while the wipe is incomplete. The last line's counter is
// 0, so its edge is the nominal one whatever its draw.
TEST(Shredder, DrawsOneEdgePerLineInOrder) {
  const struct {
    int32_t w, h;
    double progress;
    int32_t direction;
    const char* lastLine;  // the top row, or the rightmost column from the bottom
  } cases[] = {
      {50, 40, 0.3, 0, "B15 A35"}, {50, 40, 0.3, 1, "A35 B15"},   {50, 40, 0.3, 7, "B15 A35"},
      {13, 60, 0.8, 3, "B48 A12"}, {13, 60, 0.8, 2, "A12 B48"},   {50, 40, 0.0, 0, "A50"},
      {40, 1, 0.25, 0, "B10 A30"}, {2100, 3, 0.6, 3, "B1 A2"},  // more columns than one band of the painter
  };
  for (const auto& c : cases) {
    const bool rows = c.direction != 2 && c.direction != 3;
    const std::vector<int> draws = RandAfterSrand(kSeed, static_cast<size_t>(rows ? c.h : c.w) + 1);
    std::srand(kSeed);
    const emu::Frame out = RenderCodedClips("Shredder", c.w, c.h, c.progress, {{"Direction", c.direction}});
    EXPECT_EQ(std::rand(), draws.back()) << "one draw per line, direction " << c.direction;
    EXPECT_EQ(rows ? RowRuns(out, c.h - 1) : ColumnRuns(out, c.w - 1), c.lastLine) << "direction " << c.direction;
    for (int32_t y = 0; y < c.h; ++y) {
      for (int32_t x = 0; x < c.w; ++x) ASSERT_EQ(out.At(x, y) & 0xFFFFFF, Code(0, x, y)) << "read in place";
    }
  }
}

TEST(Shredder, MakesNoDrawOnceTheWipeIsComplete) {
  const double inf = std::numeric_limits<double>::infinity();
  for (const double p : {1.0, 1.5}) {
    for (const int32_t direction : {0, 2}) {
      const int expected = RandAfterSrand(kSeed, 1)[0];
      std::srand(kSeed);
      const emu::Frame out = RenderCodedClips("Shredder", 20, 10, p, {{"Direction", direction}});
      EXPECT_EQ(std::rand(), expected) << p;
      EXPECT_EQ(out.pixels, Coded(20, 10, kTagB).pixels) << p;
    }
  }
  // The conversion of an infinite or NaN reach gives INT32_MIN: draws, and every edge held to the frame.
  for (const double p : {inf, -inf, std::numeric_limits<double>::quiet_NaN()}) {
    const emu::Frame out = RenderCodedClips("Shredder", 20, 10, p);
    for (int32_t y = 0; y < 10; ++y) EXPECT_NE(RowRuns(out, y).find('A'), std::string::npos) << p;
  }
}

}  // namespace
}  // namespace krl::test
