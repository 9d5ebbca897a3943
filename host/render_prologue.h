// The opening every render shares: refuse anything but 32-bit pixels, then
// honour "TransType" by exchanging the inputs in the record itself, so that
// everything after it runs from InputA (Progress 0) to InputB (Progress 1).
#pragma once

#include <utility>

#include "host/host_calls.h"

namespace krl {

// Only 32-bit pixels are drawn; anything else is reported and refused.
inline bool AcceptsPixelSize(t_KrRenderInfo* ri) {
  if (ri->BitsPerPixel == 32) return true;
  HostCalls(ri).ReportError("Unsupported pixel size");
  return false;
}

// False when the frame is refused; the render then returns 0.
inline bool BeginRender(t_KrRenderInfo* ri, FieldIndex transType) {
  if (!AcceptsPixelSize(ri)) return false;
  if (HostCalls(ri).Field(transType) != 0) std::swap(ri->InputA, ri->InputB);
  return true;
}

// The same for the one transition that exchanges the clips in its own
// locals *a and *b and leaves the record as the host filled it.
inline bool BeginRenderInLocals(t_KrRenderInfo* ri, FieldIndex transType, const uint8_t** a, const uint8_t** b) {
  if (!AcceptsPixelSize(ri)) return false;
  *a = ri->InputA;
  *b = ri->InputB;
  if (HostCalls(ri).Field(transType) != 0) std::swap(*a, *b);
  return true;
}

}  // namespace krl
