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

// `count` pixels from `to` on set to `pixel` with the processor's string
// store, which on a long run writes whole cache lines without reading them
// in first (a loop of stores cannot). Any alignment will do.
inline void FillPixels(uint8_t* to, size_t count, uint32_t pixel) {
  asm volatile("rep stosl" : "+D"(to), "+c"(count) : "a"(pixel) : "memory");
}

// For the transitions whose first and last frames are exactly A and B: true
// when the frame needs nothing drawn in between. An empty frame is left as it
// is; at Progress 0 or below A is copied whole, at 1 or above B; a NaN
// Progress fails both comparisons and shows A, as the start does.
inline bool FrameDoneAtTheEnds(const t_KrRenderInfo* ri) {
  if (ri->Width <= 0 || ri->Height <= 0) return true;
  const double p = ri->Progress;
  if (p > 0 && p < 1) return false;
  CopyPixels(ri->Output, p >= 1 ? ri->InputB : ri->InputA, 0, FramePixelCount(ri));
  return true;
}

}  // namespace krl
