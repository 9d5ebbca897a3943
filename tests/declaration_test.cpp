// What the library tells the host in its declaration script beyond the
// statements tests/golden/declarations.txt records: whatever indices the host
// hands out, printed and stored back; translations; description contexts.
#include <gtest/gtest.h>

#include <cstring>

#include "cli_run.h"
#include "golden_cases.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(Declaration, PrintsAndStoresWhateverIndicesTheHostHandsOut) {
  // Negative, widely spaced indices: help and item statements must print what the host stored, with %d.
  emu::HostOptions options;
  options.firstFieldIndex = -42;
  options.fieldIndexStep = -1000;
  const auto host = LoadFresh(KRL_LIBRARY_PATH, options);
  EXPECT_TRUE(DeclarationsText(*host) == ReadFile(std::string(KRL_GOLDEN_DIR) + "/declarations.txt"))
      << "with negative indices the declarations differ from tests/golden/declarations.txt";
  // The library's variables hold exactly what the host's script stored.
  for (const emu::DeclaredEffect& e : host->effects()) {
    for (const emu::DeclaredField& f : e.fields) {
      ASSERT_NE(f.variable, 0u) << e.name << " " << f.key;
      int32_t held = 0;
      std::memcpy(&held, reinterpret_cast<const void*>(static_cast<uintptr_t>(f.variable)), sizeof held);
      EXPECT_EQ(held, f.index) << e.name << " " << f.key;
    }
  }
  // Declared again, the same host numbering starts over and is stored again.
  const int32_t before = Effect(*host, "Traditional Fade").Field("Progression")->index;
  ASSERT_LT(before, -1000);
  EXPECT_EQ(host->Declare(), host->declareResult());
  EXPECT_EQ(Effect(*host, "Traditional Fade").Field("Progression")->index, before);
  emu::Instance fade(*host, Effect(*host, "Traditional Fade"));
  EXPECT_TRUE(fade.diagnostics().empty());
}

TEST(Declaration, KrDeclareDeclaresEveryEffectWithoutAComplaint) {
  const emu::Host& host = Library();
  EXPECT_EQ(host.declareResult(), static_cast<int32_t>(host.effects().size()));
  EXPECT_TRUE(host.scriptErrors().empty());
  EXPECT_TRUE(host.diagnostics().empty());
  for (const emu::DeclaredEffect& e : host.effects()) {
    // Corner Zoom's description alone is translated under another context.
    EXPECT_EQ(e.descriptionContext, e.context == "Corner Zoom" ? "Clock" : e.context) << e.name;
  }
  // The statement writer gives a description a context of its own when asked.
  EXPECT_EQ(Effect(*LoadFresh(KRL_TEST_PLUGIN_PATH), "Kinds").descriptionContext, "Elsewhere");
}

TEST(Declaration, TextsPassThroughTheHostsTranslation) {
  const std::string catalogue = testing::TempDir() + "/krl_catalogue.tsv";
  WriteFile(catalogue, "# context\tsource\ttranslation\n"
                       "Traditional Fade\tVa fades over to Vb.\tVa blendet \xC3\xBC" "ber zu Vb.\n"
                       "Traditional Fade\tTransition\t\xC3\x9C" "bergang\n"
                       "Wipe\tProgression\tnot this context\n");
  emu::HostOptions options;
  options.catalogue = catalogue;
  const auto host = LoadFresh(KRL_LIBRARY_PATH, options);
  const emu::DeclaredEffect& fade = Effect(*host, "Traditional Fade");
  EXPECT_EQ(fade.description, "Va blendet \xC3\xBC" "ber zu Vb.");
  EXPECT_EQ(fade.Field("TransType")->label, "\xC3\x9C" "bergang");
  EXPECT_EQ(fade.Field("Progression")->label, "Progression");
  EXPECT_EQ(fade.Field("InputA")->label, "Input A");  // inputs are never translated
}

}  // namespace
}  // namespace krl::test
