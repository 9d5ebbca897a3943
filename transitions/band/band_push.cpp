// Band Push: in every band B pushes A out to the side it travels to, the
// bands of odd index travelling against those of even index.
#include "host/transition.h"
#include "transitions/band/band_skeleton.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Push/Band Push", .signature = "Band Push (ZE plug-in SDK effect)",
                             .displayName = "Band Push", .description = "Vb pushes Va bandwise to the side."};

BandFields fields;

constexpr auto kFields = BandFieldTable(fields);

// Both pictures move: B in by the shift, A out by as much.
BandReads PushedOut(const BandTravel& t) { return {BandMovedInShift(t), t.entersAtLowEnd ? -t.shift : t.shift}; }

int32_t BandPushRender(t_KrRenderInfo* ri) { return RenderBands(ri, fields, PushedOut); }

}  // namespace
}  // namespace krl

KR_TRANSITION(BandPush, kTexts, kFields)
KR_TEST_PROFILE("Band Push", .heavier = {"Direction=1", "BandCount=50"})
