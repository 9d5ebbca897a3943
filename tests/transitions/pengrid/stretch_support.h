// Helpers for the stretch tests: where single output columns (or rows) read,
// checked on every line across the travel.
#pragma once

#include <string>
#include <vector>

#include "pen_grid_support.h"

namespace krl::test {

// Output column (row, for vertical travel) `at` shows `clip` ('A', 'B' or
// 'P' for the pen) read at along-index `from`, its across position unchanged.
struct Probe {
  int32_t at;
  char clip;
  int32_t from = 0;
};

inline void ExpectProbes(const emu::Frame& out, bool alongRows, const std::vector<Probe>& probes, const char* what) {
  const int32_t lines = alongRows ? out.height : out.width;
  for (const Probe& probe : probes) {
    for (int32_t line = 0; line < lines; ++line) {
      const uint32_t px = alongRows ? out.At(probe.at, line) : out.At(line, probe.at);
      const std::string where = std::string(what) + ", at " + std::to_string(probe.at) + ", line " + std::to_string(line);
      ASSERT_EQ(SourceOf(px), probe.clip) << where;
      if (probe.clip == 'P') continue;
      ASSERT_EQ(alongRows ? CodedX(px) : CodedY(px), probe.from) << where;
      ASSERT_EQ(alongRows ? CodedY(px) : CodedX(px), line) << where;
    }
  }
}

// The whole frame is one clip, read in place; or left untouched ('.').
inline void ExpectWhole(const emu::Frame& out, char clip, const std::string& what) {
  for (int32_t y = 0; y < out.height; ++y) {
    for (int32_t x = 0; x < out.width; ++x) {
      const uint32_t px = out.At(x, y);
      ASSERT_EQ(SourceOf(px), clip) << what << " at " << x << "," << y;
      if (clip != '.') {
        ASSERT_EQ(px & 0xFFFFFF, Code(0, x, y)) << what << " at " << x << "," << y;
      }
    }
  }
}

}  // namespace krl::test
