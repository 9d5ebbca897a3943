// Blends of whole pixels with a weight in 256ths, all four bytes unless said
// otherwise: mix(P, Q, 0) is P and mix(P, Q, 1) is Q exactly.
#pragma once

#include <cstdint>

#include "raster/numeric.h"

namespace krl {

// floor(clamp(f, 0, 1) x 256 + 0.5); a NaN weighs as 0. The value floored
// lies in [0.5, 256.5], where truncation is the floor.
inline int32_t MixWeight(double f) {
  const double c = f > 1.0 ? 1.0 : (f > 0.0 ? f : 0.0);
  return static_cast<int32_t>(c * 256.0 + 0.5);
}

// Each byte (P x (256 - a) + Q x a + 128) >> 8, for 0 <= a <= 256. Two
// bytes at a time in 16-bit lanes of a word: a lane's sum is at most
// 255 x 256 + 128, below 2^16, so none carries into the next.
inline uint32_t MixWeighted(uint32_t p, uint32_t q, int32_t a) {
  const uint32_t wq = static_cast<uint32_t>(a), wp = 256u - wq;
  const uint32_t blueRed = (((p & 0x00FF00FFu) * wp + (q & 0x00FF00FFu) * wq + 0x00800080u) >> 8) & 0x00FF00FFu;
  const uint32_t greenAlpha = ((p >> 8) & 0x00FF00FFu) * wp + ((q >> 8) & 0x00FF00FFu) * wq + 0x00800080u;
  return blueRed | (greenAlpha & 0xFF00FF00u);
}

inline uint32_t Mix(uint32_t p, uint32_t q, double f) { return MixWeighted(p, q, MixWeight(f)); }

// Bytes 0 to 2 darkened to (P x a + 128) >> 8 with a = floor(g x 256 + 0.5),
// g held to 0..1; byte 3 (alpha) kept.
inline uint32_t Shade(uint32_t p, double g) {
  const uint32_t a = static_cast<uint32_t>(MixWeight(g));
  uint32_t out = p & 0xFF000000u;
  for (int shift = 0; shift < 24; shift += 8) out |= ((((p >> shift) & 0xFFu) * a + 128u) >> 8) << shift;
  return out;
}

}  // namespace krl
