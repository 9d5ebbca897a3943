// Doors: the depth's integer square root, the bounds on the turn at both
// ends, and the closing doors with and without TransType.
#include <gtest/gtest.h>

#include "transitions/pengrid/pen_grid_support.h"
#include "transitions/threed/door_panels.h"

namespace krl::test {
namespace {

TEST(Doors, SquareRootAsTheDoorsTakeIt) {
  // The guess 1 overshoots to 2 and back for 2 and 3; with several steps the
  // last one rounds: 24 gives 5, 99 gives 10.
  const std::pair<int32_t, int32_t> cases[] = {{-5, 0},   {0, 0},    {1, 1},      {2, 1},      {3, 1},
                                               {17, 4},   {24, 5},   {99, 10},    {100, 10},   {921599, 960},
                                               {921600, 960}, {2000000, 1414}, {1 << 30, 32768}};
  for (const auto& [n, root] : cases) EXPECT_EQ(DoorSquareRoot(n), root) << n;
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
      // A pen 3 wide beyond each free edge (w = 1: columns 2 .. 4).
      {"the pen at Progress 1", 20, 1, 1.0, {{"BorderWidth", 3}}, {"A1 P3 B12 P3 A1"}},
  };
  ExpectRows("Doors", cases);
}

}  // namespace
}  // namespace krl::test
