// The fields the pen-grid transitions declare, text for text, and the
// defaults their init functions set.
#include <gtest/gtest.h>

#include <vector>

#include "test_support.h"

namespace krl::test {
namespace {

struct Item {
  std::string label;
  int32_t value;
};

struct PenGridDeclaration {
  const char* effect;
  const char* directionHelp;
  std::vector<Item> directionItems;
  const char* ninthKey;  // Iris Round and Iris Star only
};

const std::vector<Item> kTravel = {{"Left > Right", 0}, {"Right > Left", 1}, {"Top > Bottom", 2}, {"Bottom > Top", 3}};
const std::vector<Item> kIris = {{"Open Va", 0}, {"Close Vb", 1}};
const char* const kIrisHelp = "Specifies whether the iris is opened or closed.";

const PenGridDeclaration kDeclarations[] = {
    {"Wipe", "Specifies the position where Vb starts to move in.", kTravel, nullptr},
    {"Slide", "Specifies the position where Vb starts to slide in.", kTravel, nullptr},
    {"Push", "Specifies the position where Vb starts to move in.", kTravel, nullptr},
    {"Inset", "Specifies the starting point for the transition.",
     {{"Top Left", 0}, {"Top Right", 1}, {"Bottom Left", 2}, {"Bottom Right", 3}}, nullptr},
    {"Iris Cross", kIrisHelp, kIris, nullptr},
    {"Iris Diamond", kIrisHelp, kIris, nullptr},
    {"Iris Round", kIrisHelp, kIris, "Anti-Aliasing"},
    {"Iris Squared", kIrisHelp, kIris, nullptr},
    {"Iris Star", kIrisHelp, kIris, "SmoothingFactor"},
};

void ExpectItems(const emu::DeclaredField& f, const std::vector<Item>& items) {
  ASSERT_EQ(f.items.size(), items.size()) << f.key;
  for (size_t i = 0; i < items.size(); ++i) {
    EXPECT_EQ(f.items[i].source, items[i].label) << f.key;
    EXPECT_EQ(f.items[i].value, items[i].value) << f.key;
  }
}

void ExpectLong(const emu::DeclaredField& f, const char* label, double minimum, double maximum, const char* help) {
  EXPECT_EQ(f.kind, "Long");
  EXPECT_EQ(f.labelSource, label);
  EXPECT_EQ(f.minimum, minimum) << f.key;
  EXPECT_EQ(f.maximum, maximum) << f.key;
  EXPECT_EQ(f.flags, (std::vector<std::string>{"KrdfMinLimit", "KrdfMaxLimit"})) << f.key;
  EXPECT_EQ(f.helpSource, help);
}

// The own fields of Iris Round and Iris Star.
void ExpectNinth(const emu::DeclaredField& f) {
  EXPECT_TRUE(f.flags.empty());
  if (f.key == "Anti-Aliasing") {
    EXPECT_EQ(f.kind, "Bool");
    EXPECT_EQ(f.labelSource, "Anti-Aliasing");
    EXPECT_EQ(f.helpSource, "This option offers an improvement of quality.");
  } else {
    EXPECT_EQ(f.key, "SmoothingFactor");
    EXPECT_EQ(f.kind, "Selector");
    EXPECT_EQ(f.labelSource, "Gauss Filter");
    EXPECT_EQ(f.helpSource, "This filter allows you to add a kind of blur effect.");
    ExpectItems(f, {{"None", 0}, {"Small", 1}, {"Medium", 2}, {"Large", 3}});
  }
}

TEST(PenGridDeclaration, FieldsTextForTextInTheirOrder) {
  for (const PenGridDeclaration& d : kDeclarations) {
    SCOPED_TRACE(d.effect);
    const emu::DeclaredEffect& e = Effect(Library(), d.effect);
    std::vector<std::string> keys;
    for (const emu::DeclaredField& f : e.fields) keys.push_back(f.key);
    std::vector<std::string> expected = {"InputA", "InputB", "TransType", "Direction", "Divide_X",
                                         "Divide_Y", "Color", "BorderWidth"};
    if (d.ninthKey != nullptr) expected.push_back(d.ninthKey);
    ASSERT_EQ(keys, expected);
    if (d.ninthKey != nullptr) ExpectNinth(e.fields[8]);

    const emu::DeclaredField& direction = e.fields[3];
    EXPECT_EQ(direction.kind, "Selector");
    EXPECT_EQ(direction.labelSource, "Direction");
    EXPECT_EQ(direction.helpSource, d.directionHelp);
    EXPECT_EQ(direction.flags, std::vector<std::string>{});
    ExpectItems(direction, d.directionItems);

    ExpectLong(e.fields[4], "X-division (1..8)", 1.0, 8.0, "Increases the number of pens on the x-axis.");
    ExpectLong(e.fields[5], "Y-division (1..8)", 1.0, 8.0, "Increases the number of pens on the y-axis.");
    EXPECT_EQ(e.fields[6].kind, "RGBcolor");
    EXPECT_EQ(e.fields[6].labelSource, "Pen Color");
    EXPECT_EQ(e.fields[6].helpSource, "Defines the color of the pens.");
    EXPECT_EQ(e.fields[6].flags, std::vector<std::string>{});
    ExpectLong(e.fields[7], "Pen Thickness (0..10)", 0.0, 10.0, "Specifies the thickness of the individual pens.");
    for (const emu::DeclaredField& f : e.fields) EXPECT_TRUE(f.items.empty() || f.kind == "Selector") << f.key;
  }
}

TEST(PenGridDeclaration, InitSetsTheFirstItemsOneCellAnOpaqueBlackPenAndNoThickness) {
  for (const PenGridDeclaration& d : kDeclarations) {
    SCOPED_TRACE(d.effect);
    emu::Instance instance(Library(), Effect(Library(), d.effect));
    EXPECT_EQ(instance.Value("TransType"), 0);
    EXPECT_EQ(instance.Value("Direction"), 0);
    EXPECT_EQ(instance.Value("Divide_X"), 1);
    EXPECT_EQ(instance.Value("Divide_Y"), 1);
    const KrColor pen = instance.Color("Color");
    EXPECT_EQ((std::vector<int>{pen.Blue, pen.Green, pen.Red, pen.Alpha}), (std::vector<int>{0, 0, 0, 255}));
    EXPECT_EQ(instance.Value("BorderWidth"), 0);
    if (d.ninthKey != nullptr) {
      EXPECT_EQ(instance.Value(d.ninthKey), 0);
    }
  }
}

}  // namespace
}  // namespace krl::test
