// Flash Over: the output is always one whole clip, A with short flashes of B
// that come ever closer together until B stays. Each gap is a fixed share of
// the time left; the variation sets that share and the length of a flash.
#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Special/Flash Over", .signature = "Flash Over (ZE plug-in SDK effect)",
                             .displayName = "Flash Over", .description = "Vb flashes in front of Va."};

ClipFields clip;
FieldIndex variation;

constexpr auto kFields = FieldTable(clip,
    Long(&variation, "Variation", "Variation (1..8)", 1.0, 8.0)
        .Limits()
        .Help("Offers different types of flash overs.")
        .Default(4));

constexpr int32_t kTimeUnits = 10000;  // the whole transition

struct FlashSchedule {
  int32_t divisor;  // each gap is the time left divided by this
  int32_t length;   // of one flash, in time units
};

FlashSchedule ScheduleOf(int32_t value) {
  switch (value) {
    case 1: return {5, 40};
    case 2: return {5, 80};
    case 3: return {5, 150};
    case 5: return {7, 30};
    case 6: return {7, 50};
    case 7: return {7, 100};
    case 8: return {7, 200};
    default: return {5, 300};  // 4, the default, and anything outside 1..8
  }
}

// Whether B is shown at time `k`. Every gap is shorter than the one before
// and each flash is at least 30 units long, so the walk ends.
bool ShowsB(int32_t k, FlashSchedule schedule) {
  if (k <= 1) return false;
  if (k >= kTimeUnits) return true;
  int32_t total = kTimeUnits;
  int32_t step = total / schedule.divisor;
  for (;;) {
    if (step > k) return false;                   // waiting for the next flash
    if (k <= step + schedule.length) return true;  // inside a flash
    total -= step;
    k -= step;
    step = total / schedule.divisor;
    if (schedule.length > step) return true;  // the gaps are shorter than a flash: B stays
  }
}

int32_t FlashOverRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const FlashSchedule schedule = ScheduleOf(HostCalls(ri).Field(variation));
  const int32_t k = TruncToInt32(kTimeUnits * ri->Progress);
  CopyPixels(ri->Output, ShowsB(k, schedule) ? ri->InputB : ri->InputA, 0, FramePixelCount(ri));
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(FlashOver, kTexts, kFields)
KR_TEST_PROFILE("Flash Over", .heavier = {"Variation=5"})
