// The three frames of a render as rows of 32-bit pixels, and the two kinds of
// pixel work the geometric transitions do: copy a run, fill a run.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "host/host_interface.h"

namespace krl {

inline void CopyRun(uint32_t* to, const uint32_t* from, int32_t count) {
  if (count > 0) std::memcpy(to, from, static_cast<size_t>(count) * sizeof(uint32_t));
}

inline void FillRun(uint32_t* to, uint32_t pixel, int32_t count) {
  if (count > 0) std::fill_n(to, count, pixel);
}

struct FrameRows {
  const uint32_t* a;
  const uint32_t* b;
  uint32_t* out;
  int32_t width;
  int32_t height;

  // After the render prologue: A and B as the record holds them then.
  static FrameRows Of(const t_KrRenderInfo* ri) {
    return {reinterpret_cast<const uint32_t*>(ri->InputA), reinterpret_cast<const uint32_t*>(ri->InputB),
            reinterpret_cast<uint32_t*>(ri->Output), ri->Width, ri->Height};
  }

  size_t RowStart(int32_t y) const { return static_cast<size_t>(y) * static_cast<size_t>(width); }
  const uint32_t* A(int32_t y) const { return a + RowStart(y); }
  const uint32_t* B(int32_t y) const { return b + RowStart(y); }
  uint32_t* Out(int32_t y) const { return out + RowStart(y); }
};

}  // namespace krl
