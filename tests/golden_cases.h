// The golden cases, shared by the golden test and every test that must
// render exactly the golden frames under other conditions: a table of cases
// for every declared transition (default fields, TransType=1, its heavier
// setting; several Progress values and odd sizes), each rendered from the
// sample clips into a digest, and every declaration as text.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "emulator/host.h"

namespace krl::test {

struct GoldenCase {
  const emu::DeclaredEffect* effect;
  int32_t w, h;
  double progress;
  std::vector<std::string> settings;

  // "Wipe 97x61 p=0.3 TransType=1": the case's line in tests/golden/frames.txt.
  std::string Id() const;
};

// Every transition's cases, transitions in the host's order.
std::vector<GoldenCase> GoldenCases(const emu::Host& host);

// Renders a case: "result digest", as frames.txt records it.
std::string RenderGolden(const emu::Host& host, const GoldenCase& c);

// The text of declarations.txt: every statement of every declaration, host
// indices named by their field, and the defaults each init sets.
std::string DeclarationsText(const emu::Host& host);

// The recorded lines of a golden file of the form "id = value", by id.
std::map<std::string, std::string> RecordedGolden(const std::string& file);

}  // namespace krl::test
