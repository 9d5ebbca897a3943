// Zoom Out: A is magnified about the frame centre up to 16x, then B, as
// magnified, shrinks back to 1x; nearest sampling by bxglVTRZoomOut.
#include "transitions/pengrid/vtr_zoom_out.h"

#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/numeric.h"
#include "raster/resample.h"
#include "transitions/pengrid/pen_grid.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Zoom/Zoom Out", .signature = "Zoom Out (ZE plug-in SDK effect)",
                             .displayName = "Zoom Out", .description = "Va zooms out while Vb zooms in."};

ClipFields clip;

constexpr auto kFields = FieldTable(clip);

void ZoomOutFrames(uint8_t* out, const uint8_t* a, const uint8_t* b, int32_t width, int32_t height, double progress) {
  if (width <= 0 || height <= 0) return;
  // Progress held to 0..1 (NaN as 0): beyond, the step would leave the frame.
  const double p = ShapeProgress(progress);
  // The centre, the halves rounded down; in 64 bits, where a 32-bit width x 100
  // would wrap for frames wider than 21474836 pixels.
  const int32_t cx = TruncToInt32(static_cast<double>(int64_t{width} * 100) / 200.0);
  const int32_t cy = TruncToInt32(static_cast<double>(int64_t{height} * 100) / 200.0);
  const double z = RoundToSingle(30.0 * p) + 1.0;  // 1 at the start, 16 half way, 31 at the end
  const bool first = z <= 16;
  const double f = first ? 1.0 / z : 1.0 / (32 - z);  // source pixels per output pixel
  // The running column, formed and advanced in extended precision.
  long double sx = cx * (1.0L - f);
  PaintSampled(
      reinterpret_cast<PixelWord*>(out), width, {reinterpret_cast<const PixelWord*>(first ? a : b), width, height}, 0,
      width, 0, height,
      [&](int32_t) {
        const int32_t column = TruncToInt32(sx);
        sx = sx + f;
        return column;
      },
      [&](int32_t y) { return TruncToInt32(y * f + cy * (1 - f)); });
}

int32_t ZoomOutRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  ZoomOutFrames(ri->Output, ri->InputA, ri->InputB, ri->Width, ri->Height, ri->Progress);
  return 1;
}

}  // namespace
}  // namespace krl

KR_EXPORT KR_ENTRY_POINT void bxglVTRZoomOut(unsigned char* out, unsigned char* a, unsigned char* b, int32_t /*rowBytes*/,
                              int32_t width, int32_t height, double progress) {
  krl::Guarded<krl::ZoomOutFrames>(out, a, b, width, height, progress);
}

KR_TRANSITION(ZoomOut, kTexts, kFields)
KR_TEST_PROFILE("Zoom Out")
