// The fade of Chaotic Dissolve: a row's bytes a + (b - a) p truncated, p a
// Progress rounded to single, in doubles or, where that is exact, in 16-bit
// integers; both give what the one-byte formula gives.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/numeric.h"

namespace krl {

// The fade of a row, each byte a + (b - a) * p truncated. The low 8 bits of
// the truncated value are stored when a Progress outside 0..1 leaves 0..255.
// Four bytes' a + (b - a) * p in doubles, truncated: a, b as 32-bit lanes.
inline __m128i FadeLanes(__m128i a, __m128i b, __m128d p) {
  const __m128i d = _mm_sub_epi32(b, a);
  const __m128d low = _mm_add_pd(_mm_cvtepi32_pd(a), _mm_mul_pd(_mm_cvtepi32_pd(d), p));
  const __m128d high = _mm_add_pd(_mm_cvtepi32_pd(_mm_srli_si128(a, 8)), _mm_mul_pd(_mm_cvtepi32_pd(_mm_srli_si128(d, 8)), p));
  return _mm_unpacklo_epi64(_mm_cvttpd_epi32(low), _mm_cvttpd_epi32(high));
}

// For a single p in [2^-22, 1] the sum a + (b - a) p is exact in a double:
// its bits reach from 2^7 down to p's last bit, 2^-45 at the lowest, 53 in
// all. Its truncation is then a + floor((b - a) p), found in 16-bit
// integers: with p = m 2^-k (m below 2^24 split into mh 2^16 + ml), |d| m
// is H 2^16 + L with H = |d| mh + the high half of |d| ml below 2^16, and
// floor(|d| p) = H >> (k - 16); a negative d needs the ceiling, one more
// unless |d| p is whole (the low k - 16 bits of H and all of L zero).
class WholeFade {
 public:
  // False for a p outside [2^-22, 1] (or NaN): those take the doubles.
  static bool Covers(float p) {
    uint32_t bits;
    std::memcpy(&bits, &p, sizeof bits);
    return bits >= 0x34800000u && bits <= 0x3F800000u;
  }

  explicit WholeFade(float p) {
    uint32_t bits;
    std::memcpy(&bits, &p, sizeof bits);
    const uint32_t m = (bits & 0x7FFFFFu) | 0x800000u;
    const int32_t shift = 150 - static_cast<int32_t>(bits >> 23) - 16;  // k - 16, 7 .. 29
    high_ = _mm_set1_epi16(static_cast<int16_t>(m >> 16));
    low_ = _mm_set1_epi16(static_cast<int16_t>(m & 0xFFFFu));
    shift_ = _mm_cvtsi32_si128(shift);
    belowShift_ = _mm_set1_epi16(static_cast<int16_t>(shift >= 16 ? 0xFFFF : (1 << shift) - 1));
  }

  // Eight bytes a and b as 16-bit lanes.
  __m128i Lanes(__m128i a, __m128i b) const {
    const __m128i d = _mm_sub_epi16(b, a);
    const __m128i negative = _mm_cmpgt_epi16(_mm_setzero_si128(), d);
    const __m128i size = _mm_sub_epi16(_mm_xor_si128(d, negative), negative);
    const __m128i h = _mm_add_epi16(_mm_mullo_epi16(size, high_), _mm_mulhi_epu16(size, low_));
    const __m128i l = _mm_mullo_epi16(size, low_);
    const __m128i floor = _mm_srl_epi16(h, shift_);
    const __m128i whole = _mm_cmpeq_epi16(_mm_or_si128(_mm_and_si128(h, belowShift_), l), _mm_setzero_si128());
    const __m128i step = _mm_sub_epi16(floor, _mm_andnot_si128(whole, negative));  // ceil where negative
    return _mm_add_epi16(a, _mm_sub_epi16(_mm_xor_si128(step, negative), negative));
  }

 private:
  __m128i high_, low_, shift_, belowShift_;
};

inline void FadeRow(const uint8_t* a, const uint8_t* b, uint8_t* out, size_t bytes, float p) {
  size_t i = 0;
  const __m128i zero = _mm_setzero_si128();
  if (WholeFade::Covers(p)) {
    const WholeFade fade(p);
    for (; i + 16 <= bytes; i += 16) {
      const __m128i av = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
      const __m128i bv = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
      const __m128i low = fade.Lanes(_mm_unpacklo_epi8(av, zero), _mm_unpacklo_epi8(bv, zero));
      const __m128i high = fade.Lanes(_mm_unpackhi_epi8(av, zero), _mm_unpackhi_epi8(bv, zero));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(low, high));
    }
  } else if (p >= 0.0f && p <= 1.0f) {
    // Within 0..255 throughout, so the packing below never saturates: sixteen bytes at a time.
    const __m128d pp = _mm_set1_pd(p);
    for (; i + 16 <= bytes; i += 16) {
      const __m128i av = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
      const __m128i bv = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
      const __m128i aLow = _mm_unpacklo_epi8(av, zero), aHigh = _mm_unpackhi_epi8(av, zero);
      const __m128i bLow = _mm_unpacklo_epi8(bv, zero), bHigh = _mm_unpackhi_epi8(bv, zero);
      const __m128i f0 = FadeLanes(_mm_unpacklo_epi16(aLow, zero), _mm_unpacklo_epi16(bLow, zero), pp);
      const __m128i f1 = FadeLanes(_mm_unpackhi_epi16(aLow, zero), _mm_unpackhi_epi16(bLow, zero), pp);
      const __m128i f2 = FadeLanes(_mm_unpacklo_epi16(aHigh, zero), _mm_unpacklo_epi16(bHigh, zero), pp);
      const __m128i f3 = FadeLanes(_mm_unpackhi_epi16(aHigh, zero), _mm_unpackhi_epi16(bHigh, zero), pp);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i),
                       _mm_packus_epi16(_mm_packs_epi32(f0, f1), _mm_packs_epi32(f2, f3)));
    }
  }
  for (; i < bytes; ++i) out[i] = static_cast<uint8_t>(TruncToInt32(a[i] + (b[i] - a[i]) * static_cast<double>(p)));
}

}  // namespace krl
