// Two effects for krl's tests: one that shows B from the start, and one
// that refuses every frame past the middle, so that a clip fails after it
// has written some frames and a gallery must show the one without the other.
#include <cstring>

#include "host/declare.h"
#include "host/export.h"
#include "host/host_calls.h"
#include "host/render_prologue.h"
#include "raster/frame.h"

namespace krl {
namespace {

FieldIndex showsType, refusesType;
constexpr FieldSpec kShowsFields[] = {TransTypeField(&showsType)};
constexpr FieldSpec kRefusesFields[] = {TransTypeField(&refusesType)};

int32_t ShowsInit(t_KrRenderInfo* ri) { return InitDefaults(ri, kShowsFields); }
int32_t RefusesInit(t_KrRenderInfo* ri) { return InitDefaults(ri, kRefusesFields); }

int32_t ShowsRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, showsType)) return 0;
  if (FrameByteCount(ri) > 0) std::memcpy(ri->Output, ri->InputB, FrameByteCount(ri));
  return 1;
}

int32_t RefusesRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, refusesType)) return 0;
  if (ri->Progress > 0.5) {
    HostCalls(ri).ReportError("Past the middle");
    return 0;
  }
  if (FrameByteCount(ri) > 0) std::memcpy(ri->Output, ri->InputA, FrameByteCount(ri));
  return 1;
}

constexpr EffectSpec kShows{.menuPath = "Tests/Shows B",
                            .signature = "Shows B (test effect)",
                            .displayName = "Shows B",
                            .description = "B from the start.",
                            .init = ShowsInit,
                            .render = ShowsRender,
                            .fields = kShowsFields};
constexpr EffectSpec kRefuses{.menuPath = "Tests/Refuses",
                              .signature = "Refuses (test effect)",
                              .displayName = "Refuses",
                              .description = "Refuses the second half.",
                              .init = RefusesInit,
                              .render = RefusesRender,
                              .fields = kRefusesFields};

}  // namespace
}  // namespace krl

KR_EXPORT int32_t KrDeclare(t_KrHostInfo* hi) {
  return krl::DeclareEffect(hi, krl::kShows) + krl::DeclareEffect(hi, krl::kRefuses);
}
