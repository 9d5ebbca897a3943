// Field values as users write them on krl's command line, on a plug-in with
// a field of every kind: by key or label, items by label or value, colours,
// booleans, curves; every mistake answered with what would have been valid.
#include <gtest/gtest.h>

#include <stdexcept>

#include "cli/fields.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(CliFields, TakeWhatUsersWrite) {
  const auto host = LoadFresh(KRL_TEST_PLUGIN_PATH);
  const struct {
    bool curve;  // --curve rather than --set
    const char* setting;
    const char* key;
    const char* value;  // the value afterwards, or a part of the error
  } rows[] = {
      {false, "Count=5", "Count", "5"},
      {false, "count (1..8)=2", "Count", "2"},
      {false, "Count=9", "", "Count takes 1 to 8, not 9"},
      {false, "Count=2.5", "", "Count takes a whole number, not \"2.5\""},
      {false, "Mode=Minus one", "Mode", "-1 \"Minus one\""},
      {false, "Mode=minus ONE", "Mode", "-1 \"Minus one\""},
      {false, "Mode=10", "Mode", "10 \"Ten\""},
      {false, "Mode=3", "", "\"3\" is no item of Mode; its items are 10 \"Ten\", -1 \"Minus one\""},
      {false, "Flag=off", "Flag", "off"},
      {false, "Flag=ON", "Flag", "on"},
      {false, "Flag=maybe", "", "Flag is on or off, not \"maybe\""},
      {false, "Tint=#FF2000", "Tint", "#FF2000"},
      {false, "Tint=1,2,3", "Tint", "#010203"},
      {false, "Tint=256,0,0", "", "Tint is a colour: write #RRGGBB, #RGB or r,g,b, not \"256,0,0\""},
      {false, "Tint=#12345", "", "Tint is a colour"},
      {false, "Tint=#fff", "Tint", "#FFFFFF"},
      {false, "Tint=#1a2", "Tint", "#11AA22"},
      {false, "Tint=#12g", "", "Tint is a colour: write #RRGGBB, #RGB or r,g,b"},
      {false, "Amount=1.5", "Amount", "curve (0, 1.5)"},
      {false, "Weight=x", "", "Weight takes a number, not \"x\""},
      {false, "Xyzzy=1", "", "Kinds has no field \"Xyzzy\"; its fields are TransType, Mode, Count, Amount, Flag, Tint, Weight"},
      {false, "Cuont=1", "", "Kinds has no field \"Cuont\"; did you mean Count? its fields are TransType"},
      {false, "Amount=2", "Amount", "curve (0, 2)"},
      {false, "InputA=1", "", "has no field \"InputA\""},
      {true, "Amount=1:1,0:0.5", "Amount", "curve (0, 0.5) (1, 1)"},
      {true, "weight=0:0,0.5:1,1:0", "Weight", "curve (0, 0) (0.5, 1) (1, 0)"},
      {true, "Flag=0:1", "", "Flag is no curve; the curves of Kinds are Amount, Weight"},
      {true, "Amount=0:1,", "", "Amount takes points POSITION:VALUE separated by commas"},
      {true, "Amount", "", "--curve takes KEY=VALUE"},
  };
  for (const auto& row : rows) {
    emu::Instance instance(*host, Effect(*host, "Kinds"));
    try {
      row.curve ? cli::ApplyCurve(instance, row.setting) : cli::ApplySetting(instance, row.setting);
      ASSERT_NE(*row.key, '\0') << row.setting << " was taken";
      EXPECT_EQ(cli::FieldValueText(instance, *instance.effect().Field(row.key)), row.value) << row.setting;
    } catch (const std::runtime_error& e) {
      EXPECT_EQ(*row.key, '\0') << row.setting << ": " << e.what();
      EXPECT_NE(std::string(e.what()).find(row.value), std::string::npos) << row.setting << ": " << e.what();
    }
  }
}

}  // namespace
}  // namespace krl::test
