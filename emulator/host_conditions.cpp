#include "emulator/host_conditions.h"

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace krl::emu {
namespace {

// ---- the call from assembly ------------------------------------------------
//
// One record describes the call; the assembly below saves our control words,
// places the stack arguments at the asked misalignment, loads the host's
// control words (after clearing our pending x87 flags, which an unmasked
// exception would otherwise raise at once), calls, reads the words the
// library left, and puts ours back.
struct RawCall {
  const void* function;
  uintptr_t stackCount;
  const uintptr_t* stack;
  uintptr_t misalignment;
  uint32_t mxcsrIn;
  uint16_t x87In;
  uint16_t x87StatusOut;
  uint32_t mxcsrOut;
  uint16_t x87Out;
  uint16_t savedX87;
  uint32_t savedMxcsr;
  uint32_t unused;
  uintptr_t result;
  uintptr_t vectorCount;  // x86-64: the count of vector registers, in %al for a variadic callee
  uint64_t integerRegisters[6];
  double vectorRegisters[8];
};

#define KR_P __SIZEOF_POINTER__
#define RC_FUNCTION 0
#define RC_STACK_COUNT (1 * KR_P)
#define RC_STACK (2 * KR_P)
#define RC_MISALIGNMENT (3 * KR_P)
#define RC_MXCSR_IN (4 * KR_P)
#define RC_X87_IN (4 * KR_P + 4)
#define RC_X87_STATUS_OUT (4 * KR_P + 6)
#define RC_MXCSR_OUT (4 * KR_P + 8)
#define RC_X87_OUT (4 * KR_P + 12)
#define RC_SAVED_X87 (4 * KR_P + 14)
#define RC_SAVED_MXCSR (4 * KR_P + 16)
#define RC_RESULT (4 * KR_P + 24)
#define RC_VECTOR_COUNT (5 * KR_P + 24)
#define RC_INTEGERS (6 * KR_P + 24)
#define RC_VECTORS (6 * KR_P + 24 + 48)
static_assert(offsetof(RawCall, stackCount) == RC_STACK_COUNT && offsetof(RawCall, stack) == RC_STACK);
static_assert(offsetof(RawCall, misalignment) == RC_MISALIGNMENT && offsetof(RawCall, mxcsrIn) == RC_MXCSR_IN);
static_assert(offsetof(RawCall, x87In) == RC_X87_IN && offsetof(RawCall, x87StatusOut) == RC_X87_STATUS_OUT);
static_assert(offsetof(RawCall, mxcsrOut) == RC_MXCSR_OUT && offsetof(RawCall, x87Out) == RC_X87_OUT);
static_assert(offsetof(RawCall, savedX87) == RC_SAVED_X87 && offsetof(RawCall, savedMxcsr) == RC_SAVED_MXCSR);
static_assert(offsetof(RawCall, result) == RC_RESULT && offsetof(RawCall, vectorCount) == RC_VECTOR_COUNT);
static_assert(offsetof(RawCall, integerRegisters) == RC_INTEGERS && offsetof(RawCall, vectorRegisters) == RC_VECTORS);

#define KR_STR2(x) #x
#define KR_STR(x) KR_STR2(x)
#define KR_AT(field) KR_STR(field)

}  // namespace
}  // namespace krl::emu

extern "C" void krl_emu_raw_call(krl::emu::RawCall* call);

