// The frei0r plug-ins as a host loads them (dlopen, f0r_init, ...), compared
// with the same transition rendered through the host emulator directly.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "cli/fields.h"
#include "cli/image_io.h"
#include "cli_run.h"
#include "frei0r/plugin_cases.h"
#include "test_support.h"

namespace krl::test {
namespace {

// A picture as frei0r holds it: top-down rows of R, G, B, A.
std::vector<uint32_t> Frei0rFrame(const emu::Frame& frame) {
  const std::vector<uint8_t> bytes = cli::ToRgbaRows(frame);
  std::vector<uint32_t> words(bytes.size() / 4);
  std::memcpy(words.data(), bytes.data(), bytes.size());
  return words;
}

// The plug-in's frame for a case at a size and Progress, and the emulator's.
struct Rendered {
  std::vector<uint32_t> plugin, expected;
};

Rendered RenderBoth(const PluginCase& c, int32_t width, int32_t height, double progress) {
  Rendered r;
  Plugin plugin(c.transition);
  EXPECT_TRUE(plugin.ok()) << PluginPath(c.transition);
  if (!plugin.ok()) return r;
  f0r_instance_t instance = plugin.Construct(width, height);
  for (const std::string& setting : c.frei0r) EXPECT_TRUE(plugin.Set(instance, setting)) << setting;
  plugin.SetNumber(instance, 0, progress);
  const auto a = Frei0rFrame(emu::SampleClipA(width, height)), b = Frei0rFrame(emu::SampleClipB(width, height));
  r.plugin.assign(a.size(), 0xDEADBEEF);
  plugin.Update(instance, a.data(), b.data(), r.plugin.data());
  plugin.Destruct(instance);
  r.expected = Frei0rFrame(Expected(c.transition, width, height, 0, progress, c.krl));
  return r;
}

TEST(Frei0rPlugin, EveryCaseRendersAsTheEmulatorDoesTheRightWayUp) {
  // Sizes that are no multiple of 8 too; the frames carry rows top-down in
  // R, G, B, A, as frei0r has them.
  const struct {
    int32_t width, height;
    double progress;
  } kFrames[] = {{13, 7, 0.3}, {40, 24, 0.55}, {64, 35, 0.8}};
  for (const PluginCase& c : PluginCases()) {
    for (const auto& f : kFrames) {
      const Rendered r = RenderBoth(c, f.width, f.height, f.progress);
      EXPECT_TRUE(r.plugin == r.expected) << c.transition << " " << testing::PrintToString(c.frei0r) << " at "
                                          << f.width << "x" << f.height << " Progress " << f.progress;
    }
  }
}

TEST(Frei0rPlugin, EveryDeclaredTransitionHasAPluginWithItsFieldsAsParameters) {
  for (const emu::DeclaredEffect& effect : Library().effects()) {
    Plugin plugin(effect.DisplayName());
    ASSERT_TRUE(plugin.ok()) << PluginPath(effect.DisplayName());
    const f0r_plugin_info_t info = plugin.Info();
    EXPECT_EQ(std::string(info.name), effect.DisplayName());
    EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_MIXER2);
    EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
    EXPECT_NE(std::string(info.explanation).find(effect.description), std::string::npos);
    std::vector<std::string> names{"progress"}, expected{"progress"};
    for (const emu::DeclaredField& f : effect.fields) {
      if (f.kind != "Input") expected.push_back(f.label);
    }
    for (int i = 1; i < info.num_params; ++i) names.push_back(plugin.ParamInfo(i).name);
    EXPECT_EQ(names, expected) << effect.DisplayName();
  }
}

TEST(Frei0rPlugin, TwoInstancesKeepTheirOwnSettings) {
  const PluginCase& plain = PluginCases()[3];  // Wipe with its defaults
  const PluginCase& set = PluginCases()[4];    // Wipe from the top with pens
  Plugin plugin("Wipe");
  ASSERT_TRUE(plugin.ok());
  f0r_instance_t first = plugin.Construct(24, 16), second = plugin.Construct(24, 16);
  for (const std::string& setting : set.frei0r) plugin.Set(second, setting);
  plugin.SetNumber(first, 0, 0.5);
  plugin.SetNumber(second, 0, 0.5);
  const auto a = Frei0rFrame(emu::SampleClipA(24, 16)), b = Frei0rFrame(emu::SampleClipB(24, 16));
  std::vector<uint32_t> out1(a.size()), out2(a.size());
  plugin.Update(first, a.data(), b.data(), out1.data());
  plugin.Update(second, a.data(), b.data(), out2.data());
  EXPECT_TRUE(out1 == Frei0rFrame(Expected("Wipe", 24, 16, 0, 0.5, plain.krl)));
  EXPECT_TRUE(out2 == Frei0rFrame(Expected("Wipe", 24, 16, 0, 0.5, set.krl)));
  EXPECT_EQ(plugin.GetNumber(first, plugin.ParamIndex("Direction")), 0.0);
  plugin.Destruct(first);
  plugin.Destruct(second);
}

TEST(Frei0rPlugin, OddArgumentsNeitherCrashNorTouchAnythingOutsideTheFrames) {
  Plugin plugin("Iris Star");
  ASSERT_TRUE(plugin.ok());
  f0r_instance_t instance = plugin.Construct(9, 5);
  const double kOdd[] = {std::numeric_limits<double>::quiet_NaN(), -1e300, 1e300,
                         std::numeric_limits<double>::infinity(), -0.0};
  for (int i = 0; i < plugin.Info().num_params; ++i) {
    for (double v : kOdd) {
      if (plugin.ParamInfo(i).type != F0R_PARAM_COLOR) {
        plugin.SetNumber(instance, i, v);
        continue;
      }
      const float f = static_cast<float>(v);
      const f0r_param_color_t color{f, -f, f};
      plugin.SetColor(instance, i, color);
    }
  }
  plugin.SetNumber(instance, 99, 0.5);
  plugin.SetNumber(instance, -1, 0.5);
  const auto a = Frei0rFrame(emu::SampleClipA(9, 5));
  std::vector<uint32_t> out(a.size() + 2, 0x5A5A5A5A);
  plugin.Update(instance, a.data(), a.data(), out.data() + 1);
  plugin.Update(instance, nullptr, a.data(), out.data() + 1);
  EXPECT_EQ(out.front(), 0x5A5A5A5Au);
  EXPECT_EQ(out.back(), 0x5A5A5A5Au);
  plugin.Destruct(instance);
  // A frame of nothing, and one too large for the library's sizes.
  f0r_instance_t empty = plugin.Construct(0, 0);
  plugin.Update(empty, a.data(), a.data(), out.data());
  plugin.Destruct(empty);
  EXPECT_EQ(plugin.Construct(1u << 31, 1u << 31), nullptr);
  plugin.Update(nullptr, a.data(), a.data(), out.data());
  plugin.Destruct(nullptr);
}

TEST(Frei0rPlugin, OnlyTheFrei0rFunctionsAreExported) {
  const Outcome symbols = Shell("nm -D --defined-only '" + PluginPath("Wipe") + "' | awk '{print $3}' | sort");
  ASSERT_EQ(symbols.exit, 0) << symbols.output;
  EXPECT_EQ(symbols.output,
            "f0r_construct\nf0r_deinit\nf0r_destruct\nf0r_get_param_info\nf0r_get_param_value\nf0r_get_plugin_info\n"
            "f0r_init\nf0r_set_param_value\nf0r_update\nf0r_update2\n");
}

}  // namespace
}  // namespace krl::test
