// What the library tells the host in its declaration script: the exact
// statements, the field indices read back from the host, translations.
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <vector>

#include "effect_table.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(Declaration, TraditionalFadeStatementsWordForWord) {
  // Negative, widely spaced indices: T14/T15 must print what the host stored, with %d.
  emu::HostOptions options;
  options.firstFieldIndex = -42;
  options.fieldIndexStep = -1000;
  const auto host = LoadFresh(KRL_LIBRARY_PATH, options);
  const emu::DeclaredEffect& fade = Effect(*host, "Traditional Fade");
  // Which numbers the host hands out depends on the effects declared before.
  const int32_t transTypeIndex = fade.Field("TransType")->index;
  ASSERT_LT(transTypeIndex, -1000);
  EXPECT_EQ(fade.Field("Progression")->index, transTypeIndex - 1000);
  const std::string tt = std::to_string(transTypeIndex), pr = std::to_string(transTypeIndex - 1000);

  const std::vector<std::string> expected = {
      "KrEffect obj; obj.Name = \"Transitions/Dissolve/Traditional Fade\"; obj.Sign = \"Traditional Fade (ZE plug-in "
      "SDK effect)\"; obj.Version = 0x1;",
      "obj.Type = \"Transition\";",
      "obj.DescriptionW = (word *){Va fades over to Vb.};",
      "obj.InitFunction = {init};",
      "obj.RenderVideoFunctionRT = {render};",
      "*((int *){var:InputA}) = KrDataFieldAdd( &obj.df, \"Input\", \"InputA\", \"Input A\", KrdfNone );",
      "*((int *){var:InputB}) = KrDataFieldAdd( &obj.df, \"Input\", \"InputB\", \"Input B\", KrdfNone );",
      "*((int *){var:TransType}) = KrDataFieldAdd( &obj.df, \"Selector\", \"TransType\", (word *){Transition}, "
      "KrdfNone );",
      "KrDataFieldHelpbyId( &obj.df, " + tt + ", (word *){Specifies the order the clips will change.} );",
      "DataFieldSelItemAddById( &obj.df, " + tt + ", (word *){Image 1 > Image 2}, 0x0 );",
      "DataFieldSelItemAddById( &obj.df, " + tt + ", (word *){Image 2 > Image 1}, 0x1 );",
      "*((int *){var:Progression}) = KrDataFieldAdd( &obj.df, \"Alpha\", \"Progression\", (word *){Progression}, "
      "KrdfNone );",
      "KrDataFieldHelpbyId( &obj.df, " + pr + ", (word *){Allows to adjust the fade's progression.} );",
      "EffectAdd( obj );",
  };
  EXPECT_EQ(StatementsOf(*host, fade), expected);

  // The library's variables hold exactly what the host's script stored.
  for (const emu::DeclaredField& f : fade.fields) {
    int32_t held = 0;
    std::memcpy(&held, reinterpret_cast<const void*>(static_cast<uintptr_t>(f.variable)), sizeof held);
    EXPECT_EQ(held, f.index) << f.key;
  }
  for (const emu::DeclaredField& f : fade.fields) EXPECT_EQ(f.variable == 0, false) << f.key;
}

TEST(Declaration, KrDeclareDeclaresEachEffectOnceInTheTablesOrder) {
  const emu::Host& host = Library();
  const size_t declared = host.effects().size();
  EXPECT_EQ(host.declareResult(), static_cast<int32_t>(declared));
  EXPECT_TRUE(host.scriptErrors().empty());
  EXPECT_TRUE(host.diagnostics().empty());
  // The effects that exist appear in the table's order with the table's texts.
  size_t row = 0;
  for (const emu::DeclaredEffect& e : host.effects()) {
    while (row < std::size(kEffectTable) && e.name != kEffectTable[row].menuPath) ++row;
    ASSERT_LT(row, std::size(kEffectTable)) << e.name << " is out of order or not in the table";
    const EffectRow& expected = kEffectTable[row];
    EXPECT_EQ(e.sign, expected.signature);
    EXPECT_EQ(e.context, expected.displayName);
    EXPECT_EQ(e.descriptionSource, expected.description);
    // Corner Zoom's description alone is translated under another context.
    EXPECT_EQ(e.descriptionContext, e.context == "Corner Zoom" ? "Clock" : expected.displayName);
    EXPECT_EQ(e.version, 1u);
    EXPECT_EQ(e.type, "Transition");
  }
  EXPECT_GE(declared, 1u);
}