#if defined(__i386__)
asm(R"(
  .text
  .p2align 4
  .type krl_emu_raw_call, @function
krl_emu_raw_call:
  pushl %ebp
  movl %esp, %ebp
  pushl %ebx
  pushl %esi
  pushl %edi
  movl 8(%ebp), %ebx
  fnstcw )" KR_AT(RC_SAVED_X87) R"((%ebx)
  stmxcsr )" KR_AT(RC_SAVED_MXCSR) R"((%ebx)
  movl )" KR_AT(RC_STACK_COUNT) R"((%ebx), %ecx
  leal 0(,%ecx,4), %eax
  movl %esp, %edx
  subl %eax, %edx
  subl $32, %edx
  andl $-16, %edx
  addl )" KR_AT(RC_MISALIGNMENT) R"((%ebx), %edx
  movl %edx, %esp
  movl )" KR_AT(RC_STACK) R"((%ebx), %esi
  movl %esp, %edi
  cld
  rep movsl
  fnclex
  fldcw )" KR_AT(RC_X87_IN) R"((%ebx)
  ldmxcsr )" KR_AT(RC_MXCSR_IN) R"((%ebx)
  call *)" KR_AT(RC_FUNCTION) R"((%ebx)
  movl %eax, )" KR_AT(RC_RESULT) R"((%ebx)
  fnstcw )" KR_AT(RC_X87_OUT) R"((%ebx)
  fnstsw )" KR_AT(RC_X87_STATUS_OUT) R"((%ebx)
  stmxcsr )" KR_AT(RC_MXCSR_OUT) R"((%ebx)
  fnclex
  fldcw )" KR_AT(RC_SAVED_X87) R"((%ebx)
  ldmxcsr )" KR_AT(RC_SAVED_MXCSR) R"((%ebx)
  leal -12(%ebp), %esp
  popl %edi
  popl %esi
  popl %ebx
  popl %ebp
  ret
  .size krl_emu_raw_call, .-krl_emu_raw_call
)");
#elif defined(__x86_64__)
asm(R"(
  .text
  .p2align 4
  .type krl_emu_raw_call, @function
krl_emu_raw_call:
  pushq %rbp
  movq %rsp, %rbp
  pushq %rbx
  pushq %r12
  movq %rdi, %rbx
  fnstcw )" KR_AT(RC_SAVED_X87) R"((%rbx)
  stmxcsr )" KR_AT(RC_SAVED_MXCSR) R"((%rbx)
  movq )" KR_AT(RC_STACK_COUNT) R"((%rbx), %rcx
  leaq 0(,%rcx,8), %rax
  movq %rsp, %rdx
  subq %rax, %rdx
  subq $64, %rdx
  andq $-16, %rdx
  addq )" KR_AT(RC_MISALIGNMENT) R"((%rbx), %rdx
  movq %rdx, %rsp
  movq )" KR_AT(RC_STACK) R"((%rbx), %rsi
  movq %rsp, %rdi
  cld
  rep movsq
  movsd )" KR_AT(RC_VECTORS) R"(+0(%rbx), %xmm0
  movsd )" KR_AT(RC_VECTORS) R"(+8(%rbx), %xmm1
  movsd )" KR_AT(RC_VECTORS) R"(+16(%rbx), %xmm2
  movsd )" KR_AT(RC_VECTORS) R"(+24(%rbx), %xmm3
  movsd )" KR_AT(RC_VECTORS) R"(+32(%rbx), %xmm4
  movsd )" KR_AT(RC_VECTORS) R"(+40(%rbx), %xmm5
  movsd )" KR_AT(RC_VECTORS) R"(+48(%rbx), %xmm6
  movsd )" KR_AT(RC_VECTORS) R"(+56(%rbx), %xmm7
  movq )" KR_AT(RC_INTEGERS) R"(+0(%rbx), %rdi
  movq )" KR_AT(RC_INTEGERS) R"(+8(%rbx), %rsi
  movq )" KR_AT(RC_INTEGERS) R"(+16(%rbx), %rdx
  movq )" KR_AT(RC_INTEGERS) R"(+24(%rbx), %rcx
  movq )" KR_AT(RC_INTEGERS) R"(+32(%rbx), %r8
  movq )" KR_AT(RC_INTEGERS) R"(+40(%rbx), %r9
  movq )" KR_AT(RC_VECTOR_COUNT) R"((%rbx), %rax
  fnclex
  fldcw )" KR_AT(RC_X87_IN) R"((%rbx)
  ldmxcsr )" KR_AT(RC_MXCSR_IN) R"((%rbx)
  call *)" KR_AT(RC_FUNCTION) R"((%rbx)
  movq %rax, )" KR_AT(RC_RESULT) R"((%rbx)
  fnstcw )" KR_AT(RC_X87_OUT) R"((%rbx)
  fnstsw )" KR_AT(RC_X87_STATUS_OUT) R"((%rbx)
  stmxcsr )" KR_AT(RC_MXCSR_OUT) R"((%rbx)
  fnclex
  fldcw )" KR_AT(RC_SAVED_X87) R"((%rbx)
  ldmxcsr )" KR_AT(RC_SAVED_MXCSR) R"((%rbx)
  leaq -16(%rbp), %rsp
  popq %r12
  popq %rbx
  popq %rbp
  ret
  .size krl_emu_raw_call, .-krl_emu_raw_call
)");
#else
#error "the emulator calls libraries for i386 and x86-64 only"
#endif

