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
  handle_ = dlopen(PluginPath(transition).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) return;
  Find(handle_, "f0r_get_plugin_info", &info_);
  Find(handle_, "f0r_get_param_info", &paramInfo_);
  Find(handle_, "f0r_construct", &construct_);
  Find(handle_, "f0r_destruct", &destruct_);
  Find(handle_, "f0r_set_param_value", &set_);
  Find(handle_, "f0r_update2", &update2_);
  Find(handle_, "f0r_deinit", &deinit_);
  decltype(&f0r_init) init = nullptr;
  Find(handle_, "f0r_init", &init);
  initResult_ = init != nullptr ? init() : 0;
}

Plugin::~Plugin() {
  if (handle_ == nullptr) return;
  if (deinit_ != nullptr) deinit_();
  dlclose(handle_);
}

f0r_plugin_info_t Plugin::Info() const {
  f0r_plugin_info_t info{};
  info_(&info);
  return info;
}

f0r_param_info_t Plugin::ParamInfo(int index) const {
  f0r_param_info_t info{};
  paramInfo_(&info, index);
  return info;
}

int Plugin::ParamIndex(const std::string& name) const {
  for (int i = 0; i < Info().num_params; ++i) {
    if (name == ParamInfo(i).name) return i;
  }
  return -1;
}

bool Plugin::Set(f0r_instance_t instance, const std::string& setting) const {
  const size_t eq = setting.find('=');
  const int index = ParamIndex(setting.substr(0, eq));
  if (index < 0) return false;
  const std::string value = setting.substr(eq + 1);
  unsigned r = 0, g = 0, b = 0;
  if (ParamInfo(index).type == F0R_PARAM_COLOR && std::sscanf(value.c_str(), "#%2x%2x%2x", &r, &g, &b) == 3) {
    SetColor(instance, index, {r / 255.0f, g / 255.0f, b / 255.0f});
  } else {
    SetNumber(instance, index, std::strtod(value.c_str(), nullptr));
  }
  return true;
}

void Plugin::SetNumber(f0r_instance_t instance, int index, double value) const { set_(instance, &value, index); }

}  // namespace krl::test
