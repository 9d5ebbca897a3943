// Doors: the depth's integer square root, the bounds on the turn at both
// ends, the closing doors with and without TransType, and the pen and edge
// bytes at a cut row worked out by hand.
#include <gtest/gtest.h>

#include "transitions/pengrid/pen_grid_support.h"
#include "transitions/threed/door_panels.h"

namespace krl::test {
namespace {

TEST(Doors, SquareRootAsTheDoorsTakeIt) {
  const struct {
    int32_t n, root;
  } cases[] = {
      {-5, 0}, {0, 0}, {1, 1}, {4, 2}, {16, 4}, {17, 4}, {19, 4},
      // The guess 1 overshoots to 2 and back, ten steps long: 1.
      {2, 1}, {3, 1},
      // Several steps, and the last step rounds: 24 gives 5, 99 gives 10.
      {8, 3}, {15, 4}, {24, 5}, {99, 10}, {100, 10}, {300, 17}, {1000, 32},
      {921599, 960}, {921600, 960}, {2000000, 1414}, {1 << 20, 1024}, {1 << 30, 32768},
  };
  for (const auto& c : cases) EXPECT_EQ(DoorSquareRoot(c.n), c.root) << c.n;
}

TEST(Doors, TurnsBetweenOnePlaceAndTheHinge) {
  const RowsCase cases[] = {
      // Progress 1: hw = 10, t = 9, w = 1; depth isqrt(99) = 10, bulge 2, slope 2 rows a column. Column
      // c = 0 is door all the way, c = 1 from r = 2: rows 2 .. 6 (r = min(y, 8 - y)).
      {"Progress 1 leaves a door one column long", 20, 9, 1.0, {},
       {"A1 B18 A1", "A1 B18 A1", "A2 B16 A2", "A2 B16 A2", "A2 B16 A2", "A2 B16 A2", "A2 B16 A2", "A1 B18 A1",
        "A1 B18 A1"}},
      // Progress 0: hw = 50, w = 49, slope 167: from c = 25 on the edge lies a row in (e = 1), so the top
      // and bottom rows show B over the cell's middle half; every other row is A, the doors meeting.
      {"Progress 0 turns the doors by one column", 100, 3, 0.0, {}, {"A25 B50 A25", "A100", "A25 B50 A25"}},
      // Closing: the doors carry B; at 0 they stand open (w = 1) over A, at 1 nearly shut.
      {"closing at 0", 20, 1, 0.0, {{"IsDoorClosing", 1}}, {"B1 A18 B1"}},
      {"closing at 1", 100, 3, 1.0, {{"IsDoorClosing", 1}}, {"B25 A50 B25", "B100", "B25 A50 B25"}},
      // TransType 1 as well: the doors carry A again and close over B.
      {"closing with TransType 1 at 0", 20, 1, 0.0, {{"IsDoorClosing", 1}, {"TransType", 1}}, {"A1 B18 A1"}},
      {"closing with TransType 1 at 1", 100, 1, 1.0, {{"IsDoorClosing", 1}, {"TransType", 1}}, {"A25 B50 A25"}},
      // A pen 3 wide beyond each free edge (w = 1: columns 2 .. 4), ph = ((3 * 8192 * 3) >> 14) + 3 = 7 rows
      // deep beyond the slanted edges.
      {"the pen at Progress 1", 20, 1, 1.0, {{"BorderWidth", 3}}, {"A1 P3 B12 P3 A1"}},
  };
  ExpectRows("Doors", cases);
}

TEST(Doors, CutRowMixesQuartersOfDoorAndOutside) {
  // 40 x 21 at 0.5: hw = 20, w = 10, depth isqrt(300) = 17, bulge 4, slope 1638, ratio 8192 (box radius 1).
  // Column 5: s = 8190, e = 1, q = 3. Column 9: s = 14742, e = 3, q = 2.
  constexpr uint32_t kA = 0xFF40C020, kB = 0xFFC04080;
  const struct {
    const char* what;
    int32_t borderWidth;
    int32_t x, y;
    uint32_t expected;
  } cases[] = {
      // Row 1 (r = 1 = e): (A * 1 + B * 3) >> 2 per byte.
      {"the cut door mixes with B", 0, 5, 1, 0xFFA06068},
      {"the row below shows B", 0, 5, 0, kB},
      {"the row above is the door", 0, 5, 2, kA},
      // Pen 2: ph = ((2 * 1638 * 3) >> 14) + 2 = 2. Column 5: (A * 1 + pen * 3) >> 2.
      {"with a pen the cut door mixes with the pen", 2, 5, 1, 0xFFCF4808},
      // Column 9, row 1: r + ph = 3 = e, q = 2: (B * 2 + pen * 2) >> 2.
      {"the pen's own cut mixes with B", 2, 9, 1, 0xFFDF3040},
      {"inside the pen", 2, 9, 2, kPen},
      {"the right door mirrors it", 2, 30, 1, 0xFFDF3040},
      {"and the upper half", 2, 30, 19, 0xFFDF3040},
  };
  for (const auto& c : cases) {
    emu::Instance instance(Library(), Effect(Library(), "Doors"));
    instance.SetColor("Color", kPenFromHost);
    instance.SetValue("BorderWidth", c.borderWidth);
    instance.SetValue("IsAntiAlias", 1);
    emu::Frame out(40, 21, kUntouched);
    ASSERT_EQ(instance.Render(Filled(40, 21, kA), Filled(40, 21, kB), out, 0.5), 1);
    EXPECT_EQ(out.At(c.x, c.y), c.expected) << c.what;
  }
}

}  // namespace
}  // namespace krl::test
