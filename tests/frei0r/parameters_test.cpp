// How frei0r values in 0..1 become field values: the nearest step, held to
// 0..1, NaN read as 0; and every transition's reported defaults mean its
// init's defaults.
#include "frei0r/parameters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "test_support.h"

namespace krl::frei0r {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

emu::DeclaredField LongField(double low, double high) {
  emu::DeclaredField f;
  f.kind = "Long";
  f.hasRange = true;
  f.minimum = low;
  f.maximum = high;
  return f;
}

TEST(Frei0rParameters, NumbersTakeTheNearestStepHeldToTheRange) {
  const emu::DeclaredField pens = LongField(1, 8), wide = LongField(-2147483648.0, 2147483647.0);
  const struct {
    double x;
    int32_t pens;     // 1..8
    int32_t wide;     // the whole 32-bit range
  } kCases[] = {
      {0.0, 1, INT32_MIN}, {1.0, 8, INT32_MAX}, {0.5, 5, 0},  // a half rounds up: 1 + 3.5 -> 5
      {0.49, 4, -42949673}, {-3.0, 1, INT32_MIN}, {7.0, 8, INT32_MAX}, {kNaN, 1, INT32_MIN},
      {std::numeric_limits<double>::infinity(), 8, INT32_MAX},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(LongValue(pens, c.x), c.pens) << c.x;
    EXPECT_EQ(LongValue(wide, c.x), c.wide) << c.x;
  }
}

TEST(Frei0rParameters, SelectorsSpreadTheirItemsEvenly) {
  emu::DeclaredField f;
  f.kind = "Selector";
  f.items = {{"Left > Right", "", 10}, {"Right > Left", "", 20}, {"Top > Bottom", "", 30}, {"Bottom > Top", "", 40}};
  const struct {
    double x;
    int32_t value;
  } kCases[] = {{0.0, 10}, {1.0 / 6 - 1e-9, 10}, {1.0 / 6, 20}, {1.0 / 3, 20}, {0.6667, 30}, {1.0, 40},
                {2.0, 40}, {-1.0, 10}, {kNaN, 10}};
  for (const auto& c : kCases) EXPECT_EQ(SelectorValue(f, c.x), c.value) << c.x;
  f.items.clear();
  EXPECT_EQ(SelectorValue(f, 0.5), 0);
}

TEST(Frei0rParameters, BooleansColoursAndCurves) {
  EXPECT_FALSE(BoolValue(0.49));
  EXPECT_TRUE(BoolValue(0.5));
  EXPECT_FALSE(BoolValue(kNaN));
  const KrColor c = ColorValue({1.0f, 0.5f, std::nanf("")});
  EXPECT_EQ(c.Red, 255);
  EXPECT_EQ(c.Green, 128);
  EXPECT_EQ(c.Blue, 0);
  EXPECT_EQ(c.Alpha, 255);
  EXPECT_EQ(ColorValue({-2.0f, 9.0f, 0.0f}).Green, 255);
  emu::DeclaredField free;  // a curve without a range takes 0..1 as it is
  free.kind = "Alpha";
  EXPECT_EQ(CurveValue(free, 0.3), 0.3);
  emu::DeclaredField ranged = free;
  ranged.hasRange = true;
  ranged.minimum = -255;
  ranged.maximum = 255;
  EXPECT_EQ(CurveValue(ranged, 0.5), 0.0);
  EXPECT_EQ(CurveValue(ranged, kNaN), -255.0);
}

// A host sets every parameter to the default it was told: the instance must
// then hold its init's defaults (a curve: the value its curve starts with).
TEST(Frei0rParameters, ReportedDefaultsGiveBackTheInitDefaults) {
  emu::Host& host = test::Library();
  for (const emu::DeclaredEffect& effect : host.effects()) {
    const emu::Instance defaults(host, effect);
    emu::Instance set(host, effect);
    const std::vector<Param> params = ParamsOf(effect);
    const std::vector<ParamValue> reported = ValuesOf(params, defaults);
    ASSERT_EQ(params[0].kind, ParamKind::Progress);
    ASSERT_EQ(reported.size(), params.size());
    for (size_t i = 1; i < params.size(); ++i) {
      const Param& param = params[i];
      ApplyParam(param, reported[i], set);
      const std::string& key = param.field->key;
      const std::string where = effect.DisplayName() + " " + key;
      if (param.kind == ParamKind::Color) {
        const KrColor got = set.Color(key), want = defaults.Color(key);
        EXPECT_EQ(std::memcmp(&got, &want, sizeof got), 0) << where;
      } else if (param.kind == ParamKind::Curve) {
        EXPECT_NEAR(set.Curve(key).front().value, defaults.Curve(key).front().value, 1e-9) << where;
      } else {
        EXPECT_EQ(set.Value(key), defaults.Value(key)) << where;
      }
    }
  }
}

}  // namespace
}  // namespace krl::frei0r
