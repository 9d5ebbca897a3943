// The opening every render shares: refuse anything but 32-bit pixels, then
// honour "TransType" by exchanging the inputs in the record itself, so that
// everything after it runs from InputA (Progress 0) to InputB (Progress 1).
#pragma once

#include <utility>

#include "host/host_calls.h"

namespace krl {

// False when the frame is refused; the render then returns 0.
inline bool BeginRender(t_KrRenderInfo* ri, FieldIndex transType) {
  HostCalls host(ri);
  if (ri->BitsPerPixel != 32) {
    host.ReportError("Unsupported pixel size");
    return false;
  }
  if (host.Field(transType) != 0) std::swap(ri->InputA, ri->InputB);
  return true;
}

}  // namespace krl
