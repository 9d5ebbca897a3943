// One frei0r instance: one host instance of the transition (its init ran
// once, its user data is freed with it), the frei0r values of its
// parameters, and the frames it hands the library in the library's order.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "emulator/instance.h"
#include "frei0r/plugin.h"

namespace krl::frei0r {

class Mixer {
 public:
  // Null when the frames would not fit in memory or in the library's
  // 32-bit sizes.
  static std::unique_ptr<Mixer> Create(std::shared_ptr<const Loaded> loaded, unsigned width, unsigned height);

  // Out-of-range indices and null values are ignored.
  void Set(int index, const void* value);
  void Get(int index, void* value) const;
  // Renders at the Progress of parameter 0; any input may be the output.
  void Update(const uint32_t* a, const uint32_t* b, uint32_t* out);

  Mixer(std::shared_ptr<const Loaded> loaded, size_t width, size_t height);

 private:
  std::shared_ptr<const Loaded> loaded_;  // first: the instance needs the host
  emu::Instance instance_;
  std::vector<ParamValue> values_;
  size_t width_, height_;
  std::vector<uint8_t> a_, b_, out_;
  bool toldRefusal_ = false;
};

}  // namespace krl::frei0r
