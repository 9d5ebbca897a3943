// Dither Dissolve: the frame is cut into 9 x 9 cells, and within every cell
// the pixels turn from A to B one at a time in a fixed ordered-dither
// sequence, so the picture changes through a steady dither pattern.
#include <emmintrin.h>

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
    // The row's choice repeats every 9 pixels: as masks of 36 pixels (four
    // cells, nine vectors of four), all ones where B shows.
    uint32_t choice[4 * kCell];
    for (int i = 0; i < 4 * kCell; ++i) choice[i] = kRoundOf[(y % kCell) * kCell + i % kCell] < rounds ? ~0u : 0u;
    __m128i mask[kCell];
    for (int j = 0; j < kCell; ++j) mask[j] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(choice + 4 * j));
    const size_t rowStart = 4 * static_cast<size_t>(y) * static_cast<size_t>(width);
    const uint8_t* a = ri->InputA + rowStart;
    const uint8_t* b = ri->InputB + rowStart;
    uint8_t* out = ri->Output + rowStart;
    // Frames may lie at any address: unaligned loads and stores.
    int32_t x = 0;
    for (; x + 4 * kCell <= width; x += 4 * kCell) {
      for (int j = 0; j < kCell; ++j) {
        const size_t at = 4 * (static_cast<size_t>(x) + 4 * static_cast<size_t>(j));
        const __m128i fromA = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + at));
        const __m128i fromB = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + at));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at),
                         _mm_or_si128(_mm_andnot_si128(mask[j], fromA), _mm_and_si128(mask[j], fromB)));
      }
    }
    // The rest one by one; cells at the right edge are cut off where the row ends.
    for (; x < width; ++x) CopyPixel(out, choice[x % (4 * kCell)] != 0 ? b : a, static_cast<size_t>(x));
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(DitherDissolve, kTexts, kFields)
KR_TEST_PROFILE("Dither Dissolve")
