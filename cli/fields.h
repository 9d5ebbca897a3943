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

// One field as text: kind, key, label, range, flags, items and the value the
// instance holds (after init: the default).
std::vector<std::string> DescribeField(const emu::Instance& instance, const emu::DeclaredField& field);

// "Long 1..8 (limits)" and the like, and the instance's value of the field.
std::string FieldValueText(const emu::Instance& instance, const emu::DeclaredField& field);

}  // namespace krl::cli
