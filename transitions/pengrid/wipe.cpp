// Wipe: in every cell of the pen grid B is uncovered in place from one side
// while A stays still, a pen band running ahead of B's edge.
#include "host/transition.h"
#include "transitions/pengrid/travel_band.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Wipe/Wipe", .signature = "Wipe (ZE plug-in SDK effect)",
                             .displayName = "Wipe", .description = "Va is wiped out while Vb becomes visible."};

PenGridFields fields;

constexpr auto kFields =
    PenGridFieldTable(fields, "Specifies the position where Vb starts to move in.", kTravelItems);

// Neither clip moves.
ReadShifts InPlace(const BandCell&) { return {}; }

int32_t WipeRender(t_KrRenderInfo* ri) { return RenderTravelBand(ri, fields, InPlace); }

}  // namespace
}  // namespace krl

KR_TRANSITION(Wipe, kTexts, kFields)
KR_TEST_PROFILE("Wipe", .heavier = {"Divide_X=4", "BorderWidth=6", "Color=#FF2000", "Direction=1"})
