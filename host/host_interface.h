// The binary contract with the host: the two records it passes in, the
// callback table, the colour value, and the function types of init, render
// and user-data deleter. Plain C layout; byte offsets are asserted below for
// both the shipping i386 build and the x86-64 build.
#pragma once

#include <assert.h>  // static_assert in C
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef uint16_t word;  // the host's 16-bit character

struct t_KrHostFunctions;

// Given to KrDeclare and every declaration function. The host may append
// fields; only Host is read.
typedef struct t_KrHostInfo {
  int32_t HostReserved0;
  int32_t HostReserved1;
  struct t_KrHostFunctions* Host;
} t_KrHostInfo;

// Given to every init, render and user-data deleter call. Writable: the
// render prologue exchanges InputA and InputB in place.
typedef struct t_KrRenderInfo {
  int32_t HostReserved0;
  int32_t HostReserved1;
  struct t_KrHostFunctions* Host;
  int32_t HostReserved2[4];
  double Progress;
  int32_t HostReserved3[2];
  int32_t Width;
  int32_t Height;
  int32_t HostReserved4[4];
  int32_t BitsPerPixel;
  int32_t HostReserved5;
  uint8_t* InputA;
  uint8_t* InputB;
  uint8_t* Output;
} t_KrRenderInfo;

// Value of an "RGBcolor" field, in pixel byte order.
typedef struct KrColor {
  uint8_t Blue;
  uint8_t Green;
  uint8_t Red;
  uint8_t Alpha;
} KrColor;

typedef int32_t (*KrInitFunction)(t_KrRenderInfo*);
typedef int32_t (*KrRenderFunction)(t_KrRenderInfo*);
typedef void (*KrDeleteUserDataFunction)(t_KrRenderInfo*);

typedef void (*KrUnusedSlot)(void);

// The host's callback table: one pointer per slot, slot k at byte k times the
// pointer size. Every field index argument is followed by a word passed as 0.
typedef struct t_KrHostFunctions {
  KrUnusedSlot Slots0To1[2];
  int32_t (*ReportError)(t_KrRenderInfo*, const char* message);                 // 2
  KrUnusedSlot Slots3To23[21];
  int32_t (*ScriptExecute)(t_KrHostInfo*, const char* statement);               // 24
  int32_t (*ScriptExecuteHi)(t_KrHostInfo*, t_KrHostInfo*, const char* stmt);   // 25
  KrUnusedSlot Slot26;
  double (*GetCurveValue)(t_KrRenderInfo*, int32_t field, int32_t zero, double position);  // 27
  int32_t (*AddCurvePoint)(t_KrRenderInfo*, int32_t field, int32_t zero, double position,
                           double value);                                         // 28
  KrUnusedSlot Slot29;
  int32_t (*GetColorValue)(t_KrRenderInfo*, int32_t field, int32_t zero, KrColor* out,
                           double position);                                      // 30
  int32_t (*SetColorDefault)(t_KrRenderInfo*, int32_t field, int32_t zero, const KrColor* color,
                             double position);                                    // 31
  KrUnusedSlot Slots32To33[2];
  int32_t (*GetFieldValue)(t_KrRenderInfo*, int32_t field, int32_t zero);         // 34
  int32_t (*SetFieldDefault)(t_KrRenderInfo*, int32_t field, int32_t zero, int32_t value);  // 35
  KrUnusedSlot Slots36To77[42];
  int32_t (*SetUserData)(t_KrRenderInfo*, void* data);                            // 78
  void* (*GetUserData)(t_KrRenderInfo*);                                          // 79
  KrUnusedSlot Slot80;
  const word* (*Translate)(t_KrHostInfo*, const char* context, const char* text);  // 81
} t_KrHostFunctions;

#define KR_HOST_SLOT_COUNT 82

#ifdef __cplusplus
}  // extern "C"
#endif

// ---- layout checks -------------------------------------------------------

#define KR_SLOT_AT(member, slot) \
  static_assert(offsetof(t_KrHostFunctions, member) == (slot) * sizeof(void*), #member)

KR_SLOT_AT(ReportError, 2);
KR_SLOT_AT(ScriptExecute, 24);
KR_SLOT_AT(ScriptExecuteHi, 25);
KR_SLOT_AT(GetCurveValue, 27);
KR_SLOT_AT(AddCurvePoint, 28);
KR_SLOT_AT(GetColorValue, 30);
KR_SLOT_AT(SetColorDefault, 31);
KR_SLOT_AT(GetFieldValue, 34);
KR_SLOT_AT(SetFieldDefault, 35);
KR_SLOT_AT(SetUserData, 78);
KR_SLOT_AT(GetUserData, 79);
KR_SLOT_AT(Translate, 81);
static_assert(sizeof(t_KrHostFunctions) == KR_HOST_SLOT_COUNT * sizeof(void*), "slot count");
static_assert(sizeof(KrColor) == 4, "KrColor is one pixel");

// Offsets of the render record: i386 as the host lays it out; x86-64 the same
// members in the same order with natural alignment.
#if defined(__i386__)
#define KR_AT(i386, x64) (i386)
static_assert(sizeof(void*) == 4, "i386 pointers");
#elif defined(__x86_64__)
#define KR_AT(i386, x64) (x64)
#else
#error "the host contract is defined for i386 and x86-64 only"
#endif

static_assert(offsetof(t_KrHostInfo, Host) == 8, "Host");
static_assert(offsetof(t_KrRenderInfo, Host) == 8, "Host");
static_assert(offsetof(t_KrRenderInfo, Progress) == KR_AT(28, 32), "Progress");
static_assert(offsetof(t_KrRenderInfo, Width) == KR_AT(44, 48), "Width");
static_assert(offsetof(t_KrRenderInfo, Height) == KR_AT(48, 52), "Height");
static_assert(offsetof(t_KrRenderInfo, BitsPerPixel) == KR_AT(68, 72), "BitsPerPixel");
static_assert(offsetof(t_KrRenderInfo, InputA) == KR_AT(76, 80), "InputA");
static_assert(offsetof(t_KrRenderInfo, InputB) == KR_AT(80, 88), "InputB");
static_assert(offsetof(t_KrRenderInfo, Output) == KR_AT(84, 96), "Output");
#undef KR_AT
