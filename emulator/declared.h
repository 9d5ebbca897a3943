// What the host learned from a library's declaration script: its effects and
// their fields, as the host's own records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace krl::emu {

struct DeclaredItem {
  std::string label;  // translated text, UTF-8
  std::string source;  // the text before translation
  int32_t value = 0;
};

struct DeclaredField {
  int32_t index = 0;         // the index the host assigned
  uint64_t variable = 0;     // where the host stored it in the library
  std::string kind;          // "Input", "Selector", "Long", "FloatA", "Bool", "RGBcolor", "Alpha"
  std::string key;
  std::string label;         // translated (plain for "Input")
  std::string labelSource;
  bool hasRange = false;
  double minimum = 0.0;
  double maximum = 0.0;
  std::vector<std::string> flags;  // e.g. {"KrdfMinLimit", "KrdfMaxLimit"}
  std::string help;                // translated; empty when none
  std::string helpSource;
  std::vector<DeclaredItem> items;

  bool HasFlag(const std::string& flag) const {
    for (const std::string& f : flags) {
      if (f == flag) return true;
    }
    return false;
  }
  bool Limited() const { return HasFlag("KrdfMinLimit") || HasFlag("KrdfMaxLimit"); }
};

struct DeclaredEffect {
  std::string name;          // obj.Name, the menu path
  std::string sign;          // obj.Sign
  uint32_t version = 0;
  std::string type;
  std::string description;   // translated
  std::string descriptionSource;
  std::string descriptionContext;
  std::string context;       // the context its field texts were translated with
  uint64_t initFunction = 0;
  uint64_t renderFunction = 0;
  uint64_t deleteUserData = 0;
  std::vector<DeclaredField> fields;

  const DeclaredField* Field(const std::string& key) const {
    for (const DeclaredField& f : fields) {
      if (f.key == key) return &f;
    }
    return nullptr;
  }
  // The name a user knows it by: the context its texts are translated with
  // (it differs from the last part of the menu path for one effect,
  // "SmoulderingPaper"), or that last part when it translated no field text.
  std::string DisplayName() const {
    if (!context.empty()) return context;
    const size_t slash = name.rfind('/');
    return slash == std::string::npos ? name : name.substr(slash + 1);
  }
};

}  // namespace krl::emu
