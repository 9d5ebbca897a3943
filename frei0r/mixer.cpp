#include "frei0r/mixer.h"

#include <cstdio>
#include <cstring>
#include <limits>
#include <mutex>

#include "frei0r/frames.h"

namespace krl::frei0r {
namespace {

// Held by the renders of a transition with process-wide state (its test
// profile says so), so that two instances of it never render at once.
std::mutex gSharedStateRenders;

}  // namespace

std::unique_ptr<Mixer> Mixer::Create(std::shared_ptr<const Loaded> loaded, unsigned width, unsigned height) {
  constexpr unsigned kMaxSide = static_cast<unsigned>(std::numeric_limits<int32_t>::max());
  if (!loaded || width > kMaxSide || height > kMaxSide) return nullptr;
  const size_t pixels = static_cast<size_t>(width) * height;
  if (height != 0 && pixels / height != width) return nullptr;
  if (pixels > std::numeric_limits<size_t>::max() / 4) return nullptr;
  try {
    return std::make_unique<Mixer>(std::move(loaded), width, height);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

Mixer::Mixer(std::shared_ptr<const Loaded> loaded, size_t width, size_t height)
    : loaded_(std::move(loaded)), instance_(*loaded_->host, *loaded_->effect),
      values_(ValuesOf(loaded_->params, instance_)), width_(width), height_(height), a_(width * height * 4),
      b_(width * height * 4), out_(width * height * 4) {}

void Mixer::Set(int index, const void* value) {
  if (value == nullptr || index < 0 || static_cast<size_t>(index) >= values_.size()) return;
  const Param& param = loaded_->params[static_cast<size_t>(index)];
  ParamValue& stored = values_[static_cast<size_t>(index)];
  if (param.type == F0R_PARAM_COLOR) {
    std::memcpy(&stored.color, value, sizeof stored.color);
  } else {
    std::memcpy(&stored.number, value, sizeof stored.number);
  }
  if (param.kind != ParamKind::Progress) ApplyParam(param, stored, instance_);
}

void Mixer::Get(int index, void* value) const {
  if (value == nullptr || index < 0 || static_cast<size_t>(index) >= values_.size()) return;
  const ParamValue& stored = values_[static_cast<size_t>(index)];
  if (loaded_->params[static_cast<size_t>(index)].type == F0R_PARAM_COLOR) {
    std::memcpy(value, &stored.color, sizeof stored.color);
  } else {
    std::memcpy(value, &stored.number, sizeof stored.number);
  }
}

void Mixer::Update(const uint32_t* a, const uint32_t* b, uint32_t* out) {
  if (a == nullptr || b == nullptr || out == nullptr || a_.empty()) return;
  FlipRowsSwapRedBlue(reinterpret_cast<const uint8_t*>(a), a_.data(), width_, height_);
  FlipRowsSwapRedBlue(reinterpret_cast<const uint8_t*>(b), b_.data(), width_, height_);
  // What krl starts from too: a transition that leaves pixels alone leaves them transparent black.
  std::memset(out_.data(), 0, out_.size());
  const double progress = values_[0].number;
  int32_t result = 0;
  {
    std::unique_lock<std::mutex> lock(gSharedStateRenders, std::defer_lock);
    if (loaded_->sharedState) lock.lock();
    result = instance_.Render(a_.data(), b_.data(), out_.data(), static_cast<int32_t>(width_),
                              static_cast<int32_t>(height_), progress);
  }
  if (result == 1) {
    FlipRowsSwapRedBlue(out_.data(), reinterpret_cast<uint8_t*>(out), width_, height_);
    return;
  }
  // A refused frame shows the first clip, and the reason is said once.
  FlipRowsSwapRedBlue(a_.data(), reinterpret_cast<uint8_t*>(out), width_, height_);
  if (!toldRefusal_) {
    toldRefusal_ = true;
    const auto& why = instance_.reportedErrors();
    std::fprintf(stderr, "krl frei0r plug-in \"%s\" refused a frame: %s\n", TransitionName(),
                 why.empty() ? "no reason given" : why.back().c_str());
  }
}

}  // namespace krl::frei0r
