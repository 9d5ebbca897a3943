// Hilbert Mosaic: the frame is a mosaic of 4 x 4 cells that switch from A to
// B one after another along a Hilbert curve, starting in the cell at memory
// row 0, column 0 and ending in the last row band's column 0. Whole pixels
// are copied, nothing is blended.
//
// The walk and its marks are the Hilbert walker's module state (raster/
// hilbert.h), shared by every instance: renders of this transition must not
// run concurrently (its test profile says so, and the concurrency test
// leaves it out).
#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/hilbert.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Hilbert Mosaic",
                             .signature = "Hilbert Mosaic (ZE plug-in SDK effect)",
                             .displayName = "Hilbert Mosaic",
                             .description = "Vb becomes visible like a  hilbert mosaic."};

ClipFields clip;

constexpr auto kFields = FieldTable(clip);

int32_t HilbertMosaicRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const int32_t level = gHilbertWalk.level;
  const int32_t side = 1 << level;
  // The progress quantised to 1/10000, then scaled to the cells; the product
  // wraps in 32 bits (an infinite or NaN Progress converts to INT32_MIN and
  // gives 0 cells), and a negative count marks nothing.
  const int32_t cells = WrappingMultiply(TruncToInt32(10000.0 * ri->Progress), side * side) / 10000;
  StartHilbertWalk(cells);

  const FrameRows f = FrameRows::Of(ri);
  if (f.width <= 0 || f.height <= 0) return 1;
  // Column band k holds the x with (x * side) / width = k. Products are taken
  // in 64 bits, so no frame size wraps them.
  int32_t bandStart[kHilbertSide + 1];
  for (int32_t k = 0; k <= side; ++k) {
    bandStart[k] = static_cast<int32_t>((int64_t{k} * f.width + side - 1) / side);
  }
  for (int32_t y = 0; y < f.height; ++y) {
    const int32_t cy = static_cast<int32_t>(int64_t{y} * side / f.height);
    PixelWord* out = f.Out(y);
    for (int32_t cx = 0; cx < side; ++cx) {
      const PixelWord* from = HilbertMarked(cy, cx) ? f.B(y) : f.A(y);
      CopyRun(out + bandStart[cx], from + bandStart[cx], bandStart[cx + 1] - bandStart[cx]);
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(HilbertMosaic, kTexts, kFields)
KR_TEST_PROFILE("Hilbert Mosaic", .sharedState = true)
