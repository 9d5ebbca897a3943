// Traditional Fade: every byte of the output is a mix of A and B whose weight
// follows the user's "Progression" curve, so the fade may speed up, slow down
// or even run backwards.
#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Traditional Fade", .signature = "Traditional Fade (ZE plug-in SDK effect)",
                             .displayName = "Traditional Fade", .description = "Va fades over to Vb."};

ClipFields clip;
FieldIndex progression;

constexpr auto kFields = FieldTable(clip,
    Alpha(&progression, "Progression", "Progression")
        .Help("Allows to adjust the fade's progression.")
        .DefaultCurve({{0.0, 0.0}, {0.5, 0.5}, {1.0, 1.0}}));

// out = ((a - b) * weightA + b * 256) >> 8 on every byte, alpha included, in
// wrapping 32-bit unsigned arithmetic: curve values outside 0..1 give weights
// outside 0..256 and are used as they are.
void MixBytes(const uint8_t* a, const uint8_t* b, uint8_t* out, size_t count, uint32_t weightA) {
  if (weightA <= 256) {
    // Here the sum equals a * w + b * (256 - w) <= 65280, so 16-bit lanes hold
    // it exactly and the loop vectorises.
    const uint16_t wa = static_cast<uint16_t>(weightA);
    const uint16_t wb = static_cast<uint16_t>(256 - weightA);
    for (size_t i = 0; i < count; ++i) {
      out[i] = static_cast<uint8_t>(static_cast<uint16_t>(a[i] * wa + b[i] * wb) >> 8);
    }
    return;
  }
  for (size_t i = 0; i < count; ++i) {
    const uint32_t av = a[i];
    const uint32_t bv = b[i];
    out[i] = static_cast<uint8_t>(((av - bv) * weightA + (bv << 8)) >> 8);
  }
}

int32_t FadeDissolveRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const double p = HostCalls(ri).Curve(progression);
  const uint32_t weightA = 256u - static_cast<uint32_t>(TruncToInt32(p * 256.0));
  MixBytes(ri->InputA, ri->InputB, ri->Output, FrameByteCount(ri), weightA);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(FadeDissolve, kTexts, kFields)
KR_TEST_PROFILE("Traditional Fade", .heavier = {"Progression=0.999"})
