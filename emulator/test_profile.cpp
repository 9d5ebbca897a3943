#include "emulator/test_profile.h"

namespace krl::emu {

const std::vector<NamedProfile>& AllProfiles() {
  // The KR_TEST_PROFILE lines of the transition modules, gathered at build time.
#define KR_TEST_PROFILE(name, ...) {name, TestProfile{__VA_ARGS__}},
  static const std::vector<NamedProfile> kProfiles = {
#include "test_profiles.inc"
  };
#undef KR_TEST_PROFILE
  return kProfiles;
}

const TestProfile* FindProfile(const DeclaredEffect& effect) {
  const std::string name = effect.DisplayName();
  for (const NamedProfile& p : AllProfiles()) {
    if (p.displayName == name) return &p.profile;
  }
  return nullptr;
}

const TestProfile& ProfileOf(const DeclaredEffect& effect) {
  static const TestProfile kNone;
  const TestProfile* profile = FindProfile(effect);
  return profile != nullptr ? *profile : kNone;
}

}  // namespace krl::emu
