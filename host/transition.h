// The end of every transition module: what the host needs beside the
// module's own texts, fields and render. A module states its texts first,
//
//   constexpr EffectTexts kTexts{.menuPath = "Transitions/Wipe/Wipe", .signature = "Wipe (ZE plug-in SDK effect)",
//                                .displayName = "Wipe", .description = "..."};
//
// its fields and WipeRender (in namespace krl), and ends with
//
//   KR_TRANSITION(Wipe, kTexts, kFields)
//
// which makes WipeInit (the defaults of its field table, in table order) and
// the exported declaration function KrDeclareWipe. A module that keeps user data uses
// KR_TRANSITION_WITH_USER_DATA and defines <Name>DeleteUserData as well; one
// whose init sets its defaults out of declaration order, KR_TRANSITION_WITH_INIT_ORDER.
//
// Every entry point the host calls goes through HostEntry or DeclarationEntry
// (host/entry.h), which realign the stack, put the floating-point state the
// library computes in into place and give the host's back on return.
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

#define KR_TRANSITION_ENTRIES(Name, texts, fieldTable, initTable, deleter)                                 \
  namespace krl {                                                                                          \
  namespace {                                                                                              \
  int32_t Name##Init(t_KrRenderInfo* ri) { return InitDefaults(ri, initTable); }                           \
  constexpr EffectSpec k##Name##Effect{                                                                    \
      .menuPath = texts.menuPath,                                                                 \
      .signature = texts.signature,                                                               \
      .displayName = texts.displayName,                                                           \
      .description = texts.description,                                                           \
      .init = HostEntry<Name##Init>,                                                                       \
      .render = HostEntry<Name##Render>,                                                                   \
      .deleteUserData = deleter,                                                                           \
      .fields = fieldTable,                                                                                \
      .descriptionContext = texts.descriptionContext,                                             \
  };                                                                                                       \
  }                                                                                                        \
  }                                                                                                        \
  KR_EXPORT KR_ENTRY_POINT int32_t KrDeclare##Name(t_KrHostInfo* hi) {                                     \
    return krl::DeclarationEntry(hi, krl::k##Name##Effect);                                                \
  }

#define KR_TRANSITION(Name, texts, fieldTable) KR_TRANSITION_ENTRIES(Name, texts, fieldTable, fieldTable, nullptr)
#define KR_TRANSITION_WITH_USER_DATA(Name, texts, fieldTable) \
  KR_TRANSITION_ENTRIES(Name, texts, fieldTable, fieldTable, HostEntry<Name##DeleteUserData>)
// For an init that sets its defaults in an order of its own: initTable holds
// the fields of fieldTable that get one, in that order.
#define KR_TRANSITION_WITH_INIT_ORDER(Name, texts, fieldTable, initTable) \
  KR_TRANSITION_ENTRIES(Name, texts, fieldTable, initTable, nullptr)

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
