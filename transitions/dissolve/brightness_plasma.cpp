// Brightness Plasma: a threshold sweeps through the whole brightness range,
// and each pixel is taken whole from A or B depending on which side of it the
// brightness of one chosen clip lies; that clip's light and dark areas become
// the edge along which the change spreads.
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
inline int32_t Brightness(const uint8_t* pixel) { return 11 * pixel[0] + 59 * pixel[1] + 30 * pixel[2]; }

// Takes each pixel from A where `keepA` holds for the brightness of the
// judged clip's pixel, else from B.
template <typename KeepA>
void Cut(t_KrRenderInfo* ri, size_t pixels, const uint8_t* judged, KeepA keepA) {
  for (size_t i = 0; i < pixels; ++i) {
    CopyPixel(ri->Output, keepA(Brightness(judged + 4 * i)) ? ri->InputA : ri->InputB, i);
  }
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
  if (judgeA && fromDark) {
    Cut(ri, pixels, ri->InputA, [threshold](int32_t l) { return l >= threshold; });
  } else if (judgeA) {
    Cut(ri, pixels, ri->InputA, [threshold](int32_t l) { return l <= threshold; });
  } else if (fromDark) {
    Cut(ri, pixels, ri->InputB, [threshold](int32_t l) { return l > threshold; });
  } else {
    Cut(ri, pixels, ri->InputB, [threshold](int32_t l) { return l < threshold; });
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(BrightnessPlasma, kTexts, kFields)
KR_TEST_PROFILE("Brightness Plasma", .heavier = {"VA_CUT=off", "DARK2LIGHT=off"})
