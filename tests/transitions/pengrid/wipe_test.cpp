// Wipe and the pen grid: cell division with the remainder in the last cell,
// the division along the travel ignored, the pen band clipped to its cell,
// and B and A read in place.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

enum Line { kEveryRow, kEveryColumn };

struct WipeCase {
  const char* what;
  int32_t w, h;
  double progress;
  FieldValues values;
  Line line;        // horizontal travels give identical rows, vertical ones identical columns
  const char* runs;  // of every such line, columns from the left, rows from the bottom
};

void ExpectEveryLine(const emu::Frame& out, Line line, const std::string& runs, const char* what) {
  const int32_t count = line == kEveryRow ? out.height : out.width;
  for (int32_t i = 0; i < count; ++i) {
    ASSERT_EQ(line == kEveryRow ? RowRuns(out, i) : ColumnRuns(out, i), runs) << what << ", line " << i;
  }
}

TEST(Wipe, UncoversBInEveryCellBehindItsPen) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const WipeCase cases[] = {
      // Cells 0..32, 33..65 and 66..99: the last takes the remainder.
      {"three cells at half way", 100, 4, 0.5, {{"Divide_X", 3}}, kEveryRow, "B16 A17 B16 A17 B17 A17"},
      {"Divide_Y ignored across columns", 100, 9, 0.5, {{"Divide_X", 3}, {"Divide_Y", 5}}, kEveryRow,
       "B16 A17 B16 A17 B17 A17"},
      {"Direction 7 is Left > Right", 100, 2, 0.5, {{"Divide_X", 3}, {"Direction", 7}}, kEveryRow,
       "B16 A17 B16 A17 B17 A17"},
      {"Direction -1 is Left > Right", 100, 2, 0.5, {{"Divide_X", 3}, {"Direction", -1}}, kEveryRow,
       "B16 A17 B16 A17 B17 A17"},
      {"the pen stands at the entry edge at 0", 100, 2, 0.0, {{"Divide_X", 3}, {"BorderWidth", 3}}, kEveryRow,
       "P3 A30 P3 A30 P3 A31"},
      {"Right > Left at 0, pen 4", 100, 2, 0.0, {{"Divide_X", 3}, {"Direction", 1}, {"BorderWidth", 4}}, kEveryRow,
       "A29 P4 A29 P4 A30 P4"},
      {"Right > Left at 0.3", 100, 2, 0.3, {{"Divide_X", 3}, {"Direction", 1}, {"BorderWidth", 2}}, kEveryRow,
       "A22 P2 B9 A22 P2 B9 A22 P2 B10"},
      // 6-pixel cells, n = 3: the pen fills the rest of the cell and no more.
      {"a pen wider than what is left", 18, 2, 0.5, {{"Divide_X", 3}, {"BorderWidth", 10}}, kEveryRow,
       "B3 P3 B3 P3 B3 P3"},
      {"B alone at 1 whatever the pen", 100, 2, 1.0, {{"Divide_X", 3}, {"BorderWidth", 10}}, kEveryRow, "B100"},
      {"no pen at thickness 0", 10, 2, 0.25, {}, kEveryRow, "B2 A8"},
      // Rows 0..4 and 5..9, n = 2; "Top" is the highest row index.
      {"Top > Bottom", 3, 10, 0.4, {{"Direction", 2}, {"Divide_Y", 2}, {"Divide_X", 4}, {"BorderWidth", 1}},
       kEveryColumn, "A2 P1 B2 A2 P1 B2"},
      {"Bottom > Top", 3, 10, 0.4, {{"Direction", 3}, {"Divide_Y", 2}, {"Divide_X", 4}, {"BorderWidth", 1}},
       kEveryColumn, "B2 P1 A2 B2 P1 A2"},
      {"Bottom > Top, remainder in the top row", 2, 11, 0.5, {{"Direction", 3}, {"Divide_Y", 2}}, kEveryColumn,
       "B2 A3 B3 A3"},
      // Outside the declared ranges: nothing leaves its cell, nothing crashes.
      {"Divide_X 0 draws nothing", 10, 2, 0.5, {{"Divide_X", 0}}, kEveryRow, ".10"},
      {"Divide_X negative draws nothing", 10, 2, 0.5, {{"Divide_X", -5}}, kEveryRow, ".10"},
      {"Divide_Y 0 draws nothing", 2, 10, 0.5, {{"Direction", 2}, {"Divide_Y", 0}}, kEveryColumn, ".10"},
      {"a division beyond the width leaves one cell", 10, 2, 0.5, {{"Divide_X", INT32_MAX}}, kEveryRow, "B5 A5"},
      {"Progress beyond 1 is 1", 10, 2, 1.5, {{"Divide_X", 2}, {"BorderWidth", 2}}, kEveryRow, "B10"},
      {"Progress below 0 is 0", 10, 2, -3.0, {{"Divide_X", 2}, {"BorderWidth", 2}}, kEveryRow, "P2 A3 P2 A3"},
      {"NaN Progress is 0", 10, 2, nan, {{"Divide_X", 2}, {"BorderWidth", 2}}, kEveryRow, "P2 A3 P2 A3"},
      {"a negative pen is none", 10, 2, 0.5, {{"BorderWidth", -4}}, kEveryRow, "B5 A5"},
      {"a huge pen stops at the cell", 10, 2, 0.5, {{"Divide_X", 2}, {"BorderWidth", INT32_MAX}}, kEveryRow,
       "B2 P3 B2 P3"},
      {"Right > Left, huge pen", 10, 2, 0.5, {{"Direction", 1}, {"BorderWidth", INT32_MAX}}, kEveryRow, "P5 B5"},
      {"one pixel", 1, 1, 0.0, {{"BorderWidth", 10}}, kEveryRow, "P1"},
      {"seven empty cells, the last one column wide", 1, 7, 0.0, {{"Divide_X", 8}, {"BorderWidth", 1}}, kEveryRow,
       "P1"},
      {"the last cell takes all 7 columns", 7, 1, 0.0, {{"Divide_X", 8}, {"BorderWidth", 1}}, kEveryRow, "P1 A6"},
      // Up to eight cells are painted row by row through all of them, more one after the other.
      {"twelve cells", 24, 2, 0.5, {{"Divide_X", 12}}, kEveryRow,
       "B1 A1 B1 A1 B1 A1 B1 A1 B1 A1 B1 A1 B1 A1 B1 A1 B1 A1 B1 A1 B1 A1 B1 A1"},
  };
  for (const WipeCase& c : cases) {
    const emu::Frame out = RenderCoded("Wipe", c.w, c.h, c.progress, c.values);
    ExpectEveryLine(out, c.line, c.runs, c.what);
    for (int32_t y = 0; y < out.height; ++y) {
      for (int32_t x = 0; x < out.width; ++x) {
        const uint32_t px = out.At(x, y);
        if (SourceOf(px) == 'A' || SourceOf(px) == 'B') {
          ASSERT_EQ(px & 0xFFFFFF, Code(0, x, y)) << c.what << ": B and A are read in place";
        }
      }
    }
  }
}

TEST(Wipe, ImageTwoFirstUncoversAOverB) {
  const emu::Frame out = RenderCoded("Wipe", 100, 2, 0.5, {{"Divide_X", 3}, {"TransType", 1}});
  EXPECT_EQ(RowRuns(out, 0), "A16 B17 A16 B17 A17 B17");
}

TEST(Wipe, DrawsTheHostsPenColourOpaque) {
  emu::Instance wipe(Library(), Effect(Library(), "Wipe"));
  wipe.SetValue("BorderWidth", 2);
  wipe.SetColor("Color", KrColor{0x10, 0x20, 0x30, 0x7F});
  const emu::Frame a = Filled(6, 1, 0x11111111), b = Filled(6, 1, 0x22222222);
  emu::Frame out(6, 1);
  ASSERT_EQ(wipe.Render(a, b, out, 0.5), 1);
  EXPECT_EQ(out.pixels, (std::vector<uint32_t>{0x22222222, 0x22222222, 0x22222222, 0xFF302010, 0xFF302010,
                                               0x11111111}));
}

}  // namespace
}  // namespace krl::test
