// The command line of krl: one parse for every command, the usage text, and
// the checked conversions of option values.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace krl::cli {

extern const char* const kUsage;

// A mistake in the command line: reported in one line with a pointer to
// --help, exit code 2.
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
  std::vector<std::string> given;  // the options given, by their long names, in order
};

// Unknown options are errors; of an option given twice the last counts.
Options ParseOptions(int argc, char** argv);
// Refuses every option given that `command` does not take (besides --library),
// saying why where it is not plain, and more than `maxNames` transition names.
void AcceptOnly(const Options& options, const std::vector<std::string>& taken, size_t maxNames);

struct Size {
  int32_t width, height;
};
// "WIDTHxHEIGHT", 1 to 16384 each.
Size ParseSize(const std::string& text);
// A whole number in [low, high] for the option `name`.
int32_t ParseCount(const std::string& name, const std::string& text, int32_t low, int32_t high);
// A finite number in (0, high] for the option `name`.
double ParsePositive(const std::string& name, const std::string& text, double high);
// --progress: any number, NaN and infinities included (a host may send them);
// one outside 0..1 is said once on stderr, with what the library does with it.
double ParseProgress(const std::string& text);

}  // namespace krl::cli
