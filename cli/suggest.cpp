#include "cli/suggest.h"

#include <algorithm>
#include <cctype>

namespace krl::cli {
namespace {

std::string Folded(const std::string& s) {
  std::string out;
  for (const unsigned char c : s) {
    if (c != ' ' && c != '-' && c != '_') out += static_cast<char>(std::tolower(c));
  }
  return out;
}

// Edits (insert, delete, replace, swap of neighbours) from a to b.
size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<size_t>> d(a.size() + 1, std::vector<size_t>(b.size() + 1));
  for (size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    for (size_t j = 1; j <= b.size(); ++j) {
      d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  }
  return d[a.size()][b.size()];
}

}  // namespace

std::string Closest(const std::string& word, const std::vector<std::string>& names) {
  const std::string w = Folded(word);
  std::string best;
  size_t bestDistance = 0;
  for (const std::string& name : names) {
    const size_t d = Distance(w, Folded(name));
    if (best.empty() || d < bestDistance) {
      best = name;
      bestDistance = d;
    }
  }
  // Up to a third of the word may be wrong, at least one letter.
  return !best.empty() && bestDistance <= std::max<size_t>(1, w.size() / 3) ? best : "";
}

}  // namespace krl::cli
