// What the tests, the fuzzer and the benchmark need to know of a transition
// beyond what the host sees. Each transition module states it on one line,
// KR_TEST_PROFILE(display name, fields...) (host/transition.h); the build
// collects those lines into the table behind ProfileOf.
#pragma once

#include <string>
#include <vector>

#include "emulator/declared.h"

namespace krl::emu {

// Every member has a default, so that a profile names only what it needs.
struct TestProfile {
  // The field settings that make it work hardest (a grid, a thick bright
  // pen, anti-aliasing, the largest filter), as KEY=VALUE texts in the
  // previewer's syntax; empty when the defaults are as heavy as it gets.
  std::vector<std::string> heavier = {};
  // It keeps module state or draws from rand(): its renders must not overlap.
  bool sharedState = false;
  // "TransType" exchanges the inputs in locals and leaves the record alone.
  bool exchangesInLocals = false;
  // Settings (each a list of KEY=VALUE) under which a render leaves Output as it was.
  std::vector<std::vector<std::string>> drawsNothingWith = {};
  // It reads a value through a field index that no statement assigns (it
  // stays 0), which the host answers for its field 0 (Instance::fieldZeroCalls).
  bool readsFieldZero = false;
};

struct NamedProfile {
  std::string displayName;
  TestProfile profile;
};

// Every profile the transition modules state, in the order of their files.
const std::vector<NamedProfile>& AllProfiles();

// The profile of a declared transition; null when its module states none
// (a test requires one for every transition).
const TestProfile* FindProfile(const DeclaredEffect& effect);

// The same, or an empty profile.
const TestProfile& ProfileOf(const DeclaredEffect& effect);

}  // namespace krl::emu
