// One plug-in's hold on the library: the host emulator with the library
// loaded and declared, exactly as krl loads it, the transition this plug-in
// stands for, and that transition's frei0r parameters.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "emulator/host.h"
#include "frei0r/parameters.h"

namespace krl::frei0r {

// The display name of the transition this plug-in stands for; each plug-in
// is built with its own (transition_name.cpp).
const char* TransitionName();

struct Loaded {
  std::unique_ptr<emu::Host> host;
  const emu::DeclaredEffect* effect = nullptr;
  std::vector<Param> params;
  // Its renders touch process-wide state (rand(), module variables), so
  // they must not overlap: the plug-in takes them one at a time.
  bool sharedState = true;
  std::string explanation;
};

// The library named by KRL_LIBRARY, else libkrl.bxtransitions.so.1 beside
// this plug-in's own file.
std::string LibraryPath();

// Loads and declares the library on the first call (f0r_init, or whichever
// entry point a host calls first) and keeps it until Unload. Null when it
// cannot be loaded; the reason goes to stderr once. Instances hold the
// pointer they got, so an early Unload never pulls the library from under them.
std::shared_ptr<const Loaded> Current();
void Unload();

}  // namespace krl::frei0r
