// The dissolves' fields as the host learns them, and the defaults their init
// functions give.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support.h"

namespace krl::test {
namespace {

TEST(DissolveFields, EachEffectDeclaresItsFieldsInOrder) {
  const struct {
    const char* effect;
    std::vector<std::string> keys;
  } rows[] = {
      {"Dither Dissolve", {"InputA", "InputB", "TransType"}},
      {"Random Dissolve", {"InputA", "InputB", "TransType"}},
      {"Chaotic Dissolve", {"InputA", "InputB", "TransType", "Color"}},
      {"Brightness Plasma", {"InputA", "InputB", "TransType", "DARK2LIGHT", "VA_CUT"}},
      {"Flash Over", {"InputA", "InputB", "TransType", "Variation"}},
      {"Mosaic", {"InputA", "InputB", "TransType"}},
  };
  for (const auto& row : rows) {
    std::vector<std::string> keys;
    for (const emu::DeclaredField& f : Effect(Library(), row.effect).fields) keys.push_back(f.key);
    EXPECT_EQ(keys, row.keys) << row.effect;
  }
}

TEST(DissolveFields, OwnFieldsWithTheirTextsRangesAndDefaults) {
  const struct {
    const char* effect;
    const char* key;
    const char* kind;
    const char* label;
    const char* help;
    bool limited;
    double minimum, maximum;
    int32_t defaultValue;  // for "Bool" and "Long"
  } rows[] = {
      {"Brightness Plasma", "DARK2LIGHT", "Bool", "Dark to Light",
       "Specifies whether the clips changing process proceeds from dark to light or vice versa.", false, 0, 0, 1},
      {"Brightness Plasma", "VA_CUT", "Bool", "Cut Va", "Choose here to depend on the brightness of Va or Vb.", false,
       0, 0, 1},
      {"Flash Over", "Variation", "Long", "Variation (1..8)", "Offers different types of flash overs.", true, 1, 8, 4},
      {"Chaotic Dissolve", "Color", "RGBcolor", "Background Color", "Defines the background color.", false, 0, 0, 0},
  };
  for (const auto& row : rows) {
    const emu::DeclaredEffect& effect = Effect(Library(), row.effect);
    const emu::DeclaredField* f = effect.Field(row.key);
    ASSERT_NE(f, nullptr) << row.key;
    EXPECT_EQ(f->kind, row.kind) << row.key;
    EXPECT_EQ(f->labelSource, row.label) << row.key;
    EXPECT_EQ(f->helpSource, row.help) << row.key;
    const std::vector<std::string> flags =
        row.limited ? std::vector<std::string>{"KrdfMinLimit", "KrdfMaxLimit"} : std::vector<std::string>{};  // "KrdfNone"
    EXPECT_EQ(f->flags, flags) << row.key;
    EXPECT_EQ(f->hasRange, row.kind == std::string("Long")) << row.key;
    if (f->hasRange) {
      EXPECT_EQ(f->minimum, row.minimum) << row.key;
      EXPECT_EQ(f->maximum, row.maximum) << row.key;
    }
    if (row.kind != std::string("RGBcolor")) {
      EXPECT_EQ(emu::Instance(Library(), effect).Value(row.key), row.defaultValue) << row.key;
    }
  }
  // The background of Chaotic Dissolve is a mid grey.
  emu::Instance chaotic(Library(), Effect(Library(), "Chaotic Dissolve"));
  const KrColor grey = chaotic.Color("Color");
  EXPECT_EQ((std::vector<int>{grey.Blue, grey.Green, grey.Red, grey.Alpha}), (std::vector<int>{155, 155, 155, 255}));
}

}  // namespace
}  // namespace krl::test
