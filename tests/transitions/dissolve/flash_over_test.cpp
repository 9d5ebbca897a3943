// Flash Over: the default flash intervals, the variation table, and the
// whole-frame choice at the ends and beyond them.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <utility>

#include "test_support.h"

namespace krl::test {
namespace {

// 'A' or 'B': which whole clip the frame at time k (of 10000) shows.
char Shown(int32_t variation, double progress) {
  emu::Instance flash(Library(), Effect(Library(), "Flash Over"));
  flash.SetValue("Variation", variation);
  const emu::Frame a = emu::SampleClipA(9, 5), b = emu::SampleClipB(9, 5);
  emu::Frame out(9, 5);
  EXPECT_EQ(flash.Render(a, b, out, progress), 1);
  return out.pixels == a.pixels ? 'A' : out.pixels == b.pixels ? 'B' : '?';
}

// Half a unit in, so that 10000 x Progress truncates to k itself.
double At(int32_t k) { return (k + 0.5) / 10000.0; }

TEST(FlashOver, DefaultFlashesComeCloserUntilBStays) {
  const std::pair<int32_t, int32_t> flashes[] = {{2000, 2300}, {3600, 3900}, {4880, 5180}, {5904, 6204},
                                                 {6723, 7023}, {7378, 7678}, {7902, 8202}, {8321, 8621}};
  for (const auto& [first, last] : flashes) {
    EXPECT_EQ(Shown(4, At(first - 1)), 'A') << first;
    EXPECT_EQ(Shown(4, At(first)), 'B') << first;
    EXPECT_EQ(Shown(4, At(last)), 'B') << last;
    EXPECT_EQ(Shown(4, At(last + 1)), 'A') << last;
  }
  // After the flash at 8656 the next gap, 268, is shorter than a flash.
  EXPECT_EQ(Shown(4, At(8655)), 'A');
  for (const int32_t k : {8656, 8956, 8957, 9500, 9999}) EXPECT_EQ(Shown(4, At(k)), 'B') << k;
}

TEST(FlashOver, VariationsSetTheGapShareAndTheFlashLength) {
  const struct {
    int32_t variation;
    int32_t firstFlashStart, firstFlashEnd, staysFrom;
  } rows[] = {
      {1, 2000, 2040, 9817}, {2, 2000, 2080, 9646}, {3, 2000, 2150, 9311}, {4, 2000, 2300, 8656},
      {5, 1428, 1458, 9784}, {6, 1428, 1478, 9660}, {7, 1428, 1528, 9373}, {8, 1428, 1628, 8650},
      // Outside the declared range: the default's pair.
      {0, 2000, 2300, 8656}, {9, 2000, 2300, 8656}, {-3, 2000, 2300, 8656}, {INT32_MIN, 2000, 2300, 8656},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Shown(row.variation, At(row.firstFlashStart - 1)), 'A') << row.variation;
    EXPECT_EQ(Shown(row.variation, At(row.firstFlashStart)), 'B') << row.variation;
    EXPECT_EQ(Shown(row.variation, At(row.firstFlashEnd)), 'B') << row.variation;
    EXPECT_EQ(Shown(row.variation, At(row.firstFlashEnd + 1)), 'A') << row.variation;
    EXPECT_EQ(Shown(row.variation, At(row.staysFrom - 1)), 'A') << row.variation;
    EXPECT_EQ(Shown(row.variation, At(row.staysFrom)), 'B') << row.variation;
  }
}

TEST(FlashOver, ProgressAsTheHostGivesIt) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  const struct {
    double progress;
    char shown;
  } rows[] = {
      {0.0, 'A'}, {1.0, 'B'},   {0.2, 'B'},  // the first flash starts exactly at 0.2
      {0.19, 'A'}, {0.231, 'A'}, {0.23, 'B'},
      {-0.5, 'A'}, {1.5, 'B'},  {nan, 'A'}, {inf, 'A'}, {-inf, 'A'},  // no time: INT32_MIN
  };
  for (const auto& row : rows) EXPECT_EQ(Shown(4, row.progress), row.shown) << row.progress;
}

}  // namespace
}  // namespace krl::test
