// The frei0r plug-ins as a host loads them (dlopen, f0r_init, ...), compared
// with the same transition rendered through the host emulator directly.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <tuple>

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

// Every case at sizes that are no multiple of 8 too, the frames carrying rows
// top-down in R, G, B, A as frei0r has them. Every instance is set before any
// renders: instances of one plug-in (Wipe, Sphere, ...) keep their own settings.
TEST(Frei0rPlugin, EveryCaseRendersAsTheEmulatorDoesTheRightWayUp) {
  for (const auto& [width, height, progress] : {std::tuple{13, 7, 0.3}, {40, 24, 0.55}, {64, 35, 0.8}}) {
    const auto a = Frei0rFrame(emu::SampleClipA(width, height)), b = Frei0rFrame(emu::SampleClipB(width, height));
    std::vector<std::unique_ptr<Plugin>> plugins;
    std::vector<f0r_instance_t> instances;
    for (const PluginCase& c : PluginCases()) {
      plugins.push_back(std::make_unique<Plugin>(c.transition));
      ASSERT_TRUE(plugins.back()->ok()) << PluginPath(c.transition);
      instances.push_back(plugins.back()->construct(width, height));
      for (const std::string& s : c.frei0r) EXPECT_TRUE(plugins.back()->Set(instances.back(), s)) << s;
      plugins.back()->SetNumber(instances.back(), 0, progress);
    }
    for (size_t k = 0; k < instances.size(); ++k) {
      const PluginCase& c = PluginCases()[k];
      std::vector<uint32_t> out(a.size(), 0xDEADBEEF);
      plugins[k]->update2(instances[k], 0.0, a.data(), b.data(), nullptr, out.data());
      plugins[k]->destruct(instances[k]);
      EXPECT_TRUE(out == Frei0rFrame(Expected(c.transition, width, height, 0, progress, c.krl)))
          << c.transition << " " << testing::PrintToString(c.frei0r) << " at " << width << "x" << height
          << " Progress " << progress;
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

TEST(Frei0rPlugin, OddArgumentsNeitherCrashNorTouchAnythingOutsideTheFrames) {
  Plugin plugin("Iris Star");
  ASSERT_TRUE(plugin.ok());
  f0r_instance_t instance = plugin.construct(9, 5);
  for (int i = -1; i <= plugin.Info().num_params; ++i) {  // indices past both ends too
    for (const double v : {std::numeric_limits<double>::quiet_NaN(), -1e300, 1e300, HUGE_VAL, -0.0}) {
      const float f = static_cast<float>(v);
      f0r_param_color_t color{f, -f, f};
      const bool isColor = i >= 0 && i < plugin.Info().num_params && plugin.ParamInfo(i).type == F0R_PARAM_COLOR;
      isColor ? plugin.set(instance, &color, i) : plugin.SetNumber(instance, i, v);
    }
  }
  const auto a = Frei0rFrame(emu::SampleClipA(9, 5));
  std::vector<uint32_t> out(a.size() + 2, 0x5A5A5A5A);
  plugin.update2(instance, 0.0, a.data(), a.data(), nullptr, out.data() + 1);
  plugin.update2(instance, 0.0, nullptr, a.data(), nullptr, out.data() + 1);
  EXPECT_EQ(out.front(), 0x5A5A5A5Au);
  EXPECT_EQ(out.back(), 0x5A5A5A5Au);
  plugin.destruct(instance);
  // A frame of nothing, and one too large for the library's sizes.
  f0r_instance_t empty = plugin.construct(0, 0);
  plugin.update2(empty, 0.0, a.data(), a.data(), nullptr, out.data());
  plugin.destruct(empty);
  EXPECT_EQ(plugin.construct(1u << 31, 1u << 31), nullptr);
  plugin.update2(nullptr, 0.0, a.data(), a.data(), nullptr, out.data());
  plugin.destruct(nullptr);
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
