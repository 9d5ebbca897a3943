// The conditions a host we did not build may leave at a call into the
// library: the stack aligned to 4 bytes only, its own x87 control word and
// MXCSR (another precision or rounding, exceptions unmasked, flush to zero),
// frames at any byte address, a thread with a small stack, odd answers from
// its slots. The emulator can create each of them, so that the tests call
// every entry point as such a host would:
//
//   emu::ScopedHostConditions hostile(emu::HostConditions{.x87Control = 0x027F});
//   emu::Instance instance(host, effect);       // init, render, deleter all
//   instance.Render(a, b, out, 0.5);            // run under the conditions
//   for (const std::string& v : emu::TakeConditionViolations()) ...
//
// Every call made under conditions checks on return that the library gave
// the host's control words back exactly (x87 control and status flags,
// MXCSR); what it finds wrong is collected for TakeConditionViolations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Marks the emulator's host slots: like the slots of a host built for 4-byte
// stacks they work on any stack, so that a fault under a misaligned call is
// the library's own.
#define KR_HOST_SLOT __attribute__((force_align_arg_pointer))

namespace krl::emu {

// The processor's state after a reset, which the library computes in.
inline constexpr uint16_t kX87Default = 0x037F;  // 64-bit precision, round to nearest, all masked
inline constexpr uint32_t kMxcsrDefault = 0x1F80;  // round to nearest, all masked, no FTZ/DAZ

struct HostConditions {
  std::string name = "as we build it";
  uint16_t x87Control = kX87Default;
  uint32_t mxcsr = kMxcsrDefault;
  // Bytes by which the stack pointer misses the ABI's 16-byte alignment at
  // the call instruction: 0, 4, 8 or 12.
  int32_t stackMisalignment = 0;
  // Runs each call on a thread of its own with this stack size (0: the caller's thread).
  size_t stackSize = 0;
  // Frames handed over by Instance::Render(Frame...) lie this many bytes past a 16-byte boundary.
  int32_t frameOffset = 0;
  // The instance's and the host's slots answer oddly: curves NaN, infinities
  // and huge values; fields any 32-bit value; no user data; Translate null or
  // empty (see OddAnswers).
  bool oddAnswers = false;
};

// The conditions in force for calls into a library; the default ones when
// none are set, and then every call is made directly, as a plain host makes it.
const HostConditions& CurrentHostConditions();
bool HostConditionsActive();

// Sets the conditions for every call into a library, from any thread, until
// it is destroyed. Set them from one thread while no calls are in flight.
class ScopedHostConditions {
 public:
  explicit ScopedHostConditions(HostConditions conditions);
  ~ScopedHostConditions();
  ScopedHostConditions(const ScopedHostConditions&) = delete;
  ScopedHostConditions& operator=(const ScopedHostConditions&) = delete;

 private:
  HostConditions previous_;
  bool wasActive_;
};

// What calls under conditions found wrong since the last take (control words
// not given back), emptied by taking.
std::vector<std::string> TakeConditionViolations();

// The processor's control words as a call left them.
struct ControlWords {
  uint16_t x87Control;
  uint16_t x87Status;  // its exception flags (bits 0-5) must be as the host left them: clear
  uint32_t mxcsr;
};

// A call of any function of the library with word, pointer and double
// arguments (an integer or no result), laid out as the ABI lays them out,
// made from assembly so that nothing of ours runs between setting the host's
// state and the call:
//
//   MachineCall(symbol).Pointer(hi).Pointer("%f").Double(0.1).Run(conditions, &after)
class MachineCall {
 public:
  explicit MachineCall(const void* function) : function_(function) {}
  MachineCall& Pointer(const void* p);
  MachineCall& Int(int32_t v);
  MachineCall& Double(double v);
  // Calls under the conditions' control words and stack alignment, on a
  // thread with their stack size when they name one. Returns the 32-bit result.
  int32_t Run(const HostConditions& conditions, ControlWords* after) const;

 private:
  const void* function_;
  std::vector<uint64_t> registerWords_;  // x86-64: the first six integer and pointer arguments
  std::vector<double> registerDoubles_;  // x86-64: the first eight double arguments
  std::vector<uintptr_t> stackWords_;    // the rest, in argument order (i386: every argument)
};

// The deepest any call made on a thread of its own (HostConditions::stackSize)
// reached into its stack, in bytes, since the last take; emptied by taking.
size_t TakeDeepestStackUse();

// What a call left different from the host's words in `conditions` (x87
// control word, x87 exception flags, MXCSR), as text; empty when nothing.
std::string WordsNotGivenBack(const HostConditions& conditions, const ControlWords& after);

// Calls a function of the library that takes one record (declaration, init,
// render, deleter) under the current conditions, checking the control words
// on return. Only while conditions are active: otherwise the caller calls directly.
int32_t CallUnderConditions(const void* function, void* record);

// The odd answers a host may give, cycled through call by call.
namespace odd {
double CurveValue(uint32_t call);
int32_t FieldValue(uint32_t call);
}  // namespace odd

}  // namespace krl::emu
