// Slide: in every cell of the pen grid B slides in from one side over a
// still A, a pen band running ahead of B's edge.
#include "host/transition.h"
#include "transitions/pengrid/travel_band.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Slide", .signature = "Slide (ZE plug-in SDK effect)",
                             .displayName = "Slide", .description = "Vb slides into Va from one side."};

PenGridFields fields;

constexpr auto kFields =
    PenGridFieldTable(fields, "Specifies the position where Vb starts to slide in.", kTravelItems);

// B shows the part of its cell that has come in; A stays where it is.
ReadShifts SlidIn(const BandCell& band) { return {MovedInShift(band), 0}; }

int32_t SlideRender(t_KrRenderInfo* ri) { return RenderTravelBand(ri, fields, SlidIn); }

}  // namespace
}  // namespace krl

KR_TRANSITION(Slide, kTexts, kFields)
KR_TEST_PROFILE("Slide", .heavier = {"Direction=3", "Divide_Y=3", "BorderWidth=6", "Color=#FF2000"})
