// The command line of krl: one parse for every command, the usage text, and
// the checked conversions of option values.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace krl::cli {

extern const char* const kUsage;

// A mistake in the command line: reported with the usage text, exit code 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  std::string library;
  std::string command;
  std::vector<std::string> positional;
  std::string a, b, output, size, progress, frames, fps;
  std::vector<std::string> settings;  // --set KEY=VALUE
  std::vector<std::string> curves;    // --curve KEY=POS:VAL,...
  bool quiet = false;
};

Options ParseOptions(int argc, char** argv);

struct Size {
  int32_t width, height;
};
// "WIDTHxHEIGHT", 1 to 16384 each.
Size ParseSize(const std::string& text);
// A whole number in [low, high] for the option `name`.
int32_t ParseCount(const std::string& name, const std::string& text, int32_t low, int32_t high);
// A finite number in (0, high] for the option `name`.
double ParsePositive(const std::string& name, const std::string& text, double high);

}  // namespace krl::cli
