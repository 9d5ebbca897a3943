// How the library touches frames, the one rule for every transition:
// frames are the host's byte buffers and may lie at any address (1, 2 or 3
// bytes past a word boundary too). A pixel is read and written as a
// PixelWord, a 32-bit word that the compiler must not assume aligned and that
// may alias the host's bytes; runs of pixels move with memcpy. On x86 an
// unaligned word costs the same as an aligned one, so aligned frames lose
// nothing. (GCC and clang drop the attributes when a PixelWord pointer
// becomes a template argument, so pixel loops index PixelWord pointers
// directly instead of handing them to standard algorithms.)
//
// Rows are stored bottom-up: row 0 is the bottom line of the picture, and a
// "Top" item names the highest row index.
#pragma once

#include <cstdint>
#include <cstring>

#include "host/host_interface.h"

namespace krl {

using PixelWord [[gnu::aligned(1), gnu::may_alias]] = uint32_t;

inline void CopyRun(PixelWord* to, const PixelWord* from, int32_t count) {
  if (count > 0) std::memcpy(to, from, static_cast<size_t>(count) * sizeof(uint32_t));
}

inline void FillRun(PixelWord* to, uint32_t pixel, int32_t count) {
  for (int32_t i = 0; i < count; ++i) to[i] = pixel;
}

// The three frames of a render as rows of pixels.
struct FrameRows {
  const PixelWord* inputA;
  const PixelWord* inputB;
  PixelWord* output;
  int32_t width;
  int32_t height;

  // After the render prologue: A and B as the record holds them then.
  static FrameRows Of(const t_KrRenderInfo* ri) {
    return {reinterpret_cast<const PixelWord*>(ri->InputA), reinterpret_cast<const PixelWord*>(ri->InputB),
            reinterpret_cast<PixelWord*>(ri->Output), ri->Width, ri->Height};
  }

  size_t RowStart(int32_t y) const { return static_cast<size_t>(y) * static_cast<size_t>(width); }
  const PixelWord* A(int32_t y) const { return inputA + RowStart(y); }
  const PixelWord* B(int32_t y) const { return inputB + RowStart(y); }
  PixelWord* Out(int32_t y) const { return output + RowStart(y); }
};

}  // namespace krl
