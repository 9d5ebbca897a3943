// What the dissolve tests share: clips of one colour each, so every output
// pixel tells whether it came from A, from B, or was never written.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "test_support.h"

namespace krl::test {

inline constexpr uint32_t kFlatA = 0xFF0000AA, kFlatB = 0xFF00BB00, kUnwritten = 0xDEADBEEF;

// A render of the two flat clips, by an instance or by the effect with its default fields.
inline emu::Frame RenderFlat(emu::Instance& instance, int32_t w, int32_t h, double progress) {
  emu::Frame out(w, h, kUnwritten);
  EXPECT_EQ(instance.Render(Filled(w, h, kFlatA), Filled(w, h, kFlatB), out, progress), 1);
  return out;
}
inline emu::Frame RenderFlat(const std::string& effect, int32_t w, int32_t h, double progress) {
  emu::Instance instance(Library(), Effect(Library(), effect));
  return RenderFlat(instance, w, h, progress);
}

// The first `count` values rand() gives after srand(start).
inline std::vector<int> RandAfterSrand(unsigned start, size_t count) {
  std::srand(start);
  std::vector<int> values(count);
  for (int& v : values) v = std::rand();
  return values;
}

inline int CountOf(const emu::Frame& f, uint32_t pixel) {
  int n = 0;
  for (uint32_t px : f.pixels) n += px == pixel;
  return n;
}

}  // namespace krl::test
