// Random Dissolve: the frame is cut into 4 x 4 cells, and in every cell a
// number of pixels of the other clip is laid over the base, each at a place
// drawn afresh from three fixed orders, so the picture sparkles from frame
// to frame. The process-wide rand() decides; this transition never seeds it.
#include <algorithm>

#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/process_rand.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Random Dissolve", .signature = "Random Dissolve (ZE plug-in SDK effect)",
                             .displayName = "Random Dissolve", .description = "Va dithers randomly to Vb."};

ClipFields clip;

constexpr auto kFields = FieldTable(clip);

constexpr int32_t kCell = 4;
constexpr int32_t kPositions = kCell * kCell;

// Three orders of the positions of a cell (column + 4 * row); every draw
// picks one of them at random.
constexpr int32_t kOrders[3][kPositions] = {
    {4, 15, 1, 7, 14, 5, 3, 13, 11, 12, 2, 9, 0, 6, 8, 10},
    {11, 8, 15, 1, 9, 4, 13, 7, 2, 12, 5, 14, 3, 10, 6, 0},
    {6, 12, 11, 0, 14, 4, 3, 8, 1, 15, 2, 9, 7, 13, 10, 5},
};

int32_t RandomDissolveRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const size_t pixels = FramePixelCount(ri);
  if (pixels == 0) return 1;
  const double progress = ri->Progress;
  int32_t draws = TruncToInt32(16.0 * progress);
  // Up to half way B is laid over A, after it A over B, ever fewer pixels.
  const uint8_t* overlay = ri->InputB;
  if (progress > 0.5) {
    CopyPixels(ri->Output, ri->InputB, 0, pixels);
    overlay = ri->InputA;
    // An infinite Progress, whose count is the conversion's "indefinite"
    // INT32_MIN, wraps to a negative count and makes no draws.
    draws = WrappingSubtract(16, draws);
  } else {
    CopyPixels(ri->Output, ri->InputA, 0, pixels);
  }
  draws = std::min(draws, kPositions);  // never more than an order holds
  if (draws <= 0) return 1;

  const int64_t width = ri->Width, height = ri->Height;
  ProcessRand random;
  for (int64_t y0 = 0; y0 < height; y0 += kCell) {
    for (int64_t x0 = 0; x0 < width; x0 += kCell) {
      for (int32_t k = 0; k < draws; ++k) {
        const int32_t position = kOrders[random.Next() % 3][k];
        const int64_t x = x0 + position % kCell, y = y0 + position / kCell;
        // Cells at the right and top edge are cut off; the draw is made anyway.
        if (x < width && y < height) CopyPixel(ri->Output, overlay, static_cast<size_t>(y * width + x));
      }
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(RandomDissolve, kTexts, kFields)
KR_TEST_PROFILE("Random Dissolve", .sharedState = true)
