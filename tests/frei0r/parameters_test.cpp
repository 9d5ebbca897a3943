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

// The nearest steps themselves are the plug-in cases' settings (3 of 1..8,
// a half of 1..30000 rounding up, ...); here the values a host should not send.
TEST(Frei0rParameters, ValuesOutsideZeroToOneAreHeldToItAndNaNReadsAsZero) {
  emu::DeclaredField pens, wide, selector, ranged;
  pens.kind = wide.kind = "Long";
  pens.hasRange = wide.hasRange = ranged.hasRange = true;
  pens.minimum = 1;
  pens.maximum = 8;
  wide.minimum = -2147483648.0;
  wide.maximum = 2147483647.0;
  selector.kind = "Selector";
  selector.items = {{"Left > Right", "", 10}, {"Right > Left", "", 20}, {"Top > Bottom", "", 30}};
  ranged.kind = "Alpha";
  ranged.minimum = -255;
  ranged.maximum = 255;
  for (const auto& [x, high] : {std::pair{kNaN, false}, {-3.0, false}, {-HUGE_VAL, false}, {0.0, false}, {1.0, true},
                                {7.0, true}, {HUGE_VAL, true}}) {
    EXPECT_EQ(LongValue(pens, x), high ? 8 : 1) << x;
    EXPECT_EQ(LongValue(wide, x), high ? INT32_MAX : INT32_MIN) << x;
    EXPECT_EQ(SelectorValue(selector, x), high ? 30 : 10) << x;
    EXPECT_EQ(BoolValue(x), high) << x;
    EXPECT_EQ(CurveValue(ranged, x), high ? 255.0 : -255.0) << x;
  }
  selector.items.clear();
  EXPECT_EQ(SelectorValue(selector, 0.5), 0);
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
