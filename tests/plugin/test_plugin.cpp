// A plug-in for the tests alone: one effect with a field of every kind, a
// selector with values 10 and -1, and user data freed by its deleter. Its
// render copies A and counts its calls in the user data.
#include "host/declare.h"
#include "host/export.h"
#include "host/render_prologue.h"
#include "raster/frame.h"

#include <cstring>

namespace krl {
namespace {

FieldIndex inputA, inputB, transType, mode, count, amount, flag, tint, weight, extra;

constexpr FieldSpec kFields[] = {
    InputAField(&inputA),
    InputBField(&inputB),
    Input(&extra, "InputC", "Input C"),
    TransTypeField(&transType),
    Selector(&mode, "Mode", "Mode", {{"Ten", 10}, {"Minus one", -1}}).Default(10),
    Long(&count, "Count", "Count (1..8)", 1, 8).Limits().Help("How many.").Default(3),
    FloatA(&amount, "Amount", "Amount", -0.5, 2.25).DefaultCurve({{0.0, 0.125}}),
    Bool(&flag, "Flag", "Flag").HideCurve().Help("A switch.").Default(1),
    Color(&tint, "Tint", "Tint").DefaultColor(170, 171, 172),
    Alpha(&weight, "Weight", "Weight"),
};

struct Counter {
  int32_t* renders;
};

int32_t KindsInit(t_KrRenderInfo* ri) {
  HostCalls(ri).SetUserData(new Counter{new int32_t(0)});
  return InitDefaults(ri, kFields);
}

int32_t KindsRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, transType)) return 0;
  auto* counter = static_cast<Counter*>(HostCalls(ri).UserData());
  ++*counter->renders;
  if (FrameByteCount(ri) > 0) std::memcpy(ri->Output, ri->InputA, FrameByteCount(ri));
  return 1;
}

void KindsDeleteUserData(t_KrRenderInfo* ri) {
  auto* counter = static_cast<Counter*>(HostCalls(ri).UserData());
  if (counter == nullptr) return;
  delete counter->renders;
  delete counter;
  HostCalls(ri).SetUserData(nullptr);
}

constexpr EffectSpec kEffect{
    .menuPath = "Tests/Kinds",
    .signature = "Kinds (test effect)",
    .displayName = "Kinds",
    .description = "Every kind of field.",
    .init = KindsInit,
    .render = KindsRender,
    .deleteUserData = KindsDeleteUserData,
    .fields = kFields,
    .descriptionContext = "Elsewhere",
};

}  // namespace
}  // namespace krl

KR_EXPORT int32_t KrDeclare(t_KrHostInfo* hi) { return krl::DeclareEffect(hi, krl::kEffect); }
