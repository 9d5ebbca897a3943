// Field values as a user writes them on the command line, and fields as the
// previewer shows them.
#pragma once

#include <string>
#include <vector>

#include "emulator/instance.h"

namespace krl::cli {

// Applies "KEY=VALUE" (key or label; selector items by label or value;
// colours as #RRGGBB or r,g,b; booleans as on/off; curves as one number).
// Throws with a message that names what would have been valid.
void ApplySetting(emu::Instance& instance, const std::string& setting);
// Applies "KEY=POS:VAL,POS:VAL,..." to a curve field (Alpha, FloatA): the
// host joins the points by straight lines.
void ApplyCurve(emu::Instance& instance, const std::string& setting);
// Every --set, then every --curve, in the order given.
void ApplyFieldOptions(emu::Instance& instance, const std::vector<std::string>& settings,
                       const std::vector<std::string>& curves);

// The instance's value of the field: "0 \"Image 1 > Image 2\"", "on", "#FF2000",
// "curve (0, 0) (1, 1)"; empty for an input.
std::string FieldValueText(const emu::Instance& instance, const emu::DeclaredField& field);
// "1..8 (enforced)"; empty when the field declares no range.
std::string RangeText(const emu::DeclaredField& field);
// "0 \"Image 1 > Image 2\", 1 \"Image 2 > Image 1\""; empty for no items.
std::string ItemList(const emu::DeclaredField& field);

}  // namespace krl::cli
