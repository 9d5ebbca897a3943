// Which clip shows. Brightness Plasma, pixel by pixel: the four threshold
// tests, their inclusive and exclusive sides, and the end frames they make.
// Flash Over, the whole frame: the first flash and the last gap of every
// variation, and the choice at the ends and beyond them.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "test_support.h"

namespace krl::test {
namespace {

// Pixels of brightness 0, 12749, 12750, 12751 and 25500 (11 blue + 59 green
// + 30 red). A and B hold the same colours and differ only in alpha, which
// the brightness ignores, so the output tells which clip each pixel is from.
const uint8_t kColours[][3] = {{0, 0, 0}, {215, 176, 0}, {199, 179, 0}, {242, 171, 0}, {255, 255, 255}};

emu::Frame Row(uint8_t alpha) {
  emu::Frame f(5, 1);
  for (int i = 0; i < 5; ++i) f.At(i, 0) = emu::Pixel(kColours[i][2], kColours[i][1], kColours[i][0], alpha);
  return f;
}

// "A" or "B" per pixel.
std::string Sources(int32_t vaCut, int32_t darkToLight, double progress) {
  emu::Instance plasma(Library(), Effect(Library(), "Brightness Plasma"));
  plasma.SetValue("VA_CUT", vaCut);
  plasma.SetValue("DARK2LIGHT", darkToLight);
  const emu::Frame a = Row(0xFF), b = Row(0x80);
  emu::Frame out(5, 1);
  EXPECT_EQ(plasma.Render(a, b, out, progress), 1);
  std::string sources;
  for (int i = 0; i < 5; ++i) sources += out.At(i, 0) == a.At(i, 0) ? 'A' : out.At(i, 0) == b.At(i, 0) ? 'B' : '?';
  return sources;
}

TEST(BrightnessPlasma, KeepsAOnTheSideOfTheThresholdEachModeNames) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    int32_t vaCut, darkToLight;
    double progress;
    const char* expected;  // for brightness 0, 12749, 12750, 12751, 25500
  } rows[] = {
      // Half way the threshold is 12750 in both directions.
      {1, 1, 0.5, "BBAAA"},  // A's brightness >= T
      {1, 0, 0.5, "AAABB"},  // A's brightness <= T
      {0, 1, 0.5, "BBBAA"},  // B's brightness > T
      {0, 0, 0.5, "AABBB"},  // B's brightness < T
      // The ends: the threshold's own side decides what survives.
      {1, 1, 1.0, "BBBBA"},  // only white A stays
      {1, 0, 1.0, "ABBBB"},  // only black A stays
      {0, 1, 0.0, "BAAAA"},  // black B shows at once
      {0, 0, 0.0, "AAAAB"},  // white B shows at once
      // Any non-zero value counts as set.
      {-1, 7, 0.5, "BBAAA"},
      // Beyond the ends the sweep just goes on. A NaN sweeps to INT32_MIN, and
      // 25500 minus that wraps to a large negative threshold.
      {1, 1, 2.0, "BBBBB"}, {1, 1, nan, "AAAAA"}, {1, 0, nan, "BBBBB"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Sources(row.vaCut, row.darkToLight, row.progress), row.expected)
        << "VA_CUT " << row.vaCut << " DARK2LIGHT " << row.darkToLight << " at " << row.progress;
  }
}

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

TEST(FlashOver, VariationsSetTheGapShareAndTheFlashLength) {
  const struct {
    int32_t variation;
    int32_t firstFlashStart, firstFlashEnd, staysFrom;
  } rows[] = {
      {1, 2000, 2040, 9817}, {2, 2000, 2080, 9646}, {3, 2000, 2150, 9311}, {4, 2000, 2300, 8656},
      {5, 1428, 1458, 9784}, {6, 1428, 1478, 9660}, {7, 1428, 1528, 9373}, {8, 1428, 1628, 8650},
      // Outside the declared range: the default's pair.
      {0, 2000, 2300, 8656}, {INT32_MIN, 2000, 2300, 8656},
  };
  for (const auto& row : rows) {
    const std::pair<int32_t, char> shown[] = {{row.firstFlashStart - 1, 'A'}, {row.firstFlashStart, 'B'},
                                              {row.firstFlashEnd, 'B'},       {row.firstFlashEnd + 1, 'A'},
                                              {row.staysFrom - 1, 'A'},       {row.staysFrom, 'B'}};
    for (const auto& [k, clip] : shown) EXPECT_EQ(Shown(row.variation, At(k)), clip) << row.variation << " at " << k;
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
