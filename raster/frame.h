// Sizes of the frames a render record describes, and whole-pixel copies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "host/host_interface.h"

namespace krl {

// Pixels in one frame; 0 for an empty or negative size (nothing is drawn).
inline size_t FramePixelCount(const t_KrRenderInfo* ri) {
  if (ri->Width <= 0 || ri->Height <= 0) return 0;
  return static_cast<size_t>(ri->Width) * static_cast<size_t>(ri->Height);
}

inline size_t FrameByteCount(const t_KrRenderInfo* ri) { return 4 * FramePixelCount(ri); }

// Pixels are 4-byte words, but the host's frames need not be word-aligned,
// so words are moved with memcpy (one move instruction each). An empty frame
// may come with null pointers, which memcpy must not be given.
inline void CopyPixels(uint8_t* to, const uint8_t* from, size_t first, size_t count) {
  if (count != 0) std::memcpy(to + 4 * first, from + 4 * first, 4 * count);
}

inline void CopyPixel(uint8_t* to, const uint8_t* from, size_t index) { CopyPixels(to, from, index, 1); }

inline void FillPixels(uint8_t* to, size_t count, uint32_t pixel) {
  for (size_t i = 0; i < count; ++i) std::memcpy(to + 4 * i, &pixel, 4);
}

}  // namespace krl
