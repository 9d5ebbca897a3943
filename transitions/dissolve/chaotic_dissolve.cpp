// Chaotic Dissolve: every source pixel, faded from A towards B, is thrown
// towards the centre of the frame plus a random offset, over a background
// colour. The throw is strongest half way and vanishes at both ends. The
// offsets come from a generator restarted at the same value every frame, so
// the cloud of pixels moves smoothly instead of flickering.
#include <emmintrin.h>

#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/dissolve/fade_row.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Chaotic Dissolve", .signature = "Chaotic Dissolve (ZE plug-in SDK effect)",
                             .displayName = "Chaotic Dissolve", .description = "Va blows up to chaotic pixels showing Vb."};

ClipFields clip;
FieldIndex color;

constexpr auto kFields = FieldTable(clip,
    Color(&color, "Color", "Background Color").Help("Defines the background color.").DefaultColor(155, 155, 155));

// A linear congruential generator, state = state * 1664525 + 1013904223,
// whose draws in [0, 1) are formed from the low 23 bits of the state as the
// mantissa of a float in [1, 2), minus 1. A pixel takes four draws. Its
// states are formed eight at a time, the four of two pixels, in two vectors:
// state n + 8 follows from state n by one step of the generator taken eight
// times over, so the eight multiplications are independent and go side by side.
constexpr size_t kChaosLanes = 8;
constexpr uint32_t kChaosMultiplier = 1664525u, kChaosIncrement = 1013904223u;
constexpr uint32_t ChaosStep(uint32_t state, uint32_t multiplier, uint32_t increment) {
  return state * multiplier + increment;
}
// The generator's step taken kChaosLanes times: x -> m^8 x + c (m^7 + ... + 1).
constexpr uint32_t ChaosLeapMultiplier() {
  uint32_t m = 1;
  for (size_t k = 0; k < kChaosLanes; ++k) m *= kChaosMultiplier;
  return m;
}
constexpr uint32_t ChaosLeapIncrement() {
  uint32_t c = 0;
  for (size_t k = 0; k < kChaosLanes; ++k) c = ChaosStep(c, kChaosMultiplier, kChaosIncrement);
  return c;
}

class ChaosGenerator {
 public:
  ChaosGenerator() {
    uint32_t lanes[kChaosLanes];
    uint32_t state = 1977;
    for (uint32_t& lane : lanes) lane = state = ChaosStep(state, kChaosMultiplier, kChaosIncrement);
    first_ = _mm_loadu_si128(reinterpret_cast<const __m128i*>(lanes));
    second_ = _mm_loadu_si128(reinterpret_cast<const __m128i*>(lanes + 4));
  }

  // The next pixel's draws and the one's after it, as floats in [1, 2).
  __m128 FirstDraws() const { return Draws(first_); }
  __m128 SecondDraws() const { return Draws(second_); }

  // On by two pixels, or by one (the second pixel's states come first next).
  void PassTwo() {
    first_ = Leap(first_);
    second_ = Leap(second_);
  }
  void PassOne() {
    const __m128i passed = first_;
    first_ = second_;
    second_ = Leap(passed);
  }

 private:
  static __m128 Draws(__m128i states) {
    return _mm_castsi128_ps(_mm_or_si128(_mm_and_si128(states, _mm_set1_epi32(0x7FFFFF)), _mm_set1_epi32(0x3F800000)));
  }
  // Four lanes' x -> m^8 x + c (m^7 + ... + 1), modulo 2^32: SSE2 multiplies
  // the even and the odd lanes apart, 32 x 32 to 64 bits.
  static __m128i Leap(__m128i states) {
    const __m128i m = _mm_set1_epi32(static_cast<int32_t>(ChaosLeapMultiplier()));
    const __m128i even = _mm_mul_epu32(states, m);
    const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(states, 32), m);
    const __m128i product = _mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                                               _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)));
    return _mm_add_epi32(product, _mm_set1_epi32(static_cast<int32_t>(ChaosLeapIncrement())));
  }

  __m128i first_, second_;  // the next eight states, in order
};

// Where the pixels of a row land: for each pixel, in the order the pixels
// are thrown (from the last to the first), its place in the frame, or -1
// where it lands outside.
class Throw {
 public:
  Throw(int32_t width, int32_t height, double spread)
      : width_(width), height_(height), halfWidth_(width / 2), halfHeight_(height / 2),
        w_(RoundToSingle(width)), h_(RoundToSingle(height)), spread_(spread) {}

