#include "emulator/heavier_settings.h"

#include <map>

namespace krl::emu {

const std::vector<std::string>& HeavierSettings(const std::string& displayName) {
  static const std::map<std::string, std::vector<std::string>> kTable = {
      {"Traditional Fade", {"Progression=0.999"}},
  };
  static const std::vector<std::string> kNone;
  auto it = kTable.find(displayName);
  return it == kTable.end() ? kNone : it->second;
}

}  // namespace krl::emu
