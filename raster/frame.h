// Sizes of the frames a render record describes.
#pragma once

#include <cstddef>

#include "host/host_interface.h"

namespace krl {

// Pixels in one frame; 0 for an empty or negative size (nothing is drawn).
inline size_t FramePixelCount(const t_KrRenderInfo* ri) {
  if (ri->Width <= 0 || ri->Height <= 0) return 0;
  return static_cast<size_t>(ri->Width) * static_cast<size_t>(ri->Height);
}

inline size_t FrameByteCount(const t_KrRenderInfo* ri) { return 4 * FramePixelCount(ri); }

}  // namespace krl
