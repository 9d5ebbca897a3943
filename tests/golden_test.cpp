// Golden files: the frames of a table of cases for every transition, as
// digests, and every declaration word for word. Both builds check the same
// files, so a change that alters a frame or a statement is noticed and has to
// be made deliberately:
//   KRL_UPDATE_GOLDEN=1 build/x64/bin/krl_tests --gtest_filter='Golden.*'
// rewrites tests/golden/*.txt; review their diff before committing them.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>


#include "cli/fields.h"
#include "emulator/test_profile.h"
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
    const std::vector<std::string>& heavier = emu::ProfileOf(e).heavier;
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
  std::string file = "# Digests of golden frames: case = render result, FNV-1a of the output bytes.\n";
  for (const Case& c : Cases(Library())) file += c.Id() + " = " + Render(Library(), c) + "\n";
  ExpectGolden("frames.txt", file);
}

// Every statement of every declaration, addresses and host indices named,
// and the defaults each init sets, in order.
TEST(Golden, EveryDeclarationAndItsDefaultsStandAsRecorded) {
  std::string file = "# The declaration of every transition and the defaults its init sets, in order.\n";
  for (const emu::DeclaredEffect& e : Library().effects()) {
    file += "\n== " + e.DisplayName() + "\n";
    for (std::string statement : StatementsOf(Library(), e)) {
      // The host's index in a help or item statement, by the field it names.
      for (const emu::DeclaredField& f : e.fields) {
        const std::string index = "&obj.df, " + std::to_string(f.index) + ",";
        if (const size_t at = statement.find(index); at != std::string::npos) {
          statement.replace(at, index.size(), "&obj.df, {#" + f.key + "},");
        }
      }
      file += statement + "\n";
    }
    const emu::Instance instance(Library(), e);
    for (const std::string& call : instance.defaultsSet()) file += "init: " + call + "\n";
  }
  ExpectGolden("declarations.txt", file);
}

}  // namespace
}  // namespace krl::test
