#include "frei0r/plugin.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stdexcept>

#include "emulator/test_profile.h"

namespace krl::frei0r {
namespace {

constexpr const char* kLibraryName = "libkrl.bxtransitions.so.1";

std::mutex gMutex;
std::shared_ptr<const Loaded> gLoaded;
bool gFailed = false;  // said once; a failed load is not retried until Unload

std::shared_ptr<const Loaded> Load() {
  auto loaded = std::make_shared<Loaded>();
  std::string error;
  loaded->host = emu::Host::Load(LibraryPath(), &error);
  if (!loaded->host) throw std::runtime_error(error);
  loaded->effect = loaded->host->FindEffect(TransitionName());
  if (loaded->effect == nullptr) throw std::runtime_error(LibraryPath() + " declares no \"" + TransitionName() + "\"");
  // No instance here: an init may draw from rand(), and the instances a host
  // makes should find the process as krl's do.
  loaded->params = ParamsOf(*loaded->effect);
  const emu::TestProfile* profile = emu::FindProfile(*loaded->effect);
  loaded->sharedState = profile == nullptr || profile->sharedState;
  loaded->explanation = loaded->effect->description + " (" + loaded->effect->name + ")";
  return loaded;
}

}  // namespace

std::string LibraryPath() {
  if (const char* env = std::getenv("KRL_LIBRARY"); env != nullptr && *env != '\0') return env;
  Dl_info self{};
  if (dladdr(reinterpret_cast<void*>(&LibraryPath), &self) == 0 || self.dli_fname == nullptr) return kLibraryName;
  const std::string path = self.dli_fname;
  return path.substr(0, path.rfind('/') + 1) + kLibraryName;
}

std::shared_ptr<const Loaded> Current() {
  const std::lock_guard<std::mutex> lock(gMutex);
  if (gLoaded || gFailed) return gLoaded;
  try {
    gLoaded = Load();
  } catch (const std::exception& e) {
    gFailed = true;
    std::fprintf(stderr, "krl frei0r plug-in \"%s\": %s\n", TransitionName(), e.what());
  }
  return gLoaded;
}

void Unload() {
  const std::lock_guard<std::mutex> lock(gMutex);
  gLoaded.reset();
  gFailed = false;
}

}  // namespace krl::frei0r
