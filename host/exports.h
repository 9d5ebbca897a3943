// Every name the shared object exports.
#pragma once

#include "host/export.h"
#include "host/host_interface.h"

// The effect list: the declaration functions of the transitions that exist,
// in the order KrDeclare calls them (the order of their names); a new
// transition adds its row at its place. X(Name) is KrDeclare<Name>, defined
// by KR_TRANSITION in transitions/<family>/<name>.cpp (snake case), whose
// texts give its display name where that differs from Name.
#define KR_EFFECTS(X) \
  X(BrightnessPlasma)  \
  X(ChaoticDissolve)   \
  X(DitherDissolve)    \
  X(FadeDissolve) /* "Traditional Fade" */ \
  X(FlashOver)         \
  X(Fractal)           \
  X(HilbertMosaic)     \
  X(Inset)             \
  X(IrisCross)         \
  X(IrisDiamond)       \
  X(IrisRound)         \
  X(IrisSquared)       \
  X(IrisStar)          \
  X(Mosaic)            \
  X(Push)              \
  X(RandomDissolve)    \
  X(Slide)             \
  X(SmoulderingPaper)  \
  X(Wipe)

#define KR_DECLARE_PROTOTYPE(name) KR_EXPORT int32_t KrDeclare##name(t_KrHostInfo* hi);
KR_EFFECTS(KR_DECLARE_PROTOTYPE)
#undef KR_DECLARE_PROTOTYPE

KR_EXPORT int32_t KrDeclare(t_KrHostInfo* hi);
KR_EXPORT int32_t KrScriptExecuteHi(t_KrHostInfo* hi, const char* format, ...);
KR_EXPORT int32_t KrScriptExecute(t_KrHostInfo* hi, const char* format, ...);
KR_EXPORT void KrDebug(int32_t, int32_t, const char* format, ...);
