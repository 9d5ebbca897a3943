// Band Slide: in every band B slides in over a still A, the bands of odd
// index from the other side than those of even index.
#include "host/transition.h"
#include "transitions/band/band_skeleton.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Band Slide", .signature = "Band Slide (ZE plug-in SDK effect)",
                             .displayName = "Band Slide", .description = "Vb slides bandwise into Va."};

BandFields fields;

constexpr auto kFields = BandFieldTable(fields);

// B shows the part of it that has come in; A stays where it is.
BandReads SlidIn(const BandTravel& t) { return {BandMovedInShift(t), 0}; }

int32_t BandSlideRender(t_KrRenderInfo* ri) { return RenderBands(ri, fields, SlidIn); }

}  // namespace
}  // namespace krl

KR_TRANSITION(BandSlide, kTexts, kFields)
KR_TEST_PROFILE("Band Slide", .heavier = {"Direction=1", "BandCount=50"})
