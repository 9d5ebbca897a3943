// Shredder: one rand() draw per row (or column) in the stated order while
// the wipe is incomplete, the edge jittered by the 32-bit wrapping product,
// and the four directions. The library shares the process's rand(), so
// each case seeds it first.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

constexpr unsigned kSeed = 4711;

std::vector<int> RandAfterSeed(size_t count) {
  std::srand(kSeed);
  std::vector<int> values(count);
  for (int& v : values) v = std::rand();
  return values;
}

// The edge of a line with counter k drawn r: reach - (k * r wrapped) % (size - reach), in 0..size.
int32_t Edge(int32_t reach, int32_t size, int32_t k, int r) {
  const int32_t product = static_cast<int32_t>(static_cast<uint32_t>(k) * static_cast<uint32_t>(r));
  return std::clamp(reach - product % (size - reach), 0, size);
}

std::string Runs(char first, int32_t n, char second, int32_t m) {
  std::string out;
  if (n > 0) out += first + std::to_string(n);
  if (m > 0) out += std::string(out.empty() ? "" : " ") + second + std::to_string(m);
  return out;
}

TEST(Shredder, DrawsOneEdgePerLineInOrder) {
  const struct {
    int32_t w, h;
    double progress;
    int32_t direction;
  } cases[] = {
      {50, 40, 0.3, 0}, {50, 40, 0.3, 1}, {50, 40, 0.3, 7}, {13, 60, 0.8, 3}, {13, 60, 0.8, 2},
      {50, 40, 0.0, 0}, {2100, 3, 0.6, 3},  // more columns than one band of the painter
  };
  for (const auto& c : cases) {
    const bool rows = c.direction != 2 && c.direction != 3;
    const int32_t lines = rows ? c.h : c.w, size = rows ? c.w : c.h;
    const int32_t reach = static_cast<int32_t>(size * c.progress);
    const std::vector<int> draws = RandAfterSeed(static_cast<size_t>(lines) + 1);
    std::srand(kSeed);
    const emu::Frame out = RenderCodedClips("Shredder", c.w, c.h, c.progress, {{"Direction", c.direction}});
    EXPECT_EQ(std::rand(), draws.back()) << "one draw per line";
    for (int32_t i = 0; i < lines; ++i) {
      // Rows from the bottom, columns from the left, the counter falling from lines - 1 to 0.
      const int32_t e = Edge(reach, size, lines - 1 - i, draws[static_cast<size_t>(i)]);
      std::string expected;
      switch (c.direction) {
        case 1: expected = Runs('A', size - e, 'B', e); break;
        case 2: expected = Runs('A', size - e, 'B', e); break;
        case 3: expected = Runs('B', e, 'A', size - e); break;
        default: expected = Runs('B', e, 'A', size - e); break;
      }
      ASSERT_EQ(rows ? RowRuns(out, i) : ColumnRuns(out, i), expected) << c.direction << ", line " << i;
    }
    if (c.progress == 0.3) {  // the last line has k = 0 and the nominal edge
      EXPECT_EQ(RowRuns(out, c.h - 1), c.direction == 1 ? "A35 B15" : "B15 A35");
    }
  }
}

TEST(Shredder, MakesNoDrawOnceTheWipeIsComplete) {
  const double inf = std::numeric_limits<double>::infinity();
  for (const double p : {1.0, 1.5}) {
    for (const int32_t direction : {0, 2}) {
      const int expected = RandAfterSeed(1)[0];
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

TEST(Shredder, AFrameOneRowHighWipesCleanly) {
  std::srand(kSeed);
  const emu::Frame out = RenderCodedClips("Shredder", 40, 1, 0.25);
  EXPECT_EQ(RowReads(out, 0), "B10@0 A30@10");
}

}  // namespace
}  // namespace krl::test
