// The Hilbert walker: a walk covers its block once and stands on its last
// cell (the walk order and the budget that stops it show in Hilbert Mosaic's
// tests).
#include <gtest/gtest.h>

#include <cstring>

#include "raster/hilbert.h"

namespace krl {
namespace {

TEST(HilbertWalk, AnOrderCoversItsBlockOnce) {
  std::memset(gHilbertWalk.marks, 0, sizeof gHilbertWalk.marks);
  gHilbertWalk.r = gHilbertWalk.c = 0;
  gHilbertWalk.marks[0] = 1;
  gHilbertWalk.budget = 1000;
  hilbert_a(3);
  EXPECT_EQ(gHilbertWalk.budget, 1000u - 255u) << "4^4 - 1 steps";
  EXPECT_EQ(gHilbertWalk.r, 15);
  EXPECT_EQ(gHilbertWalk.c, 0);
  for (int32_t flag : gHilbertWalk.marks) EXPECT_EQ(flag, 1);
  StartHilbertWalk(16);  // the whole level-2 walk stands on its last cell
  EXPECT_EQ(gHilbertWalk.r, 3);
  EXPECT_EQ(gHilbertWalk.c, 0);
}

}  // namespace
}  // namespace krl
