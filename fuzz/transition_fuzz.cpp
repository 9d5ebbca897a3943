// Drives any declared transition the way a careless or hostile host could:
// field values anywhere in int32, any colour, curves with any values, any
// Progress (NaN and infinities included), frame sizes from 0x0 to 300x300
// allocated to their exact size, pixel sizes other than 32, several renders
// with changing sizes on one instance, a reused record, then destruction.
// Each render runs under conditions a host we did not build may leave: any
// x87 control word and MXCSR from a table (other precision and rounding,
// exceptions unmasked, flush to zero), the stack misaligned, frames 0 to 3
// bytes past a word boundary. The library must neither crash nor touch
// memory outside the frames, and must give the host its words back.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "emulator/host.h"
#include "emulator/host_conditions.h"
#include "emulator/instance.h"

namespace {

krl::emu::Host* gHost = nullptr;

double AnyProgress(FuzzedDataProvider& in) {
  using limits = std::numeric_limits<double>;
  static const double kSpecial[] = {0.0, 1.0, 0.5, std::nextafter(0.0, 1.0), std::nextafter(1.0, 0.0),
                                    std::nextafter(1.0, 2.0), -limits::denorm_min(), -0.0, -1.0, 2.0, 1e300, -1e300,
                                    limits::quiet_NaN(), limits::infinity(), -limits::infinity()};
  switch (in.ConsumeIntegralInRange(0, 2)) {
    case 0: return in.PickValueInArray(kSpecial);
    case 1: return in.ConsumeProbability<double>();
    default: return in.ConsumeFloatingPoint<double>();
  }
}

int32_t AnyValue(FuzzedDataProvider& in, const krl::emu::DeclaredField& f) {
  switch (in.ConsumeIntegralInRange(0, 3)) {
    case 0: {  // an item or a value inside the declared range
      if (!f.items.empty()) return f.items[in.ConsumeIntegralInRange<size_t>(0, f.items.size() - 1)].value;
      if (f.hasRange) {
        return in.ConsumeIntegralInRange<int32_t>(static_cast<int32_t>(f.minimum), static_cast<int32_t>(f.maximum));
      }
      return in.ConsumeIntegralInRange<int32_t>(0, 1);
    }
    case 1: return in.PickValueInArray({0, -1, 1, 2, 255, 256, 65536, INT32_MAX, INT32_MIN, INT32_MAX - 1});
    case 2: return in.ConsumeIntegralInRange<int32_t>(-20, 40);
    default: return in.ConsumeIntegral<int32_t>();
  }
}

void SetFields(FuzzedDataProvider& in, krl::emu::Instance& instance) {
  for (const krl::emu::DeclaredField& f : instance.effect().fields) {
    if (f.kind == "Input" || in.ConsumeBool()) continue;  // keep the default
    if (f.kind == "RGBcolor") {
      const uint32_t c = in.ConsumeIntegral<uint32_t>();
      instance.SetColor(f.key, KrColor{static_cast<uint8_t>(c), static_cast<uint8_t>(c >> 8),
                                       static_cast<uint8_t>(c >> 16), static_cast<uint8_t>(c >> 24)});
    } else if (f.kind == "Alpha" || f.kind == "FloatA") {
      std::vector<krl::emu::CurvePoint> points;
      for (int n = in.ConsumeIntegralInRange(1, 3); n > 0; --n) points.push_back({AnyProgress(in), AnyProgress(in)});
      instance.SetCurve(f.key, points);
    } else {
      instance.SetValue(f.key, AnyValue(in, f));
    }
  }
}

krl::emu::HostConditions AnyConditions(FuzzedDataProvider& in) {
  static const uint16_t kX87[] = {0x037F, 0x007F, 0x027F, 0x0F7F, 0x0B7F, 0x077F, 0x0372, 0x0C72};
  static const uint32_t kMxcsr[] = {0x1F80, 0x9FC0, 0x7F80, 0x5F80, 0x3F80, 0x1980, 0xF9C0};
  krl::emu::HostConditions c;
  c.name = "fuzzed";
  c.x87Control = in.PickValueInArray(kX87);
  c.mxcsr = in.PickValueInArray(kMxcsr);
  c.stackMisalignment = 4 * in.ConsumeIntegralInRange(0, 3);
  return c;
}

// A frame of exactly w x h pixels `at` bytes into its block (0 to 3: frames
// may lie at any address), so any byte read or written beyond it is caught;
// its content is cut from a noise picture at an offset of the input's choosing.
std::vector<uint8_t> AnyFrame(int32_t w, int32_t h, size_t offset, size_t at = 0) {
  static const std::vector<uint8_t> kNoise = [] {
    std::vector<uint8_t> noise(2 * 300 * 300 * 4);
    uint32_t state = 1;
    for (uint8_t& byte : noise) {
      state = state * 1103515245u + 12345u;
      byte = static_cast<uint8_t>(state >> 16);
    }
    return noise;
  }();
  const size_t bytes = static_cast<size_t>(w) * h * 4;
  const auto from = kNoise.begin() + static_cast<std::ptrdiff_t>(offset % (kNoise.size() - bytes + 1));
  std::vector<uint8_t> frame(at);
  frame.insert(frame.end(), from, from + static_cast<std::ptrdiff_t>(bytes));
  return frame;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // Loaded before fuzzing starts, so the library's coverage counts from the first input.
  const char* path = std::getenv("KRL_LIBRARY") ? std::getenv("KRL_LIBRARY") : KRL_LIBRARY_PATH;
  std::string error;
  gHost = krl::emu::Host::Load(path, &error).release();
  if (gHost == nullptr || gHost->effects().empty()) {
    std::fprintf(stderr, "transition_fuzz: %s\n", error.c_str());
    std::abort();
  }
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  const auto& effects = gHost->effects();
  const krl::emu::DeclaredEffect& effect = effects[in.ConsumeIntegralInRange<size_t>(0, effects.size() - 1)];
  krl::emu::Instance instance(*gHost, effect);
  SetFields(in, instance);
  std::srand(in.ConsumeIntegral<unsigned>());
  for (int renders = in.ConsumeIntegralInRange(1, 3); renders > 0; --renders) {
    int32_t w = in.ConsumeIntegralInRange(0, 300), h = in.ConsumeIntegralInRange(0, 300);
    if (in.ConsumeIntegralInRange(0, 7) == 0) w = 1;
    if (in.ConsumeIntegralInRange(0, 7) == 0) h = 1;
    const int32_t bits = in.ConsumeIntegralInRange(0, 15) == 0 ? in.ConsumeIntegral<int32_t>() : 32;
    const size_t at = in.ConsumeIntegralInRange(0, 3);
    const std::vector<uint8_t> a = AnyFrame(w, h, in.ConsumeIntegral<uint16_t>(), at);
    const std::vector<uint8_t> b = AnyFrame(w, h, in.ConsumeIntegral<uint32_t>(), at);
    std::vector<uint8_t> out = AnyFrame(w, h, 7, at);
    {
      const krl::emu::ScopedHostConditions conditions(AnyConditions(in));
      instance.Render(a.data() + at, b.data() + at, out.data() + at, w, h, AnyProgress(in), bits);
      if (in.ConsumeBool()) instance.RenderAgain();  // a host reusing its record
    }
    if (!krl::emu::TakeConditionViolations().empty()) std::abort();  // the host's words not given back
    if (in.ConsumeBool()) SetFields(in, instance);
  }
  return 0;
}