  // Pixel k of the row is column width - 1 - k. Two pixels at a time, in
  // IEEE doubles as the one-pixel formula has them:
  // dy = (u1^2 - u2^2) H, dx = (u3^2 - u4^2) W,
  // y' = y - (dy - (H/2 - y)) s, x' = x - ((x - W/2) - dx) s, truncated.
  // `targets` holds width + 1: an odd row's last pair forms one past it.
  void Row(int32_t y, ChaosGenerator& random, int64_t* targets) const {
    const __m128d one = _mm_set1_pd(1.0), h = _mm_set1_pd(h_), w = _mm_set1_pd(w_), s = _mm_set1_pd(spread_);
    const __m128d rowY = _mm_set1_pd(y), towardsCentreY = _mm_set1_pd(halfHeight_ - y);
    const __m128d two = _mm_set1_pd(2.0), halfWidth = _mm_set1_pd(halfWidth_);
    const __m128i width = _mm_set1_epi32(width_), sign = _mm_set1_epi32(INT32_MIN);
    const __m128i widthSigned = _mm_xor_si128(width, sign), heightSigned = _mm_xor_si128(_mm_set1_epi32(height_), sign);
    __m128d column = _mm_set_pd(width_ - 2, width_ - 1);  // the pair's two columns
    for (int32_t k = 0; k < width_; k += 2) {
      const __m128 first = random.FirstDraws(), second = random.SecondDraws();
      if (k + 2 <= width_) {
        random.PassTwo();
      } else {
        random.PassOne();
      }
      const __m128 u12 = _mm_unpacklo_ps(first, second), u34 = _mm_unpackhi_ps(first, second);
      const __m128d u1 = _mm_sub_pd(_mm_cvtps_pd(u12), one), u2 = _mm_sub_pd(_mm_cvtps_pd(_mm_movehl_ps(u12, u12)), one);
      const __m128d u3 = _mm_sub_pd(_mm_cvtps_pd(u34), one), u4 = _mm_sub_pd(_mm_cvtps_pd(_mm_movehl_ps(u34, u34)), one);
      const __m128d dy = _mm_mul_pd(_mm_sub_pd(_mm_mul_pd(u1, u1), _mm_mul_pd(u2, u2)), h);
      const __m128d dx = _mm_mul_pd(_mm_sub_pd(_mm_mul_pd(u3, u3), _mm_mul_pd(u4, u4)), w);
      // The row offset enters with a plus sign, the column offset with a
      // minus sign: the asymmetry is part of the look.
      const __m128d ty = _mm_sub_pd(rowY, _mm_mul_pd(_mm_sub_pd(dy, towardsCentreY), s));
      const __m128d fromCentre = _mm_sub_pd(column, halfWidth);  // whole numbers: exact
      const __m128d tx = _mm_sub_pd(column, _mm_mul_pd(_mm_sub_pd(fromCentre, dx), s));
      column = _mm_sub_pd(column, two);
      // Truncation as TruncToInt32 does it: NaN and the out-of-range give
      // INT32_MIN, outside the frame. Inside where both, taken as unsigned,
      // lie below the frame's sides; the place is row * width + column in
      // 64 bits, all ones outside.
      const __m128i rows = _mm_cvttpd_epi32(ty), columns = _mm_cvttpd_epi32(tx);
      const __m128i inside = _mm_and_si128(_mm_cmplt_epi32(_mm_xor_si128(rows, sign), heightSigned),
                                           _mm_cmplt_epi32(_mm_xor_si128(columns, sign), widthSigned));
      const __m128i rowStarts = _mm_mul_epu32(_mm_shuffle_epi32(rows, _MM_SHUFFLE(1, 1, 0, 0)), width);
      const __m128i places = _mm_add_epi64(rowStarts, _mm_unpacklo_epi32(columns, _mm_setzero_si128()));
      const __m128i outside = _mm_xor_si128(_mm_unpacklo_epi32(inside, inside), _mm_set1_epi32(-1));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(targets + k), _mm_or_si128(places, outside));
    }
  }

 private:
  int32_t width_, height_, halfWidth_, halfHeight_;
  double w_, h_, spread_;
};

int32_t ChaoticDissolveRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const size_t pixels = FramePixelCount(ri);
  if (pixels == 0) return 1;
  FillPixels(ri->Output, pixels, HostCalls(ri).PenColor(color));

  const float p = RoundToSingle(ri->Progress);
  const double spread = 4.0 * p * p * (1.0 - p) * (1.0 - p);
  const int32_t width = ri->Width, height = ri->Height;
  // A row's room, one more than its width: an odd row's last pair forms a place past it.
  const size_t room = static_cast<size_t>(width) + 1;
  const Scratch<int64_t> targets = AllocateScratch<int64_t>(room);
  const Scratch<uint32_t> faded = AllocateScratch<uint32_t>(room);
  if (!targets || !faded) return 1;  // no memory for a row: the background alone

  const Throw thrower(width, height, spread);
  int64_t* const target = targets.get();
  const FrameRows f = FrameRows::Of(ri);
  ChaosGenerator random;
  // Later pixels overwrite earlier ones, so the order is part of the result:
  // rows from the top down, each from its last pixel to its first.
  for (int32_t y = height - 1; y >= 0; --y) {
    thrower.Row(y, random, target);
    FadeRow(reinterpret_cast<const uint8_t*>(f.A(y)), reinterpret_cast<const uint8_t*>(f.B(y)),
            reinterpret_cast<uint8_t*>(faded.get()), 4 * static_cast<size_t>(width), p);
    // The places lie scattered over a band of the frame: asking for each a
    // few throws ahead lets the writes' cache misses overlap.
    constexpr int32_t kAhead = 16;
    for (int32_t k = 0; k < width; ++k) {
      if (k + kAhead < width && target[k + kAhead] >= 0) __builtin_prefetch(f.output + target[k + kAhead], 1);
      if (target[k] >= 0) f.output[target[k]] = faded[width - 1 - k];
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(ChaoticDissolve, kTexts, kFields)
KR_TEST_PROFILE("Chaotic Dissolve", .heavier = {"Color=#FF2000"})
