// The frei0r entry points, the only names a plug-in exports (exports.map).
// Nothing may unwind into the host: every entry point catches what the
// emulator might throw, and null or out-of-range arguments do nothing.
#include "frei0r/frei0r_api.h"

#include <memory>

#include "frei0r/mixer.h"
#include "frei0r/plugin.h"

using krl::frei0r::Current;
using krl::frei0r::Mixer;

namespace {

template <typename Function>
void Guarded(Function function) {
  try {
    function();
  } catch (...) {
  }
}

}  // namespace

extern "C" {

int f0r_init() {
  int ok = 0;
  Guarded([&] { ok = Current() ? 1 : 0; });
  return ok;
}

void f0r_deinit() { Guarded(krl::frei0r::Unload); }

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  if (info == nullptr) return;
  std::shared_ptr<const krl::frei0r::Loaded> loaded;
  Guarded([&] { loaded = Current(); });
  *info = f0r_plugin_info_t{};
  info->name = krl::frei0r::TransitionName();
  info->author = "krl transitions";
  info->plugin_type = F0R_PLUGIN_TYPE_MIXER2;
  // RGBA, the model every frei0r host supports; the frames are copied to turn
  // their rows over anyway, and the same copy puts the bytes in the library's order.
  info->color_model = F0R_COLOR_MODEL_RGBA8888;
  info->frei0r_version = FREI0R_MAJOR_VERSION;
  info->major_version = loaded ? static_cast<int>(loaded->effect->version) : 0;
  info->minor_version = 0;
  info->num_params = loaded ? static_cast<int>(loaded->params.size()) : 0;
  info->explanation = loaded ? loaded->explanation.c_str() : "The transitions library did not load: see stderr.";
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
  if (info == nullptr) return;
  std::shared_ptr<const krl::frei0r::Loaded> loaded;
  Guarded([&] { loaded = Current(); });
  if (!loaded || index < 0 || static_cast<size_t>(index) >= loaded->params.size()) {
    *info = f0r_param_info_t{"", F0R_PARAM_DOUBLE, ""};
    return;
  }
  const krl::frei0r::Param& param = loaded->params[static_cast<size_t>(index)];
  *info = f0r_param_info_t{param.name.c_str(), param.type, param.explanation.c_str()};
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
  Mixer* mixer = nullptr;
  Guarded([&] { mixer = Mixer::Create(Current(), width, height).release(); });
  return mixer;
}

void f0r_destruct(f0r_instance_t instance) {
  Guarded([&] { delete static_cast<Mixer*>(instance); });
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
  if (instance != nullptr) Guarded([&] { static_cast<Mixer*>(instance)->Set(index, param); });
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
  if (instance != nullptr) Guarded([&] { static_cast<Mixer*>(instance)->Get(index, param); });
}

void f0r_update2(f0r_instance_t instance, double /*time: Progress is a parameter*/, const uint32_t* a,
                 const uint32_t* b, const uint32_t* /*unused by mixer2*/, uint32_t* out) {
  if (instance != nullptr) Guarded([&] { static_cast<Mixer*>(instance)->Update(a, b, out); });
}

// A mixer is called through f0r_update2; a host that calls f0r_update gets
// the transition between a frame and itself.
void f0r_update(f0r_instance_t instance, double time, const uint32_t* in, uint32_t* out) {
  f0r_update2(instance, time, in, in, nullptr, out);
}

}  // extern "C"
