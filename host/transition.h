// The end of every transition module: what the host needs beside the
// module's own fields and render. A module names itself once,
//
//   KR_TRANSITION(Wipe, kFields, {.menuPath = "Transitions/Wipe/Wipe",
//                                 .signature = "Wipe (ZE plug-in SDK effect)",
//                                 .displayName = "Wipe", .description = "..."})
//
// with WipeRender defined in namespace krl before it, and gets WipeInit (the
// defaults of its field table, in table order) and the exported declaration
// function KrDeclareWipe. A module that keeps user data uses
// KR_TRANSITION_WITH_USER_DATA and defines <Name>DeleteUserData as well; one
// whose init does more than set its table's defaults uses
// KR_TRANSITION_WITH_OWN_INIT and defines <Name>Init.
//
// Every entry point the host calls goes through HostEntry (host/entry.h),
// which puts the state the library computes in into place and gives the
// host's back on return.
#pragma once

#include "host/declare.h"
#include "host/entry.h"
#include "host/exports.h"

// The texts the host shows for a transition (its menu path, signature,
// display name, description and, for one odd case, the description's
// translation context).
namespace krl {
struct EffectTexts {
  const char* menuPath;
  const char* signature;
  const char* displayName;
  const char* description;
  const char* descriptionContext = nullptr;  // when it differs from displayName
};
}  // namespace krl

#define KR_TRANSITION_ENTRIES(Name, fieldTable, deleter, ...)                                              \
  namespace krl {                                                                                          \
  namespace {                                                                                              \
  constexpr EffectTexts k##Name##Texts = __VA_ARGS__;                                                      \
  constexpr EffectSpec k##Name##Effect{                                                                    \
      .menuPath = k##Name##Texts.menuPath,                                                                 \
      .signature = k##Name##Texts.signature,                                                               \
      .displayName = k##Name##Texts.displayName,                                                           \
      .description = k##Name##Texts.description,                                                           \
      .init = HostEntry<Name##Init>,                                                                       \
      .render = HostEntry<Name##Render>,                                                                   \
      .deleteUserData = deleter,                                                                           \
      .fields = fieldTable,                                                                                \
      .descriptionContext = k##Name##Texts.descriptionContext,                                             \
  };                                                                                                       \
  }                                                                                                        \
  }                                                                                                        \
  KR_EXPORT int32_t KrDeclare##Name(t_KrHostInfo* hi) {                                                    \
    return krl::DeclarationEntry(hi, krl::k##Name##Effect);                                                \
  }

// The init that sets the defaults of the field table, in table order.
#define KR_TABLE_INIT(Name, fieldTable) \
  namespace krl {                        \
  namespace {                            \
  int32_t Name##Init(t_KrRenderInfo* ri) { return InitDefaults(ri, fieldTable); } \
  }                                      \
  }

#define KR_TRANSITION(Name, fieldTable, ...) \
  KR_TABLE_INIT(Name, fieldTable) KR_TRANSITION_ENTRIES(Name, fieldTable, nullptr, __VA_ARGS__)
#define KR_TRANSITION_WITH_USER_DATA(Name, fieldTable, ...) \
  KR_TABLE_INIT(Name, fieldTable)                          \
  KR_TRANSITION_ENTRIES(Name, fieldTable, HostEntry<Name##DeleteUserData>, __VA_ARGS__)
// A transition whose init sets more than its table says defines <Name>Init
// in namespace krl itself.
#define KR_TRANSITION_WITH_OWN_INIT(Name, fieldTable, ...) \
  KR_TRANSITION_ENTRIES(Name, fieldTable, nullptr, __VA_ARGS__)

// What the tests need to know of a transition, on one line of its module:
//
//   KR_TEST_PROFILE("Wipe", .heavier = {"Divide_X=4", "BorderWidth=6"})
//
// Fields (emulator/test_profile.h): heavier (the settings that make it work
// hardest), sharedState (it keeps module state or draws from rand(), so its
// renders must not overlap), exchangesInLocals (TransType leaves the record
// alone), drawsNothingWith (settings under which it leaves Output as it was).
// The library compiles it to nothing; the build collects these lines for the
// emulator, and a test fails for a declared transition without one.
#define KR_TEST_PROFILE(...)
