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
// the exported declaration function KrDeclareWipe. The variants:
//   KR_TRANSITION_WITH_INIT_ORDER(Name, kTexts, kFields, kInitOrder)
//     the init sets the defaults of another table (the same fields in the
//     order that init sets them);
//   KR_TRANSITION_WITH_OWN_INIT(Name, kTexts, kFields)
//     the module defines <Name>Init itself (its init does more than set defaults);
//   KR_TRANSITION_WITH_USER_DATA(Name, kTexts, kFields)
//     the module keeps user data and defines <Name>Init and <Name>DeleteUserData.
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

#define KR_TRANSITION_ENTRIES(Name, texts, fieldTable, deleter)                                            \
  namespace krl {                                                                                          \
  namespace {                                                                                              \
  constexpr EffectSpec k##Name##Effect{                                                                    \
      .menuPath = texts.menuPath,                                                                          \
      .signature = texts.signature,                                                                        \
      .displayName = texts.displayName,                                                                    \
      .description = texts.description,                                                                    \
      .init = HostEntry<Name##Init>,                                                                       \
      .render = HostEntry<Name##Render>,                                                                   \
      .deleteUserData = deleter,                                                                           \
      .fields = fieldTable,                                                                                \
      .descriptionContext = texts.descriptionContext,                                                      \
  };                                                                                                       \
  }                                                                                                        \
  }                                                                                                        \
  KR_EXPORT KR_ENTRY_POINT int32_t KrDeclare##Name(t_KrHostInfo* hi) {                                     \
    return krl::DeclarationEntry(hi, krl::k##Name##Effect);                                                \
  }

// The init that sets the defaults a table names, in its order.
#define KR_TABLE_INIT(Name, initTable)                                              \
  namespace krl {                                                                   \
  namespace {                                                                       \
  int32_t Name##Init(t_KrRenderInfo* ri) { return InitDefaults(ri, initTable); }    \
  }                                                                                 \
  }

#define KR_TRANSITION(Name, texts, fieldTable) \
  KR_TABLE_INIT(Name, fieldTable) KR_TRANSITION_ENTRIES(Name, texts, fieldTable, nullptr)
#define KR_TRANSITION_WITH_INIT_ORDER(Name, texts, fieldTable, initTable) \
  KR_TABLE_INIT(Name, initTable) KR_TRANSITION_ENTRIES(Name, texts, fieldTable, nullptr)
#define KR_TRANSITION_WITH_OWN_INIT(Name, texts, fieldTable) KR_TRANSITION_ENTRIES(Name, texts, fieldTable, nullptr)
#define KR_TRANSITION_WITH_USER_DATA(Name, texts, fieldTable) \
  KR_TRANSITION_ENTRIES(Name, texts, fieldTable, HostEntry<Name##DeleteUserData>)

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
