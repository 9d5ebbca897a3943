// The fractal terrain generator: free functions that fill a square height
// map of size x size signed 32-bit entries (row by row, entry (row, col) at
// row * size + col, size = 2^k + 1) with fractal terrain, and a colour blend.
// The library exports them; Fractal uses bxglGenerateTerrainDS and
// bxglLerpColor. Every random number comes from the process-wide rand(), in
// the order stated at each function; a caller that wants a repeatable map
// seeds it with srand() first. A noise table, where one is taken, is a second
// size x size map whose entry replaces the draw for the entry at the same place.
//
// None allocates. They are written so that no argument makes them touch
// memory outside the size x size map (or table) they are given: a point or
// neighbour that would lie outside it is skipped, while the draws are made
// as for the map the arguments describe.
#pragma once

#include <cstdint>

#include "host/export.h"

// Diamond-square fill of `levels` levels (129 with 7 levels spans the whole
// map at the first level). `noise` may be null: the corners and every
// displacement are then drawn from rand() with the amplitude `spectrum`.
KR_EXPORT void bxglGenerateTerrainDS(int32_t* map, int32_t size, int32_t levels, int32_t roughness,
                                     int32_t spectrum, int32_t* noise);

// Triangle subdivision with random displacement; returns the last step width.
KR_EXPORT int32_t bxglGenerateTerrain(int32_t* map, int32_t size, int32_t levels, int32_t range, int32_t roughness);

// The same subdivision with the displacement taken from `noise`.
KR_EXPORT int32_t bxglGenerateTerrain2(int32_t* map, int32_t size, int32_t levels, int32_t range,
                                       int32_t roughness, int32_t* noise);

// One level of the triangle subdivision, displaced with rand().
KR_EXPORT void bxglSubdivideTerrain(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness);

// One level, displaced from `noise`.
KR_EXPORT void bxglSubdivideTerrain2(int32_t* map, int32_t size, int32_t half, int32_t step, int32_t roughness,
                                     int32_t* noise);

// Blends the pixel *dst toward src by alpha 0..255 (the caller clamps it):
// alpha 0 leaves *dst, 255 gives src exactly. The first parameter is a
// reference in the toolkit's C++ description; it is exported as a pointer,
// which is the same at the binary level, so C callers can reach it.
KR_EXPORT void bxglLerpColor(int32_t* dst, int32_t src, int32_t alpha);

namespace krl {

// What bxglGenerateTerrainDS does, for the library's own callers.
void GenerateTerrainDS(int32_t* map, int32_t size, int32_t levels, int32_t roughness, int32_t spectrum,
                       const int32_t* noise);

// The blend of bxglLerpColor on one pixel word: with a = alpha * 257, each
// byte becomes ((dst * 65536) + (src - dst) * a + 32895) >> 16 in 32-bit
// signed arithmetic (wrapping, never overflowing, for an unclamped alpha).
inline uint32_t LerpColor(uint32_t dst, uint32_t src, int32_t alpha) {
  const uint32_t a = static_cast<uint32_t>(alpha) * 257u;
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const uint32_t d = (dst >> shift) & 0xFF, s = (src >> shift) & 0xFF;
    const int32_t sum = static_cast<int32_t>((d << 16) + (s - d) * a + 32895u);
    out |= (static_cast<uint32_t>(sum >> 16) & 0xFF) << shift;
  }
  return out;
}

}  // namespace krl
