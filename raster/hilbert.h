// The Hilbert curve walker: four mutually recursive procedures that walk a
// Hilbert curve over a grid of cells one cell at a time and mark the first
// cells the walk visits. Their state is one module-wide record, not an
// object: two walks at the same time would corrupt each other, so callers
// (Hilbert Mosaic) must not run concurrently.
//
// A caller clears the marks, sets r = c = 0, marks cell (0, 0) itself, sets
// the budget to N - 1 and calls hilbert_a(level - 1): StartHilbertWalk does
// exactly that. Afterwards the marks are the first N cells of the walk.
#pragma once

#include <cstdint>

#include "host/export.h"

KR_EXPORT void hilbert_a(int order);
KR_EXPORT void hilbert_b(int order);
KR_EXPORT void hilbert_c(int order);
KR_EXPORT void hilbert_d(int order);

namespace krl {

inline constexpr int32_t kHilbertSide = 16;  // room for a 16 x 16 grid (level 4)

struct HilbertWalk {
  int32_t marks[kHilbertSide * kHilbertSide];  // index c * 16 + r; 1 = marked
  int32_t r, c;                                // the current cell
  uint32_t budget;                             // marks still allowed
  int32_t level;                               // grid side 2^level; 2, never changed
};

// The walker's state, shared by every caller in the process.
extern HilbertWalk gHilbertWalk;

inline bool HilbertMarked(int32_t r, int32_t c) { return gHilbertWalk.marks[c * kHilbertSide + r] != 0; }

// Marks the first `cells` cells of the level's walk (none when cells <= 0).
void StartHilbertWalk(int32_t cells);

}  // namespace krl
