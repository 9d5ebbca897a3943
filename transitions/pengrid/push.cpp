// Push: in every cell of the pen grid B moves in from one side and pushes A
// out of the other, a pen band between them.
#include "host/transition.h"
#include "transitions/pengrid/travel_band.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Push/Push", .signature = "Push (ZE plug-in SDK effect)",
                             .displayName = "Push", .description = "Va is pushed aside by Vb."};

PenGridFields fields;

constexpr auto kFields =
    PenGridFieldTable(fields, "Specifies the position where Vb starts to move in.", kTravelItems);

// A moves by n pixels. Left > Right alone starts A right after the pen, so
// the pen pushes A too (a shift of n + t); in the other directions the pen
// hides the t pixels of A next to it. The asymmetry is part of the look.
ReadShifts Pushed(const BandCell& band) {
  int32_t a = band.advance;
  switch (band.travel) {
    case Travel::LeftToRight: a = band.cell.x0 - band.penEnd; break;
    case Travel::BottomToTop: a = -band.advance; break;
    case Travel::RightToLeft:
    case Travel::TopToBottom: break;
  }
  return {MovedInShift(band), a};
}

int32_t PushRender(t_KrRenderInfo* ri) { return RenderTravelBand(ri, fields, Pushed); }

}  // namespace
}  // namespace krl

KR_TRANSITION(Push, kTexts, kFields)
KR_TEST_PROFILE("Push", .heavier = {"Divide_X=4", "BorderWidth=6", "Color=#FF2000"})
