// What the sheet transitions (Roll, Peel, Origami Unfold) share: the ends of
// the transition, and shading with a weight taken once (they light a whole
// column, row or frame alike, so the weight a = floor(g x 256 + 0.5) of
// shade(P, g) is formed outside the pixel loop).
#pragma once

#include <cstdint>

#include "host/host_interface.h"
#include "raster/frame.h"
#include "raster/pixel_mix.h"
#include "raster/pixel_rows.h"

namespace krl {

// The frame showing A, where a render gets no memory for its tables.
inline void ShowA(const FrameRows& f) {
  for (int32_t y = 0; y < f.height; ++y) CopyRun(f.Out(y), f.A(y), f.width);
}

// Bytes 0 to 2 become (P x a + 128) >> 8, byte 3 is kept; a from ShadeWeight.
inline uint32_t ShadeWeighted(uint32_t p, uint32_t a) {
  const uint32_t blueRed = ((p & 0x00FF00FFu) * a + 0x00800080u) >> 8 & 0x00FF00FFu;
  const uint32_t green = ((p & 0x0000FF00u) * a + 0x00008000u) >> 8 & 0x0000FF00u;
  return (p & 0xFF000000u) | blueRed | green;
}

// The weight of shade(P, g): g held to 0..1, as MixWeight does.
inline uint32_t ShadeWeight(double g) { return static_cast<uint32_t>(MixWeight(g)); }

}  // namespace krl
