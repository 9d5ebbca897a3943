#include "frei0r/plugin_cases.h"

#include <dlfcn.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace krl::test {

const std::vector<PluginCase>& PluginCases() {
  static const std::vector<PluginCase> kCases = {
      {"Traditional Fade", {}, {}},
      {"Traditional Fade", {"Transition=1", "Progression=0.3"}, {"TransType=1", "Progression=0.3"}},
      {"Brightness Plasma", {"Dark to Light=0", "Cut Va=0.2"}, {"DARK2LIGHT=off", "VA_CUT=off"}},
      {"Wipe", {}, {}},
      // Top > Bottom is 2 of items 0..3; 3 of 1..8 is 2/7; 4 of 0..10 is 0.4.
      {"Wipe",
       {"Direction=0.6667", "X-division (1..8)=0.2857", "Pen Color=#ff8000", "Pen Thickness (0..10)=0.4"},
       {"Direction=2", "Divide_X=3", "Color=#ff8000", "BorderWidth=4"}},
      {"Iris Round", {"Direction=1", "Y-division (1..8)=0.15", "Anti-Aliasing=1"},
       {"Direction=1", "Divide_Y=2", "Anti-Aliasing=on"}},
      {"Band Wipe", {}, {}},
      // 0.25 of 2..50 is 14; a half of 1..30000 rounds up to 15001.
      {"Band Wipe", {"Direction=1", "Number of Bands (2..50)=0.25"}, {"Direction=1", "BandCount=14"}},
      {"Fractal", {"Variation (1..30000)=0.5"}, {"Random Seed=15001"}},
      {"Sphere", {}, {}},
      {"Sphere", {"Spin Direction=1", "Background Color=#3060a0"}, {"Direction=3", "Color=#3060a0"}},
      {"Doors", {"Pen Color=#00ff00", "Pen Thickness (0..10)=0.3", "Closing Door=1"},
       {"Color=#00ff00", "BorderWidth=3", "IsDoorClosing=on"}},
  };
  return kCases;
}

std::string PluginPath(const std::string& transition) {
  std::string snake;
  for (char c : transition) {
    const bool word = std::isalnum(static_cast<unsigned char>(c)) != 0;
    if (word) snake += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (!word && !snake.empty() && snake.back() != '_') snake += '_';
  }
  return std::string(KRL_FREI0R_DIR) + "/krl_" + snake + ".so";
}

template <typename Function>
static void Find(void* handle, const char* name, Function* out) {
  *out = reinterpret_cast<Function>(dlsym(handle, name));
}

Plugin::Plugin(const std::string& transition) {
  handle = dlopen(PluginPath(transition).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) return;
  Find(handle, "f0r_get_plugin_info", &info);
  Find(handle, "f0r_get_param_info", &paramInfo);
  Find(handle, "f0r_construct", &construct);
  Find(handle, "f0r_destruct", &destruct);
  Find(handle, "f0r_set_param_value", &set);
  Find(handle, "f0r_update2", &update2);
  Find(handle, "f0r_deinit", &deinit);
  decltype(&f0r_init) init = nullptr;
  Find(handle, "f0r_init", &init);
  initResult = init != nullptr ? init() : 0;
}

Plugin::~Plugin() {
  if (handle == nullptr) return;
  if (deinit != nullptr) deinit();
  dlclose(handle);
}

f0r_plugin_info_t Plugin::Info() const {
  f0r_plugin_info_t value{};
  info(&value);
  return value;
}

f0r_param_info_t Plugin::ParamInfo(int index) const {
  f0r_param_info_t value{};
  paramInfo(&value, index);
  return value;
}

bool Plugin::Set(f0r_instance_t instance, const std::string& setting) const {
  const size_t eq = setting.find('=');
  int index = Info().num_params - 1;
  while (index >= 0 && setting.substr(0, eq) != ParamInfo(index).name) --index;
  if (index < 0) return false;
  const std::string value = setting.substr(eq + 1);
  unsigned r = 0, g = 0, b = 0;
  if (ParamInfo(index).type == F0R_PARAM_COLOR && std::sscanf(value.c_str(), "#%2x%2x%2x", &r, &g, &b) == 3) {
    f0r_param_color_t color{r / 255.0f, g / 255.0f, b / 255.0f};
    set(instance, &color, index);
  } else {
    SetNumber(instance, index, std::strtod(value.c_str(), nullptr));
  }
  return true;
}

}  // namespace krl::test
