#include "golden_cases.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "cli/fields.h"
#include "emulator/test_profile.h"
#include "test_support.h"

namespace krl::test {

std::string GoldenCase::Id() const {
  std::string id = effect->DisplayName() + " " + std::to_string(w) + "x" + std::to_string(h);
  char p[32];
  std::snprintf(p, sizeof p, " p=%g", progress);
  id += p;
  for (const std::string& s : settings) id += " " + s;
  return id;
}

std::vector<GoldenCase> GoldenCases(const emu::Host& host) {
  std::vector<GoldenCase> cases;
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

std::string RenderGolden(const emu::Host& host, const GoldenCase& c) {
  // Transitions that draw from rand(), in their init (Fractal's noise table)
  // or their render, draw the same frame every run.
  std::srand(1);
  emu::Instance instance(host, *c.effect);
  for (const std::string& s : c.settings) cli::ApplySetting(instance, s);
  const emu::Frame a = emu::SampleClipA(c.w, c.h, 2), b = emu::SampleClipB(c.w, c.h, 4);
  emu::Frame out(c.w, c.h, 0xFF808080);
  std::srand(1);
  const int32_t result = instance.Render(a, b, out, c.progress);
  return std::to_string(result) + " " + emu::DigestText(out);
}

std::string DeclarationsText(const emu::Host& host) {
  std::string text = "# The declaration of every transition and the defaults its init sets, in order.\n";
  for (const emu::DeclaredEffect& e : host.effects()) {
    text += "\n== " + e.DisplayName() + "\n";
    for (std::string statement : StatementsOf(host, e)) {
      // The host's index in a help or item statement, by the field it names.
      for (const emu::DeclaredField& f : e.fields) {
        const std::string index = "&obj.df, " + std::to_string(f.index) + ",";
        if (const size_t at = statement.find(index); at != std::string::npos) {
          statement.replace(at, index.size(), "&obj.df, {#" + f.key + "},");
        }
      }
      text += statement + "\n";
    }
    const emu::Instance instance(host, e);
    for (const std::string& call : instance.defaultsSet()) text += "init: " + call + "\n";
  }
  return text;
}

std::map<std::string, std::string> RecordedGolden(const std::string& file) {
  std::ifstream in(std::string(KRL_GOLDEN_DIR) + "/" + file);
  if (!in) throw std::runtime_error("no golden file " + file);
  std::map<std::string, std::string> recorded;
  for (std::string line; std::getline(in, line);) {
    const size_t at = line.rfind(" = ");
    if (line.empty() || line[0] == '#' || at == std::string::npos) continue;
    recorded[line.substr(0, at)] = line.substr(at + 3);
  }
  return recorded;
}

}  // namespace krl::test
