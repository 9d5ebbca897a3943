#include "emulator/heavier_settings.h"

#include <map>

namespace krl::emu {

const std::vector<std::string>& HeavierSettings(const std::string& displayName) {
  static const std::map<std::string, std::vector<std::string>> kTable = {
      {"Brightness Plasma", {"VA_CUT=off", "DARK2LIGHT=off"}},
      {"Chaotic Dissolve", {"Color=#FF2000"}},
      {"Flash Over", {"Variation=5"}},
      {"Traditional Fade", {"Progression=0.999"}},
      {"Wipe", {"Divide_X=4", "BorderWidth=6", "Color=#FF2000", "Direction=1"}},
      {"Slide", {"Direction=3", "Divide_Y=3", "BorderWidth=6", "Color=#FF2000"}},
      {"Push", {"Divide_X=4", "BorderWidth=6", "Color=#FF2000"}},
      {"Inset", {"Divide_X=3", "Divide_Y=2", "BorderWidth=5", "Color=#FF2000", "Direction=3"}},
      {"Iris Cross", {"Divide_X=4", "Divide_Y=3", "BorderWidth=4", "Color=#FF2000"}},
      {"Iris Squared", {"Divide_X=3", "Divide_Y=3", "BorderWidth=4", "Color=#FF2000", "Direction=1"}},
      {"Iris Diamond", {"Divide_X=2", "Divide_Y=2", "BorderWidth=6", "Color=#FF2000"}},
      {"Iris Round", {"Divide_X=3", "Divide_Y=2", "BorderWidth=4", "Color=#FF2000", "Anti-Aliasing=on"}},
      {"Iris Star", {"Divide_X=2", "Divide_Y=2", "BorderWidth=4", "Color=#FF2000", "SmoothingFactor=Large"}},
  };
  static const std::vector<std::string> kNone;
  auto it = kTable.find(displayName);
  return it == kTable.end() ? kNone : it->second;
}

}  // namespace krl::emu
