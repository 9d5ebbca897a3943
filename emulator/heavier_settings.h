// For each transition, the field settings that make it work hardest (a grid,
// a thick bright pen, anti-aliasing, the largest filter), as KEY=VALUE texts
// in the previewer's syntax. The golden digests and the benchmark render
// them beside the defaults; a new transition adds its row.
#pragma once

#include <string>
#include <vector>

namespace krl::emu {

// Empty when the transition has nothing heavier than its defaults.
const std::vector<std::string>& HeavierSettings(const std::string& displayName);

}  // namespace krl::emu
