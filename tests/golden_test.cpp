// Golden files: the frames of a table of cases for every transition, as
// digests, and every declaration word for word. Both builds check the same
// files, so a change that alters a frame or a statement is noticed and has to
// be made deliberately:
//   KRL_UPDATE_GOLDEN=1 build/x64/bin/krl_tests --gtest_filter='Golden.*'
// rewrites tests/golden/*.txt; review their diff before committing them.
#include <gtest/gtest.h>

#include "golden_cases.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(Golden, EveryFrameHasItsRecordedDigest) {
  std::string file = "# Digests of golden frames: case = render result, FNV-1a of the output bytes.\n";
  for (const GoldenCase& c : GoldenCases(Library())) file += c.Id() + " = " + RenderGolden(Library(), c) + "\n";
  ExpectGolden("frames.txt", file);
}

// Every statement of every declaration, addresses and host indices named,
// and the defaults each init sets, in order.
TEST(Golden, EveryDeclarationAndItsDefaultsStandAsRecorded) {
  ExpectGolden("declarations.txt", DeclarationsText(Library()));
}

}  // namespace
}  // namespace krl::test
