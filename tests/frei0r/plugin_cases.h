// What the frei0r plug-ins' tests share: a plug-in loaded as a host loads it,
// and a table of transitions of every family with their settings written
// twice, as a frei0r host sets them and as krl takes them.
#pragma once

#include <string>
#include <vector>

#include "frei0r/frei0r_api.h"

namespace krl::test {

struct PluginCase {
  const char* transition;
  std::vector<std::string> frei0r;  // "Label=value": a number, or #RRGGBB for a colour
  std::vector<std::string> krl;     // the same settings as krl --set takes them
};

// One per family (dissolve, pengrid, band, threed), with defaults and without.
const std::vector<PluginCase>& PluginCases();

// krl_<display name in lower case, words joined by _>.so in the build's frei0r folder.
std::string PluginPath(const std::string& transition);

// A plug-in opened with dlopen and initialised as a host does it, closed
// again at the end; its functions are called as a host calls them.
struct Plugin {
  explicit Plugin(const std::string& transition);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  bool ok() const { return handle != nullptr && initResult == 1; }
  f0r_plugin_info_t Info() const;
  f0r_param_info_t ParamInfo(int index) const;
  // Sets "Label=value" as a host does (see PluginCase); false for an unknown label.
  bool Set(f0r_instance_t instance, const std::string& setting) const;
  void SetNumber(f0r_instance_t instance, int index, double value) const { set(instance, &value, index); }

  void* handle = nullptr;
  int initResult = 0;
  decltype(&f0r_get_plugin_info) info = nullptr;
  decltype(&f0r_get_param_info) paramInfo = nullptr;
  decltype(&f0r_construct) construct = nullptr;
  decltype(&f0r_destruct) destruct = nullptr;
  decltype(&f0r_set_param_value) set = nullptr;
  decltype(&f0r_update2) update2 = nullptr;
  decltype(&f0r_deinit) deinit = nullptr;
};

}  // namespace krl::test
