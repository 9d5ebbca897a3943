// krl as a user runs it, for the tests of the command line: the real binary,
// the shipped library (or another), output and exit code.
#pragma once

#include <string>
#include <vector>

#include "emulator/frame.h"
#include "emulator/instance.h"

namespace krl::test {

struct Outcome {
  int exit;
  std::string output;  // stdout and stderr
};

// Runs a shell command line; `environment` goes before it ("PATH=/x").
Outcome Shell(const std::string& command);
// krl --library <the shipped library> ARGUMENTS, with `environment` first.
Outcome Krl(const std::string& arguments, const std::string& environment = "");

bool Exists(const std::string& path);
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
// A fresh, empty folder under the test temporary folder, of this process alone.
std::string FreshFolder(const std::string& name);
// Files krl stages its outputs in that were left in `folder`.
std::vector<std::string> Leftovers(const std::string& folder);
bool HaveFfmpeg();

// The frame krl must produce: `effect` with the built-in clips at frame
// `index` of the clip, at `progress`, after applying krl's field options.
emu::Frame Expected(const std::string& effect, int32_t width, int32_t height, int32_t index, double progress,
                    const std::vector<std::string>& settings = {}, const std::vector<std::string>& curves = {});

}  // namespace krl::test
