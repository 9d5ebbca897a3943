// Wipe: in every cell of the pen grid B is uncovered in place from one side
// while A stays still, a pen band running ahead of B's edge.
#include "host/exports.h"
#include "transitions/pengrid/travel_band.h"

namespace krl {
namespace {

PenGridFields fields;

constexpr auto kFields =
    PenGridFieldTable(fields, "Specifies the position where Vb starts to move in.", kTravelItems);

// Neither clip moves.
ReadShifts InPlace(const BandCell&) { return {}; }

int32_t WipeInit(t_KrRenderInfo* ri) { return InitDefaults(ri, kFields); }

int32_t WipeRender(t_KrRenderInfo* ri) { return RenderTravelBand(ri, fields, InPlace); }

constexpr EffectSpec kEffect{
    .menuPath = "Transitions/Wipe/Wipe",
    .signature = "Wipe (ZE plug-in SDK effect)",
    .displayName = "Wipe",
    .description = "Va is wiped out while Vb becomes visible.",
    .init = WipeInit,
    .render = WipeRender,
    .fields = kFields,
};

}  // namespace
}  // namespace krl

KR_EXPORT int32_t KrDeclareWipe(t_KrHostInfo* hi) { return krl::DeclareEffect(hi, krl::kEffect); }
