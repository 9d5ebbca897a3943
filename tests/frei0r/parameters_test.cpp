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

TEST(Frei0rParameters, EveryKindTakesTheNearestStepHeldToItsRange) {
  emu::DeclaredField pens, wide, selector, free, ranged;
  pens.kind = wide.kind = "Long";
  pens.hasRange = wide.hasRange = ranged.hasRange = true;
  pens.minimum = 1;
  pens.maximum = 8;
  wide.minimum = -2147483648.0;
  wide.maximum = 2147483647.0;
  selector.kind = "Selector";
  selector.items = {{"Left > Right", "", 10}, {"Right > Left", "", 20}, {"Top > Bottom", "", 30}, {"Bottom > Top", "", 40}};
  free.kind = ranged.kind = "Alpha";  // a curve without a range takes 0..1 as it is
  ranged.minimum = -255;
  ranged.maximum = 255;
  const struct {
    double x;
    int32_t pens, wide, item;
    bool on;
    double curve;  // of -255..255
  } rows[] = {
      {0.0, 1, INT32_MIN, 10, false, -255},  {1.0, 8, INT32_MAX, 40, true, 255},
      {0.5, 5, 0, 30, true, 0},  // a half rounds up: 1 + 3.5 -> 5
      {0.49, 4, -42949673, 20, false, -5.1}, {-3.0, 1, INT32_MIN, 10, false, -255},
      {7.0, 8, INT32_MAX, 40, true, 255},    {kNaN, 1, INT32_MIN, 10, false, -255},
      {std::numeric_limits<double>::infinity(), 8, INT32_MAX, 40, true, 255},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(LongValue(pens, row.x), row.pens) << row.x;
    EXPECT_EQ(LongValue(wide, row.x), row.wide) << row.x;
    EXPECT_EQ(SelectorValue(selector, row.x), row.item) << row.x;
    EXPECT_EQ(BoolValue(row.x), row.on) << row.x;
    EXPECT_NEAR(CurveValue(ranged, row.x), row.curve, 1e-9) << row.x;
  }
  // Selector items share 0..1 evenly, each nearest to its own step.
  for (const auto& [x, item] : {std::pair{1.0 / 6 - 1e-9, 10}, {1.0 / 6, 20}, {1.0 / 3, 20}, {0.6667, 30}}) {
    EXPECT_EQ(SelectorValue(selector, x), item) << x;
  }
  selector.items.clear();
  EXPECT_EQ(SelectorValue(selector, 0.5), 0);
  EXPECT_EQ(CurveValue(free, 0.3), 0.3);
  const KrColor c = ColorValue({1.0f, 0.5f, std::nanf("")});
  EXPECT_EQ((std::vector<int>{c.Red, c.Green, c.Blue, c.Alpha}), (std::vector<int>{255, 128, 0, 255}));
  EXPECT_EQ(ColorValue({-2.0f, 9.0f, 0.0f}).Green, 255);
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
