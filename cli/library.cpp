#include "cli/library.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "cli/suggest.h"

namespace krl::cli {

constexpr const char* kLibraryName = "libkrl.bxtransitions.so.1";

std::string LibraryPath(const std::string& option) {
  if (!option.empty()) return option;
  if (const char* env = std::getenv("KRL_LIBRARY"); env != nullptr && *env != '\0') return env;
  char exe[4096];
  const ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
  if (n <= 0) return kLibraryName;
  const std::string path(exe, static_cast<size_t>(n));
  return path.substr(0, path.rfind('/') + 1) + kLibraryName;
}

std::unique_ptr<emu::Host> LoadLibrary(const std::string& option) {
  std::string error;
  auto host = emu::Host::Load(LibraryPath(option), &error);
  if (!host) throw std::runtime_error(error);
  return host;
}

const emu::DeclaredEffect& FindEffect(const emu::Host& host, const std::string& name) {
  if (const emu::DeclaredEffect* e = host.FindEffect(name)) return *e;
  std::string known;
  std::vector<std::string> names;
  for (const emu::DeclaredEffect& e : host.effects()) {
    known += (known.empty() ? "" : ", ") + e.DisplayName();
    names.push_back(e.DisplayName());
    names.push_back(e.name);
  }
  if (const std::string near = Closest(name, names); !near.empty()) {
    throw std::runtime_error("no transition is called \"" + name + "\"; did you mean \"" + near + "\"?");
  }
  throw std::runtime_error("no transition is called \"" + name + "\"; there are: " + known);
}

std::string LibraryAbi(const std::string& path) {
  unsigned char header[20] = {};
  FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return "unknown";
  const size_t n = std::fread(header, 1, sizeof header, file);
  std::fclose(file);
  if (n < sizeof header || header[0] != 0x7F || header[1] != 'E' || header[2] != 'L' || header[3] != 'F') {
    return "unknown";
  }
  const unsigned machine = header[5] == 1 ? header[18] | (header[19] << 8) : (header[18] << 8) | header[19];
  if (header[4] == 1 && machine == 3) return "i386 (32-bit x86)";
  if (header[4] == 2 && machine == 62) return "x86-64";
  return std::string(header[4] == 1 ? "32" : "64") + "-bit ELF, machine " + std::to_string(machine);
}

double ProgressOf(int32_t index, int32_t count) {
  return count > 1 ? static_cast<double>(index) / (count - 1) : 0.0;
}

void RenderFrame(emu::Instance& instance, const emu::Frame& a, const emu::Frame& b, emu::Frame& out,
                 double progress) {
  if (instance.Render(a, b, out, progress) == 1) return;
  const std::string why = instance.reportedErrors().empty() ? "no reason given" : instance.reportedErrors().back();
  char at[32];
  std::snprintf(at, sizeof at, "%g", progress);
  throw Refused(instance.effect().DisplayName() + " refused the frame at Progress " + at + ": " + why);
}

}  // namespace krl::cli
