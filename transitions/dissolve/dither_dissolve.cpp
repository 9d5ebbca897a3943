// Dither Dissolve: the frame is cut into 9 x 9 cells, and within every cell
// the pixels turn from A to B one at a time in a fixed ordered-dither
// sequence, so the picture changes through a steady dither pattern.
#include <array>

#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Dither Dissolve", .signature = "Dither Dissolve (ZE plug-in SDK effect)",
                             .displayName = "Dither Dissolve", .description = "Va dithers to Vb."};

ClipFields clip;

constexpr auto kFields = FieldTable(clip);

constexpr int kCell = 9;
constexpr int kPositions = kCell * kCell;

// The order in which the positions of a cell (column + 9 * row) turn to B;
// the cell's centre comes first.
constexpr int32_t kOrder[kPositions] = {
    40, 37, 67, 43, 16, 64, 10, 70, 13,  //
    39, 36, 66, 42, 15, 63, 9,  69, 12,  //
    49, 46, 76, 52, 25, 73, 19, 79, 22,  //
    41, 38, 68, 44, 17, 65, 11, 71, 14,  //
    32, 29, 59, 35, 8,  56, 2,  62, 5,   //
    48, 45, 75, 51, 24, 72, 18, 78, 21,  //
    30, 27, 57, 33, 6,  54, 0,  60, 3,   //
    50, 47, 77, 53, 26, 74, 20, 80, 23,  //
    31, 28, 58, 34, 7,  55, 1,  61, 4,
};

// Every position is written exactly once per frame, so the order of the
// writes does not matter: a position shows B when its round comes before the
// frame's round count. This is the order table inverted.
constexpr std::array<int32_t, kPositions> kRoundOf = [] {
  std::array<int32_t, kPositions> round{};
  for (int32_t k = 0; k < kPositions; ++k) round[kOrder[k]] = k;
  return round;
}();

int32_t DitherDissolveRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  if (FramePixelCount(ri) == 0) return 1;
  // One round more than 81 x Progress: at Progress 1 that is 82, and the
  // round past the table copies nothing. A negative count leaves all to A.
  const int64_t rounds = int64_t{TruncToInt32(81.0 * ri->Progress)} + 1;
  const int32_t width = ri->Width, height = ri->Height;
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* source[kCell];
    for (int column = 0; column < kCell; ++column) {
      source[column] = kRoundOf[(y % kCell) * kCell + column] < rounds ? ri->InputB : ri->InputA;
    }
    // Cells at the right edge are cut off where the row ends.
    const size_t rowStart = static_cast<size_t>(y) * static_cast<size_t>(width);
    int column = 0;
    for (int32_t x = 0; x < width; ++x) {
      CopyPixel(ri->Output, source[column], rowStart + static_cast<size_t>(x));
      if (++column == kCell) column = 0;
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(DitherDissolve, kTexts, kFields)
KR_TEST_PROFILE("Dither Dissolve")
