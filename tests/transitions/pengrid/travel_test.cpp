// Wipe, Slide and Push: in every cell B comes in from the Direction side
// behind a pen band clipped to the cell, the last cell taking the remainder
// and the division along the travel ignored. Wipe uncovers B and A in place;
// Slide moves B in by n pixels over a still A; Push moves A on by n, by n + t
// for Left > Right alone. Every read stays inside its cell.
#include <gtest/gtest.h>

#include <limits>

#include "pen_grid_support.h"

namespace krl::test {
namespace {

// A render and the reads of every row for horizontal travel, every column
// (from the bottom) for vertical; the cases travel along their longer side.
struct MoveCase {
  const char* effect;
  int32_t w, h;
  double progress;
  FieldValues values;
  const char* reads;
};

TEST(Travel, BComesInBehindItsPenInEveryCell) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const MoveCase cases[] = {
      // Cells 0..32, 33..65 and 66..99: the last takes the remainder.
      {"Wipe", 100, 9, 0.5, {{"Divide_X", 3}, {"Divide_Y", 5}}, "B16@0 A17@16 B16@33 A17@49 B17@66 A17@83"},
      {"Wipe", 100, 2, 0.0, {{"Divide_X", 3}, {"BorderWidth", 3}}, "P3 A30@3 P3 A30@36 P3 A31@69"},
      {"Wipe", 100, 2, 0.3, {{"Divide_X", 3}, {"Direction", 1}, {"BorderWidth", 2}},
       "A22@0 P2 B9@24 A22@33 P2 B9@57 A22@66 P2 B10@90"},
      // 6-pixel cells, n = 3: the pen fills the rest of the cell and no more.
      {"Wipe", 18, 2, 0.5, {{"Divide_X", 3}, {"BorderWidth", 10}}, "B3@0 P3 B3@6 P3 B3@12 P3"},
      // Rows 0..4 and 5..9, n = 2; "Top" is the highest row index.
      {"Wipe", 3, 10, 0.4, {{"Direction", 2}, {"Divide_Y", 2}, {"Divide_X", 4}, {"BorderWidth", 1}},
       "A2@0 P1 B2@3 A2@5 P1 B2@8"},
      {"Wipe", 3, 10, 0.4, {{"Direction", 3}, {"Divide_Y", 2}, {"Divide_X", 4}, {"BorderWidth", 1}},
       "B2@0 P1 A2@3 B2@5 P1 A2@8"},
      {"Wipe", 10, 2, 0.5, {{"Divide_X", 0}}, ".10"},
      {"Wipe", 10, 2, 0.5, {{"Divide_X", INT32_MAX}}, "B5@0 A5@5"},
      {"Wipe", 10, 2, nan, {{"Divide_X", 2}, {"BorderWidth", 2}}, "P2 A3@2 P2 A3@7"},
      {"Wipe", 10, 2, 0.5, {{"Divide_X", 2}, {"BorderWidth", INT32_MAX}}, "B2@0 P3 B2@5 P3"},
      {"Wipe", 7, 1, 0.0, {{"Divide_X", 8}, {"BorderWidth", 1}}, "P1 A6@1"},
      // Up to eight cells are painted row by row through all of them, more one after the other.
      {"Wipe", 24, 2, 0.5, {{"Divide_X", 12}},
       "B1@0 A1@1 B1@2 A1@3 B1@4 A1@5 B1@6 A1@7 B1@8 A1@9 B1@10 A1@11 "
       "B1@12 A1@13 B1@14 A1@15 B1@16 A1@17 B1@18 A1@19 B1@20 A1@21 B1@22 A1@23"},
      // B's right half, the pen, then A from the cell's start: A is pushed by n + t.
      {"Push", 100, 3, 0.5, {{"BorderWidth", 4}}, "B50@50 P4 A46@0"},
      // A's columns 50..95, the pen hiding A's 96..99, then B's left half.
      {"Push", 100, 3, 0.5, {{"BorderWidth", 4}, {"Direction", 1}}, "A46@50 P4 B50@0"},
      {"Push", 20, 2, 0.5, {{"BorderWidth", 2}, {"Divide_X", 2}}, "B5@5 P2 A3@0 B5@15 P2 A3@10"},
      {"Push", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 2}}, "A5@4 P1 B4@0"},
      {"Push", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 3}}, "B4@6 P1 A5@1"},
      {"Push", 7, 4, 0.0, {{"BorderWidth", 2}, {"Divide_X", 2}}, "P2 A1@0 P2 A2@3"},
      {"Slide", 100, 3, 0.5, {{"Divide_X", 3}}, "B16@17 A17@16 B16@50 A17@49 B17@83 A17@83"},
      {"Slide", 100, 3, 0.0, {{"BorderWidth", 4}}, "P4 A96@4"},
      {"Slide", 3, 10, 0.4, {{"BorderWidth", 1}, {"Direction", 2}}, "A5@0 P1 B4@0"},
  };
  for (const auto& c : cases) {
    const emu::Frame out = RenderCoded(c.effect, c.w, c.h, c.progress, c.values);
    const bool acrossColumns = c.w > c.h;
    for (int32_t line = 0; line < (acrossColumns ? c.h : c.w); ++line) {
      ASSERT_EQ(acrossColumns ? RowReads(out, line) : ColumnReads(out, line), c.reads)
          << c.effect << " " << c.w << "x" << c.h << " at " << c.progress << ", line " << line;
    }
  }
}

}  // namespace
}  // namespace krl::test