TEST(Declaration, DeclaringAgainStoresTheNewIndices) {
  const auto host = LoadFresh(KRL_LIBRARY_PATH);
  const int32_t before = Effect(*host, "Traditional Fade").Field("Progression")->index;
  const int32_t result = host->Declare();
  EXPECT_EQ(result, host->declareResult());
  const emu::DeclaredField* after = Effect(*host, "Traditional Fade").Field("Progression");
  EXPECT_EQ(after->index, before);  // the same host numbering starts over
  emu::Instance fade(*host, Effect(*host, "Traditional Fade"));
  EXPECT_TRUE(fade.diagnostics().empty());
}

// The test plug-in declares one field of every kind through the same writer.
TEST(Declaration, EveryFieldKindIsWrittenAsTheHostReadsIt) {
  const auto host = LoadFresh(KRL_TEST_PLUGIN_PATH);
  const emu::DeclaredEffect& e = Effect(*host, "Kinds");
  std::vector<std::string> fieldLines;
  for (const std::string& s : StatementsOf(*host, e)) {
    if (s.find("KrDataFieldAdd") != std::string::npos || s.find("SelItem") != std::string::npos ||
        s.find("DeleteUserData") != std::string::npos) {
      fieldLines.push_back(s);
    }
  }
  const std::vector<std::string> expected = {
      "obj.DeleteUserData = {delete};",
      "*((int *){var:InputA}) = KrDataFieldAdd( &obj.df, \"Input\", \"InputA\", \"Input A\", KrdfNone );",
      "*((int *){var:InputB}) = KrDataFieldAdd( &obj.df, \"Input\", \"InputB\", \"Input B\", KrdfNone );",
      "*((int *){var:InputC}) = KrDataFieldAdd( &obj.df, \"Input\", \"InputC\", \"Input C\", KrdfNone );",
      "*((int *){var:TransType}) = KrDataFieldAdd( &obj.df, \"Selector\", \"TransType\", (word *){Transition}, "
      "KrdfNone );",
      "DataFieldSelItemAddById( &obj.df, 7040, (word *){Image 1 > Image 2}, 0x0 );",
      "DataFieldSelItemAddById( &obj.df, 7040, (word *){Image 2 > Image 1}, 0x1 );",
      "*((int *){var:Mode}) = KrDataFieldAdd( &obj.df, \"Selector\", \"Mode\", (word *){Mode}, KrdfNone );",
      "DataFieldSelItemAddById( &obj.df, 7053, (word *){Ten}, 0xA );",
      "DataFieldSelItemAddById( &obj.df, 7053, (word *){Minus one}, 0xFFFFFFFF );",
      "*((int *){var:Count}) = KrDataFieldAdd( &obj.df, \"Long\", \"Count\", (word *){Count (1..8)}, "
      "1.000000,8.000000, KrdfMinLimit|KrdfMaxLimit );",
      "*((int *){var:Amount}) = KrDataFieldAdd( &obj.df, \"FloatA\", \"Amount\", (word *){Amount}, "
      "-0.500000,2.250000, KrdfNone );",
      "*((int *){var:Flag}) = KrDataFieldAdd( &obj.df, \"Bool\", \"Flag\", (word *){Flag}, KrdfHideCurve );",
      "*((int *){var:Tint}) = KrDataFieldAdd( &obj.df, \"RGBcolor\", \"Tint\", (word *){Tint}, KrdfNone );",
      "*((int *){var:Weight}) = KrDataFieldAdd( &obj.df, \"Alpha\", \"Weight\", (word *){Weight}, KrdfNone );",
  };
  EXPECT_EQ(fieldLines, expected);
  EXPECT_EQ(e.descriptionContext, "Elsewhere");  // a description may have its own context
  EXPECT_EQ(e.context, "Kinds");
  EXPECT_EQ(e.Field("Mode")->items.at(1).value, -1);
}

TEST(Declaration, TextsPassThroughTheHostsTranslation) {
  const std::string catalogue = testing::TempDir() + "/krl_catalogue.tsv";
  {
    FILE* f = std::fopen(catalogue.c_str(), "w");
    ASSERT_NE(f, nullptr);
    std::fputs("# context\tsource\ttranslation\n"
               "Traditional Fade\tVa fades over to Vb.\tVa blendet \xC3\xBC" "ber zu Vb.\n"
               "Traditional Fade\tTransition\t\xC3\x9C" "bergang\n"
               "Wipe\tProgression\tnot this context\n",
               f);
    std::fclose(f);
  }
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
