// What the tests of the sliding, turning and shredding transitions share:
// renders of the coded clips of the pen-grid tests, whose every pixel tells
// where it was read from.
#pragma once

#include "transitions/pengrid/pen_grid_support.h"

namespace krl::test {

inline emu::Frame RenderCodedClips(const std::string& effect, int32_t w, int32_t h, double progress,
                                   const FieldValues& values = {}) {
  emu::Instance instance(Library(), Effect(Library(), effect));
  for (const auto& [key, value] : values) instance.SetValue(key, value);
  emu::Frame out(w, h, kUntouched);
  EXPECT_EQ(instance.Render(Coded(w, h, kTagA), Coded(w, h, kTagB), out, progress), 1);
  EXPECT_TRUE(instance.diagnostics().empty());
  return out;
}

}  // namespace krl::test
