// Band Wipe: in every band the border between A and B moves, the bands of
// odd index from the other side than those of even index; neither picture
// moves.
#include "host/transition.h"
#include "transitions/band/band_skeleton.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Wipe/Band Wipe", .signature = "Band Wipe (ZE plug-in SDK effect)",
                             .displayName = "Band Wipe", .description = "Vb wipes out Va bandwise."};

BandFields fields;

constexpr auto kFields = BandFieldTable(fields);

// B and A both read in place.
BandReads InPlace(const BandTravel&) { return {0, 0}; }

int32_t BandWipeRender(t_KrRenderInfo* ri) { return RenderBands(ri, fields, InPlace); }

}  // namespace
}  // namespace krl

KR_TRANSITION(BandWipe, kTexts, kFields)
KR_TEST_PROFILE("Band Wipe", .heavier = {"Direction=1", "BandCount=50"})
