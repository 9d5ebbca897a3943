#include "cli_run.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "cli/ffmpeg.h"
#include "cli/fields.h"
#include "test_support.h"

namespace krl::test {
namespace fs = std::filesystem;

Outcome Shell(const std::string& command) {
  Outcome r{-1, ""};
  FILE* pipe = popen(("{ " + command + "\n} 2>&1").c_str(), "r");
  if (pipe == nullptr) return r;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, pipe)) > 0) r.output.append(buf, n);
  const int status = pclose(pipe);
  r.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

Outcome Krl(const std::string& arguments, const std::string& environment) {
  return Shell(environment + (environment.empty() ? "" : " ") + KRL_CLI_PATH + " --library " + KRL_LIBRARY_PATH +
               " " + arguments);
}

bool Exists(const std::string& path) {
  std::error_code ec;
  return fs::exists(path, ec);
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string FreshFolder(const std::string& name) {
  // The process id keeps test runs that share the machine's /tmp apart.
  const fs::path dir = fs::path(testing::TempDir()) / ("krl_" + std::to_string(getpid()) + "_" + name);
  fs::remove_all(dir);
  fs::create_directories(dir);
  return dir.string();
}

std::vector<std::string> Leftovers(const std::string& folder) {
  std::vector<std::string> found;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().filename().string().rfind(".krl-partial", 0) == 0) found.push_back(entry.path().string());
  }
  return found;
}

bool HaveFfmpeg() { return !cli::FindFfmpeg().empty(); }

emu::Frame Expected(const std::string& effect, int32_t width, int32_t height, int32_t index, double progress,
                    const std::vector<std::string>& settings, const std::vector<std::string>& curves) {
  emu::Instance instance(Library(), Effect(Library(), effect));
  cli::ApplyFieldOptions(instance, settings, curves);
  emu::Frame out(width, height);
  instance.Render(emu::SampleClipA(width, height, index), emu::SampleClipB(width, height, index), out, progress);
  return out;
}

}  // namespace krl::test
