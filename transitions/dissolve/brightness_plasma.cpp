// Brightness Plasma: a threshold sweeps through the whole brightness range,
// and each pixel is taken whole from A or B depending on which side of it the
// brightness of one chosen clip lies; that clip's light and dark areas become
// the edge along which the change spreads.
#include <emmintrin.h>

#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Brightness Plasma", .signature = "Brightness Plasma (ZE plug-in SDK effect)",
                             .displayName = "Brightness Plasma", .description = "Va is cut by a brightness threshold to reveal Vb."};

ClipFields clip;
FieldIndex darkToLight, cutA;

constexpr auto kFields = FieldTable(clip,
    Bool(&darkToLight, "DARK2LIGHT", "Dark to Light")
        .Help("Specifies whether the clips changing process proceeds from dark to light or vice versa.")
        .Default(1),
    Bool(&cutA, "VA_CUT", "Cut Va").Help("Choose here to depend on the brightness of Va or Vb.").Default(1));

constexpr int32_t kBrightest = 25500;

// Blue, green and red weighted in hundredths; alpha does not count.
constexpr int16_t kWeights[4] = {11, 59, 30, 0};
inline int32_t Brightness(const uint8_t* pixel) {
  return kWeights[0] * pixel[0] + kWeights[1] * pixel[1] + kWeights[2] * pixel[2];
}

// Which clip a pixel comes from: A where (x > y) != invert, with (x, y) the
// brightness and the threshold, or the other way round when !brightnessFirst.
struct CutRule {
  bool brightnessFirst, invert;

  bool KeepsA(int32_t brightness, int32_t threshold) const {
    return (brightnessFirst ? brightness > threshold : threshold > brightness) != invert;
  }
  // All ones in the 32-bit lanes that keep A.
  __m128i KeepsA(__m128i brightness, __m128i threshold) const {
    const __m128i greater =
        brightnessFirst ? _mm_cmpgt_epi32(brightness, threshold) : _mm_cmpgt_epi32(threshold, brightness);
    return invert ? _mm_xor_si128(greater, _mm_set1_epi32(-1)) : greater;
  }
};

// The brightness of four pixels, one a 32-bit lane: each pair of weighted
// channels summed by pmaddwd, then the pairs.
__m128i Brightness4(__m128i pixels) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i weights = _mm_setr_epi16(kWeights[0], kWeights[1], kWeights[2], kWeights[3], kWeights[0],
                                         kWeights[1], kWeights[2], kWeights[3]);
  const __m128 low = _mm_castsi128_ps(_mm_madd_epi16(_mm_unpacklo_epi8(pixels, zero), weights));
  const __m128 high = _mm_castsi128_ps(_mm_madd_epi16(_mm_unpackhi_epi8(pixels, zero), weights));
  return _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0))),
                       _mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1))));
}

// Takes each pixel from A where the rule keeps it for the brightness of the
// judged clip's pixel, else from B: four pixels at a time.
void Cut(t_KrRenderInfo* ri, size_t pixels, const uint8_t* judged, CutRule rule, int32_t threshold) {
  const uint8_t *a = ri->InputA, *b = ri->InputB;
  uint8_t* out = ri->Output;
  const __m128i t = _mm_set1_epi32(threshold);
  size_t i = 0;
  for (; i + 4 <= pixels; i += 4) {
    const auto at = [i](const uint8_t* frame) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(frame + 4 * i)); };
    const __m128i keepA = rule.KeepsA(Brightness4(at(judged)), t);
    const __m128i mixed = _mm_or_si128(_mm_and_si128(keepA, at(a)), _mm_andnot_si128(keepA, at(b)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * i), mixed);
  }
  for (; i < pixels; ++i) CopyPixel(out, rule.KeepsA(Brightness(judged + 4 * i), threshold) ? a : b, i);
}

int32_t BrightnessPlasmaRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const bool fromDark = host.Field(darkToLight) != 0;
  const bool judgeA = host.Field(cutA) != 0;
  const size_t pixels = FramePixelCount(ri);

  const int32_t swept = TruncToInt32(25500.0 * ri->Progress);
  const int32_t threshold = fromDark ? swept : WrappingSubtract(kBrightest, swept);
  // The tests on A include the threshold, those on B exclude it; the end
  // frames differ accordingly.
  CutRule rule;
  if (judgeA) {
    rule = fromDark ? CutRule{false, true} : CutRule{true, true};  // l >= t, l <= t
  } else {
    rule = fromDark ? CutRule{true, false} : CutRule{false, false};  // l > t, l < t
  }
  Cut(ri, pixels, judgeA ? ri->InputA : ri->InputB, rule, threshold);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(BrightnessPlasma, kTexts, kFields)
KR_TEST_PROFILE("Brightness Plasma", .heavier = {"VA_CUT=off", "DARK2LIGHT=off"})