namespace krl::emu {
namespace {

std::mutex gMutex;  // guards the violations and the deepest stack use
HostConditions gConditions;
bool gActive = false;
std::vector<std::string> gViolations;
size_t gDeepestStackUse = 0;

// ---- a thread with a stack of a given size ---------------------------------

constexpr uint8_t kStackPaint = 0xA5;

struct ThreadCall {
  const MachineCall* call;
  const HostConditions* conditions;
  ControlWords* after;
  int32_t result;
};

// Runs `call` on a thread whose stack is exactly `size` bytes above a page
// that faults, painted first so that the depth it reached can be measured.
int32_t RunOnStack(size_t size, ThreadCall& work) {
  const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  size = (size + page - 1) / page * page;
  void* map = mmap(nullptr, size + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
  if (map == MAP_FAILED) throw std::runtime_error("no memory for a thread's stack");
  uint8_t* guard = static_cast<uint8_t*>(map);
  uint8_t* stack = guard + page;
  mprotect(guard, page, PROT_NONE);
  std::memset(stack, kStackPaint, size);
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstack(&attr, stack, size);
  pthread_t thread;
  const int failed = pthread_create(
      &thread, &attr,
      [](void* data) -> void* {
        auto* w = static_cast<ThreadCall*>(data);
        HostConditions here = *w->conditions;
        here.stackSize = 0;
        w->result = w->call->Run(here, w->after);
        return nullptr;
      },
      &work);
  pthread_attr_destroy(&attr);
  if (failed == 0) pthread_join(thread, nullptr);
  const uint8_t* deepest = std::find_if(stack, stack + size, [](uint8_t b) { return b != kStackPaint; });
  {
    const std::lock_guard<std::mutex> lock(gMutex);
    gDeepestStackUse = std::max(gDeepestStackUse, static_cast<size_t>(stack + size - deepest));
  }
  munmap(map, size + page);
  if (failed != 0) throw std::runtime_error("cannot start a thread with a stack of " + std::to_string(size) + " bytes");
  return work.result;
}

std::string Hex(uint32_t v) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%04X", v);
  return text;
}

}  // namespace

// ---- conditions ------------------------------------------------------------

const HostConditions& CurrentHostConditions() { return gConditions; }
bool HostConditionsActive() { return gActive; }

ScopedHostConditions::ScopedHostConditions(HostConditions conditions) : previous_(gConditions), wasActive_(gActive) {
  gConditions = std::move(conditions);
  gActive = true;
}

ScopedHostConditions::~ScopedHostConditions() {
  gConditions = previous_;
  gActive = wasActive_;
}

std::vector<std::string> TakeConditionViolations() {
  const std::lock_guard<std::mutex> lock(gMutex);
  return std::exchange(gViolations, {});
}

size_t TakeDeepestStackUse() {
  const std::lock_guard<std::mutex> lock(gMutex);
  return std::exchange(gDeepestStackUse, 0);
}

// ---- calls -----------------------------------------------------------------

MachineCall& MachineCall::Pointer(const void* p) {
#if defined(__x86_64__)
  if (registerWords_.size() < 6) {
    registerWords_.push_back(reinterpret_cast<uintptr_t>(p));
    return *this;
  }
#endif
  stackWords_.push_back(reinterpret_cast<uintptr_t>(p));
  return *this;
}

MachineCall& MachineCall::Int(int32_t v) {
  // Sign-extended on x86-64, where the callee reads only the low half.
  return Pointer(reinterpret_cast<const void*>(static_cast<intptr_t>(v)));
}

MachineCall& MachineCall::Double(double v) {
#if defined(__x86_64__)
  if (registerDoubles_.size() < 8) {
    registerDoubles_.push_back(v);
    return *this;
  }
#endif
  uintptr_t words[sizeof v / sizeof(uintptr_t)];
  std::memcpy(words, &v, sizeof v);
  stackWords_.insert(stackWords_.end(), std::begin(words), std::end(words));
  return *this;
}

int32_t MachineCall::Run(const HostConditions& conditions, ControlWords* after) const {
  if (conditions.stackSize != 0) {
    ThreadCall work{this, &conditions, after, 0};
    return RunOnStack(conditions.stackSize, work);
  }
  RawCall raw{};
  raw.function = function_;
  raw.stackCount = stackWords_.size();
  raw.stack = stackWords_.data();
  raw.misalignment = static_cast<uintptr_t>(conditions.stackMisalignment & 15);
  raw.mxcsrIn = conditions.mxcsr;
  raw.x87In = conditions.x87Control;
  std::copy(registerWords_.begin(), registerWords_.end(), raw.integerRegisters);
  std::copy(registerDoubles_.begin(), registerDoubles_.end(), raw.vectorRegisters);
  raw.vectorCount = registerDoubles_.size();
  krl_emu_raw_call(&raw);
  *after = {raw.x87Out, raw.x87StatusOut, raw.mxcsrOut};
  return static_cast<int32_t>(raw.result);
}

std::string WordsNotGivenBack(const HostConditions& conditions, const ControlWords& after) {
  std::string wrong;
  if (after.x87Control != conditions.x87Control) {
    wrong += " x87 control word " + Hex(after.x87Control) + " instead of " + Hex(conditions.x87Control) + ";";
  }
  if ((after.x87Status & 0x3F) != 0) wrong += " x87 exception flags " + Hex(after.x87Status & 0x3F) + " left raised;";
  if (after.mxcsr != conditions.mxcsr) {
    wrong += " MXCSR " + Hex(after.mxcsr) + " instead of " + Hex(conditions.mxcsr) + ";";
  }
  return wrong;
}

int32_t CallUnderConditions(const void* function, void* record) {
  const HostConditions conditions = gConditions;
  ControlWords after{};
  const int32_t result = MachineCall(function).Pointer(record).Run(conditions, &after);
  if (const std::string wrong = WordsNotGivenBack(conditions, after); !wrong.empty()) {
    const std::lock_guard<std::mutex> lock(gMutex);
    gViolations.push_back("under \"" + conditions.name + "\":" + wrong);
  }
  return result;
}

// ---- odd answers -------------------------------------------------------------

namespace odd {

double CurveValue(uint32_t call) {
  static const double kValues[] = {std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   1e300,
                                   -1e300,
                                   std::numeric_limits<double>::max(),
                                   3e9,
                                   -3e9,
                                   std::numeric_limits<double>::denorm_min(),
                                   -0.0,
                                   1e18,
                                   -std::numeric_limits<double>::quiet_NaN()};
  return kValues[call % std::size(kValues)];
}

int32_t FieldValue(uint32_t call) {
  static const int32_t kValues[] = {std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max(),
                                    -1, 0x7FFF0000, 1000000, -1000000, -2147483647, 65536, 257, 2, 0};
  return kValues[call % std::size(kValues)];
}

}  // namespace odd

}  // namespace krl::emu
