// Every function the host calls (declarations, inits, renders, user-data
// deleters) is entered through one of these wrappers, so that whatever the
// library needs of the processor at a call is arranged in one place.
#pragma once

#include "host/declare.h"
#include "host/host_interface.h"

namespace krl {

template <int32_t (*Function)(t_KrRenderInfo*)>
int32_t HostEntry(t_KrRenderInfo* ri) {
  return Function(ri);
}

template <void (*Function)(t_KrRenderInfo*)>
void HostEntry(t_KrRenderInfo* ri) {
  Function(ri);
}

inline int32_t DeclarationEntry(t_KrHostInfo* hi, const EffectSpec& effect) { return DeclareEffect(hi, effect); }

}  // namespace krl
