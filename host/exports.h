// Every name the shared object exports.
#pragma once

#include "host/export.h"
#include "host/host_interface.h"

// The declaration functions of the effects that exist, in the order KrDeclare
// calls them; each new transition adds its row at its place in that order.
#define KR_EFFECTS(X) \
  X(BandPush)                                 \
  X(BandSlide)                                \
  X(BandWipe)                                 \
  X(BrightnessPlasma)                         \
  X(Builder)                                  \
  X(CenterZoom)                               \
  X(ChaoticDissolve)                          \
  X(ChessWipe)                                \
  X(Clock)                                    \
  X(CornerZoom)                               \
  X(CrossSplit)                               \
  X(CrossStretch)                             \
  X(CubeStretch)                              \
  X(DitherDissolve)                           \
  X(Doors)                                    \
  X(DoorsVertical) /* "Vertical Doors" */     \
  X(FadeDissolve) /* "Traditional Fade" */    \
  X(FlashOver)                                \
  X(FlyingCarpet)                             \
  X(Fractal)                                  \
  X(HilbertMosaic)                            \
  X(Inset)                                    \
  X(IrisCross)                                \
  X(IrisDiamond)                              \
  X(IrisRound)                                \
  X(IrisSquared)                              \
  X(IrisStar)                                 \
  X(Mosaic)                                   \
  X(Origami) /* "Origami Unfold" */           \
  X(Peel)                                     \
  X(PinWheel)                                 \
  X(Push)                                     \
  X(RandomDissolve)                           \
  X(Roll)                                     \
  X(Rotation)                                 \
  X(Shredder)                                 \
  X(Slide)                                    \
  X(SlidingBoxes)                             \
  X(SlidingDoors)                             \
  X(SlidingQuarters)                          \
  X(SmoulderingPaper) /* "Smouldering Paper" */\
  X(Sphere)                                   \
  X(Spin) /* "Spin Away" */                   \
  X(Spiral)                                   \
  X(Swap)                                     \
  X(SwingingDoor)                             \
  X(SwingingDoorVertical) /* "Vertical Swinging Door" */\
  X(VenetianBlinds)                           \
  X(WindscreenWiper)                          \
  X(Wipe)                                     \
  X(ZoomOut)

#define KR_DECLARE_PROTOTYPE(name) KR_EXPORT int32_t KrDeclare##name(t_KrHostInfo* hi);
KR_EFFECTS(KR_DECLARE_PROTOTYPE)
#undef KR_DECLARE_PROTOTYPE

KR_EXPORT int32_t KrDeclare(t_KrHostInfo* hi);
KR_EXPORT int32_t KrScriptExecuteHi(t_KrHostInfo* hi, const char* format, ...);
KR_EXPORT int32_t KrScriptExecute(t_KrHostInfo* hi, const char* format, ...);
KR_EXPORT void KrDebug(int32_t, int32_t, const char* format, ...);
