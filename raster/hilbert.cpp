// The Hilbert curve walker (see hilbert.h). Each procedure of order n makes
// three steps and, only when n > 0, four calls of order n - 1 around them;
// once the budget is used up every procedure returns right after its next step.
#include "raster/hilbert.h"

#include "host/entry.h"

#include <cstring>

namespace krl {

HilbertWalk gHilbertWalk = {{}, 0, 0, 0, 2};

namespace {

// Deeper orders walk far outside the grid; 15 keeps the recursion shallow.
constexpr int kDeepestOrder = 15;

// Moves one cell; false when the walk is to stop. Cells outside the grid are
// walked but not marked (only a caller's order above the level leaves it).
bool Step(int32_t dr, int32_t dc) {
  HilbertWalk& w = gHilbertWalk;
  w.r = static_cast<int32_t>(static_cast<uint32_t>(w.r) + static_cast<uint32_t>(dr));  // wraps, never overflows
  w.c = static_cast<int32_t>(static_cast<uint32_t>(w.c) + static_cast<uint32_t>(dc));
  if (w.budget == 0) return false;
  --w.budget;
  if (w.r >= 0 && w.r < kHilbertSide && w.c >= 0 && w.c < kHilbertSide) w.marks[w.c * kHilbertSide + w.r] = 1;
  return true;
}

}  // namespace

// The table's four procedures; the exported hilbert_a .. hilbert_d enter here.
void HilbertA(int order);
void HilbertB(int order);
void HilbertC(int order);
void HilbertD(int order);

void StartHilbertWalk(int32_t cells) {
  HilbertWalk& w = gHilbertWalk;
  std::memset(w.marks, 0, sizeof w.marks);
  w.r = w.c = 0;
  if (cells <= 0) {
    w.budget = 0;
    return;
  }
  w.budget = static_cast<uint32_t>(cells) - 1;
  w.marks[0] = 1;
  if (w.level > 0) HilbertA(w.level - 1);
}


// One table row each: call 1, step 1, call 2, step 2, call 3, step 3, call 4.
#define KR_HILBERT_PROCEDURE(name, first, dr1, dc1, second, dr2, dc2, third, dr3, dc3, fourth) \
  void name(int order) {                                                                      \
    if (order > kDeepestOrder) order = kDeepestOrder;                                         \
    const bool deeper = order > 0;                                                            \
    if (deeper) first(order - 1);                                                             \
    if (!Step(dr1, dc1)) return;                                                              \
    if (deeper) second(order - 1);                                                            \
    if (!Step(dr2, dc2)) return;                                                              \
    if (deeper) third(order - 1);                                                             \
    if (!Step(dr3, dc3)) return;                                                              \
    if (deeper) fourth(order - 1);                                                            \
  }

KR_HILBERT_PROCEDURE(HilbertA, HilbertB, 0, +1, HilbertA, +1, 0, HilbertA, 0, -1, HilbertD)
KR_HILBERT_PROCEDURE(HilbertB, HilbertA, +1, 0, HilbertB, 0, +1, HilbertB, -1, 0, HilbertC)
KR_HILBERT_PROCEDURE(HilbertC, HilbertD, 0, -1, HilbertC, -1, 0, HilbertC, 0, +1, HilbertB)
KR_HILBERT_PROCEDURE(HilbertD, HilbertC, -1, 0, HilbertD, 0, -1, HilbertD, +1, 0, HilbertA)
#undef KR_HILBERT_PROCEDURE

}  // namespace krl

KR_ENTRY_POINT void hilbert_a(int order) { krl::Guarded<krl::HilbertA>(order); }
KR_ENTRY_POINT void hilbert_b(int order) { krl::Guarded<krl::HilbertB>(order); }
KR_ENTRY_POINT void hilbert_c(int order) { krl::Guarded<krl::HilbertC>(order); }
KR_ENTRY_POINT void hilbert_d(int order) { krl::Guarded<krl::HilbertD>(order); }
