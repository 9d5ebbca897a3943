// Reads of a clip at any place, held inside the frame: a column or row past
// an edge reads the edge pixel. Nearest and bilinear samples at points of the
// continuous plane, in which pixel (c, r) covers [c, c + 1) x [r, r + 1) and
// its centre is (c + 0.5, r + 0.5). Only for frames of at least one pixel.
#pragma once

#include <cstdint>

#include "raster/numeric.h"
#include "raster/pixel_rows.h"

namespace krl {

struct ClampedFrame {
  const PixelWord* pixels;
  int32_t width;
  int32_t height;

  static int32_t Clamp(int32_t v, int32_t last) { return v < 0 ? 0 : (v > last ? last : v); }

  uint32_t At(int32_t c, int32_t r) const {
    const int32_t col = Clamp(c, width - 1), row = Clamp(r, height - 1);
    return pixels[static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(col)];
  }

  uint32_t Nearest(double u, double v) const { return At(FloorToInt32(u), FloorToInt32(v)); }

  // The four pixels around (u, v) weighted in 256ths per axis; exactly the
  // pixel itself at a pixel centre.
  uint32_t Bilinear(double u, double v) const {
    const double us = u - 0.5, vs = v - 0.5;
    const int32_t c = FloorToInt32(us), r = FloorToInt32(vs);
    const uint32_t fx = Fraction256(us, c), fy = Fraction256(vs, r);
    const uint32_t p00 = At(c, r), p10 = At(c + (c < INT32_MAX), r);
    const uint32_t p01 = At(c, r + (r < INT32_MAX)), p11 = At(c + (c < INT32_MAX), r + (r < INT32_MAX));
    uint32_t out = 0;
    for (int shift = 0; shift < 32; shift += 8) {
      const uint32_t q0 = ((p00 >> shift) & 0xFFu) * (256u - fx) + ((p10 >> shift) & 0xFFu) * fx;
      const uint32_t q1 = ((p01 >> shift) & 0xFFu) * (256u - fx) + ((p11 >> shift) & 0xFFu) * fx;
      out |= ((q0 * (256u - fy) + q1 * fy + 32768u) >> 16) << shift;
    }
    return out;
  }

 private:
  // floor((s - whole) x 256 + 0.5), 0..256; held there for a NaN or a place
  // beyond the int32 range, where the fraction means nothing.
  static uint32_t Fraction256(double s, int32_t whole) {
    const int32_t f = FloorToInt32((s - whole) * 256.0 + 0.5);
    return static_cast<uint32_t>(f < 0 ? 0 : (f > 256 ? 256 : f));
  }
};

}  // namespace krl
