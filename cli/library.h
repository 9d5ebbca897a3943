// The transitions library as krl finds and loads it, through the host
// emulator exactly as the editor loads it.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "emulator/host.h"
#include "emulator/instance.h"

namespace krl::cli {

// --library, else KRL_LIBRARY, else the library beside the krl executable
// (so the i386 krl loads the i386 library and the x86-64 one its own).
std::string LibraryPath(const std::string& option);
// Throws with one line when the library cannot be loaded or declares what
// the host cannot run.
std::unique_ptr<emu::Host> LoadLibrary(const std::string& option);
// The ABI of the library file at `path`, from its ELF header: "i386 (32-bit
// x86)", "x86-64"; "unknown" when it is no ELF file.
std::string LibraryAbi(const std::string& path);
// By name or menu path; the error suggests the nearest name or lists them all.
const emu::DeclaredEffect& FindEffect(const emu::Host& host, const std::string& name);

// Progress of frame `index` of a clip of `count` frames: 0 at the first, 1
// at the last.
double ProgressOf(int32_t index, int32_t count);
// A transition that refused a frame (its render returned 0).
struct Refused : std::runtime_error {
  using std::runtime_error::runtime_error;
};
// Renders one frame; throws Refused with the transition's reason when it refuses.
void RenderFrame(emu::Instance& instance, const emu::Frame& a, const emu::Frame& b, emu::Frame& out,
                 double progress);

}  // namespace krl::cli
