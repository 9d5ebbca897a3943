// What the tests share: the library loaded through the host emulator, as the
// editor loads it, and small helpers around instances and frames.
#pragma once

#include <memory>
#include <string>

#include "emulator/digest.h"
#include "emulator/host.h"
#include "emulator/instance.h"
#include "emulator/sample_clips.h"

namespace krl::test {

// The shipped library, loaded once for the whole run.
emu::Host& Library();
// A fresh load of a library with its own host options (a new declaration).
std::unique_ptr<emu::Host> LoadFresh(const std::string& path, const emu::HostOptions& options = {});

const emu::DeclaredEffect& Effect(const emu::Host& host, const std::string& name);

// A statement with every address replaced by what lies there: {init},
// {render}, {delete}, {var:KEY} for a field variable, {TEXT} for a
// translated text (its source). Other hexadecimal numbers stay as written.
std::string Normalised(const emu::Host& host, const emu::DeclaredEffect& effect, const std::string& statement);

// The normalised statements one effect sent, from "KrEffect obj;" to "EffectAdd".
std::vector<std::string> StatementsOf(const emu::Host& host, const emu::DeclaredEffect& effect);

// A frame whose every pixel is `pixel`.
emu::Frame Filled(int32_t w, int32_t h, uint32_t pixel);

// Compares `content` with a golden file of tests/golden/, line by line,
// reporting the lines that differ. With KRL_UPDATE_GOLDEN set in the
// environment it rewrites the file instead (review its diff before committing).
void ExpectGolden(const std::string& file, const std::string& content);

}  // namespace krl::test
