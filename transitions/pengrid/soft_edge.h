// The soft edges of Iris Round: a pixel within the softness k of an edge
// mixes the two sides by a factor from its distance to the edge. k comes
// from extended-precision trigonometry; bounds on it from plain arithmetic
// decide nearly every pixel without it.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "raster/numeric.h"

namespace krl {

// Per byte: trunc(from + (to - from) x f), in extended precision; the low
// byte is kept when f lies outside 0..1.
inline uint32_t EdgeBlendExtended(uint32_t from, uint32_t to, float f) {
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const int32_t p = static_cast<int32_t>((from >> shift) & 0xFF), q = static_cast<int32_t>((to >> shift) & 0xFF);
    const long double v = p + (q - p) * static_cast<long double>(f);
    out |= uint32_t{static_cast<uint8_t>(TruncToInt32(v))} << shift;
  }
  return out;
}

// The same in double where that is exact: (to - from) x f has at most 32
// significant bits, and with 2^-21 <= |f| <= 2 its sum with a byte spans at
// most 53, so both precisions hold the sum exactly.
inline uint32_t EdgeBlend(uint32_t from, uint32_t to, float f) {
  if (!(std::fabs(f) >= 0x1p-21f && std::fabs(f) <= 2.0f)) return EdgeBlendExtended(from, to, f);
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const int32_t p = static_cast<int32_t>((from >> shift) & 0xFF), q = static_cast<int32_t>((to >> shift) & 0xFF);
    out |= uint32_t{static_cast<uint8_t>(TruncToInt32(p + (q - p) * static_cast<double>(f)))} << shift;
  }
  return out;
}

// The mixing factor for an edge distance e below the softness k; it never
// rises with k.
inline float MixFactor(long double k, long double e) { return RoundToSingle((1 - k) + e); }

// The softness k of pixel (x, y) of the cell centred on column cx: from the
// angle measured from the first cell's centre in frame coordinates, whatever
// cell the pixel lies in.
inline long double ExactSoftness(int32_t centreX, int32_t centreY, int32_t x, int32_t y, int32_t cx) {
  if (x == cx) return 0.5L;
  const long double angle =
      std::atan(std::abs(static_cast<long double>(centreY) - y) / std::abs(static_cast<long double>(centreX) - x));
  return (std::cos(angle) + std::sin(angle)) * 0.5L;
}

// The softness as bounds lo <= k <= hi that decide a pixel's comparisons and
// mixing factor nearly always, k itself computed only when they do not. With
// a = |dy| and b = |dx|, (cos + sin) / 2 of atan(a / b) is (a + b) / (2 sqrt(a^2
// + b^2)), which double arithmetic gives within 2^-51 (exact a^2 + b^2 below
// 2^53, two roundings); the library's extended functions land within a few
// units of 2^-64 of it. Bounds 2^-40 either side hold k with room to spare.
class SoftnessBounds {
 public:
  SoftnessBounds(int32_t centreX, int32_t centreY, int32_t x, int32_t y, int32_t cx)
      : centreX_(centreX), centreY_(centreY), x_(x), y_(y), cx_(cx) {
    const int64_t a = std::abs(int64_t{centreY} - y), b = std::abs(int64_t{centreX} - x);
    if (x == cx || b == 0 || a >= (int64_t{1} << 26) || b >= (int64_t{1} << 26)) {
      Exact();
      return;
    }
    const double k = static_cast<double>(a + b) / (2.0 * std::sqrt(static_cast<double>(a * a + b * b)));
    lo_ = k - 0x1p-40;
    hi_ = k + 0x1p-40;
  }

  // Whether e < k.
  bool Exceeds(long double e) {
    if (e < lo_) return true;
    if (e >= hi_) return false;
    Exact();
    return e < lo_;
  }

  // MixFactor(k, e).
  float Mix(long double e) {
    const float low = MixFactor(hi_, e);
    if (low == MixFactor(lo_, e)) return low;
    Exact();
    return MixFactor(lo_, e);
  }

 private:
  void Exact() { lo_ = hi_ = ExactSoftness(centreX_, centreY_, x_, y_, cx_); }

  int32_t centreX_, centreY_, x_, y_, cx_;
  long double lo_ = 0, hi_ = 0;
};

}  // namespace krl
