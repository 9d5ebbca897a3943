#include "bench/emulated_cpu.h"

#include <dirent.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace krl::bench {
namespace {

std::vector<uint8_t> FromHex(const std::string& hex) {
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) bytes.push_back(static_cast<uint8_t>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16)));
  return bytes;
}

std::string ReadFile(const std::string& path, size_t limit) {
  std::ifstream in(path, std::ios::binary);
  std::string text(limit, '\0');
  in.read(text.data(), static_cast<std::streamsize>(limit));
  text.resize(static_cast<size_t>(in.gcount()));
  return text;
}

}  // namespace

std::string InterpreterOfEntry(const std::string& entry, const std::vector<uint8_t>& header) {
  std::istringstream lines(entry);
  std::string line, interpreter;
  std::vector<uint8_t> magic, mask;
  bool enabled = false;
  size_t offset = 0;
  while (std::getline(lines, line)) {
    const std::string key = line.substr(0, line.find(' '));
    const std::string value = line.find(' ') == std::string::npos ? "" : line.substr(line.find(' ') + 1);
    if (line == "enabled") enabled = true;
    if (key == "interpreter") interpreter = value;
    if (key == "offset") offset = std::strtoul(value.c_str(), nullptr, 10);
    if (key == "magic") magic = FromHex(value);
    if (key == "mask") mask = FromHex(value);
  }
  // An entry by file name extension ("extension .x") has no magic.
  if (!enabled || magic.empty() || offset + magic.size() > header.size()) return "";
  for (size_t i = 0; i < magic.size(); ++i) {
    const uint8_t m = i < mask.size() ? mask[i] : 0xff;
    if ((header[offset + i] & m) != (magic[i] & m)) return "";
  }
  return interpreter;
}

std::string EmulatorOfThisProgram() {
  const std::string dir = "/proc/sys/fs/binfmt_misc";
  if (ReadFile(dir + "/status", 16).rfind("enabled", 0) != 0) return "";
  // Under qemu, /proc/self/exe is still the program it emulates.
  const std::string head = ReadFile("/proc/self/exe", 128);
  const std::vector<uint8_t> header(head.begin(), head.end());
  DIR* entries = opendir(dir.c_str());
  if (!entries) return "";
  std::string emulator;
  while (const dirent* e = readdir(entries)) {
    const std::string name = e->d_name;
    if (name == "." || name == ".." || name == "status" || name == "register") continue;
    emulator = InterpreterOfEntry(ReadFile(dir + "/" + name, 4096), header);
    if (!emulator.empty()) break;
  }
  closedir(entries);
  return emulator;
}

}  // namespace krl::bench
