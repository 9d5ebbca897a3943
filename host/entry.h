// Every function the host calls (declarations, inits, renders, user-data
// deleters, the exported helpers) is entered through the guard below, so that
// whatever the library needs of the processor at a call is arranged in one
// place, whatever host calls it:
//
// - The stack. A host built by another compiler may call with the stack
//   aligned to 4 bytes only, where our code keeps SSE values in 16-byte
//   aligned stack slots. An entry realigns the stack (KR_ENTRY_POINT), so
//   everything below it runs on an aligned stack.
// - The floating-point state. A host may leave the x87 precision at 24 or 53
//   bits, any rounding mode, exceptions unmasked, and an MXCSR with flush to
//   zero, denormals are zero, another rounding or unmasked exceptions. The
//   guard keeps the host's x87 environment and MXCSR, computes with the
//   processor's reset state (x87: 64-bit precision, round to nearest, all
//   exceptions masked; MXCSR 0x1F80: round to nearest, all masked, no
//   FTZ/DAZ), and gives the host its words back exactly on return, its
//   exception flags included (ours are dropped).
//
// A render, init or deleter registers as HostEntry<Function>; a declaration
// function through DeclarationEntry (both done by KR_TRANSITION). An exported
// helper the host may call directly is written in one line around its
// internal function, which the library's own code calls instead:
//
//   KR_EXPORT KR_ENTRY_POINT void bxglVTRZoomOut(uint8_t* out, ..., double progress) {
//     krl::Guarded<krl::VTRZoomOut>(out, ..., progress);
//   }
//
// A variadic export (KrScriptExecuteHi) cannot forward its arguments: it is
// marked KR_ENTRY_POINT and opens with `const krl::HostStateGuard guard;`,
// doing its floating-point work only inside calls it makes after that.
#pragma once

#include <cstdint>
#include <utility>

#include "host/declare.h"
#include "host/host_interface.h"

// A function the host calls: it realigns the stack to 16 bytes whatever the
// host left, and is never inlined into another (which would lose that).
#define KR_ENTRY_POINT __attribute__((force_align_arg_pointer, noinline))

namespace krl {

// Keeps the host's floating-point state from construction to destruction and
// puts the library's in place in between.
class HostStateGuard {
 public:
  HostStateGuard() {
    asm volatile("fnstenv %0\n\tfninit" : "=m"(x87_) : : "memory");
    asm volatile("stmxcsr %0\n\tldmxcsr %1" : "=m"(mxcsr_) : "m"(kLibraryMxcsr) : "memory");
  }
  ~HostStateGuard() { asm volatile("ldmxcsr %0\n\tfldenv %1" : : "m"(mxcsr_), "m"(x87_) : "memory"); }
  HostStateGuard(const HostStateGuard&) = delete;
  HostStateGuard& operator=(const HostStateGuard&) = delete;

 private:
  static constexpr uint32_t kLibraryMxcsr = 0x1F80;
  struct X87Environment {
    uint8_t bytes[28];  // control, status and tag words, last instruction and operand
  };
  X87Environment x87_;
  uint32_t mxcsr_;
};

// Calls `function` with the library's state in place. The compiler must not
// see through the call (asm below): were it inlined here, its arithmetic
// could be moved across the guard, which the compiler knows nothing of.
template <typename Result, typename... Parameters, typename... Arguments>
[[gnu::always_inline]] inline Result CallGuarded(Result (*function)(Parameters...), Arguments&&... arguments) {
  const HostStateGuard guard;
  asm("" : "+r"(function));
  return function(std::forward<Arguments>(arguments)...);
}

// An exported helper's body: Guarded<InternalFunction>(arguments...).
template <auto Function, typename... Arguments>
KR_ENTRY_POINT auto Guarded(Arguments... arguments) {
  return CallGuarded(Function, arguments...);
}

template <int32_t (*Function)(t_KrRenderInfo*)>
KR_ENTRY_POINT int32_t HostEntry(t_KrRenderInfo* ri) {
  return CallGuarded(Function, ri);
}

template <void (*Function)(t_KrRenderInfo*)>
KR_ENTRY_POINT void HostEntry(t_KrRenderInfo* ri) {
  CallGuarded(Function, ri);
}

// The body of an exported KrDeclare<Name> (itself a KR_ENTRY_POINT).
inline int32_t DeclarationEntry(t_KrHostInfo* hi, const EffectSpec& effect) {
  return CallGuarded(DeclareEffect, hi, effect);
}

}  // namespace krl
