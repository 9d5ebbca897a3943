// Golden digests: the frames of a table of cases, for every transition, with
// the digest each must have. Both builds check the same file, so a change
// that alters any frame is noticed and has to be made deliberately:
//   KRL_UPDATE_GOLDEN=1 build/x64/bin/krl_tests --gtest_filter='Golden.*'
// rewrites tests/golden/frames.txt; review its diff before committing it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>

#include "cli/fields.h"
#include "emulator/heavier_settings.h"
#include "test_support.h"

namespace krl::test {
namespace {

struct Case {
  const emu::DeclaredEffect* effect;
  int32_t w, h;
  double progress;
  std::vector<std::string> settings;

  std::string Id() const {
    std::string id = effect->DisplayName() + " " + std::to_string(w) + "x" + std::to_string(h);
    char p[32];
    std::snprintf(p, sizeof p, " p=%g", progress);
    id += p;
    for (const std::string& s : settings) id += " " + s;
    return id;
  }
};

std::vector<Case> Cases(const emu::Host& host) {
  std::vector<Case> cases;
  for (const emu::DeclaredEffect& e : host.effects()) {
    std::vector<std::vector<std::string>> variants = {{}, {"TransType=1"}};
    const std::vector<std::string>& heavier = emu::HeavierSettings(e.DisplayName());
    if (!heavier.empty()) variants.push_back(heavier);
    for (const auto& settings : variants) {
      for (double p : {0.0, 0.3, 0.5, 0.77, 1.0}) cases.push_back({&e, 97, 61, p, settings});
      for (const auto& [w, h] : {std::pair{1, 7}, {7, 1}, {320, 181}}) cases.push_back({&e, w, h, 0.5, settings});
    }
  }
  return cases;
}

std::string Render(const emu::Host& host, const Case& c) {
  emu::Instance instance(host, *c.effect);
  for (const std::string& s : c.settings) cli::ApplySetting(instance, s);
  const emu::Frame a = emu::SampleClipA(c.w, c.h, 2), b = emu::SampleClipB(c.w, c.h, 4);
  emu::Frame out(c.w, c.h, 0xFF808080);
  std::srand(1);  // transitions that draw from rand() render the same frame every run
  const int32_t result = instance.Render(a, b, out, c.progress);
  return std::to_string(result) + " " + emu::DigestText(out);
}

TEST(Golden, EveryFrameHasItsRecordedDigest) {
  std::map<std::string, std::string> recorded;
  {
    std::ifstream in(KRL_GOLDEN_FILE);
    std::string line;
    while (std::getline(in, line)) {
      const size_t bar = line.rfind(" = ");
      if (!line.empty() && line[0] != '#' && bar != std::string::npos) recorded[line.substr(0, bar)] = line.substr(bar + 3);
    }
  }
  const bool update = std::getenv("KRL_UPDATE_GOLDEN") != nullptr;
  std::string file = "# Digests of golden frames: case = render result, FNV-1a of the output bytes.\n";
  size_t checked = 0;
  for (const Case& c : Cases(Library())) {
    const std::string id = c.Id(), digest = Render(Library(), c);
    file += id + " = " + digest + "\n";
    if (update) continue;
    auto it = recorded.find(id);
    if (it == recorded.end()) {
      ADD_FAILURE() << "no recorded digest for: " << id << " (run with KRL_UPDATE_GOLDEN=1)";
    } else {
      EXPECT_EQ(digest, it->second) << "the frame changed: " << id;
      ++checked;
    }
  }
  if (update) {
    std::ofstream(KRL_GOLDEN_FILE) << file;
  } else {
    EXPECT_GT(checked, 0u);
  }
}

}  // namespace
}  // namespace krl::test
