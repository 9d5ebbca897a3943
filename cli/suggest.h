// "Did you mean": the known name nearest to a misspelled one.
#pragma once

#include <string>
#include <vector>

namespace krl::cli {

// The name of `names` nearest to `word` (case, blanks, '-' and '_' ignored),
// when it is near enough to be a likely misspelling; else empty.
std::string Closest(const std::string& word, const std::vector<std::string>& names);

}  // namespace krl::cli
