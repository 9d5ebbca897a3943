// Whether this program runs on an emulated CPU. On a kernel without 32-bit
// user mode the i386 build runs under qemu (scripts/i386-runner.sh registers
// it with binfmt_misc); its timings then measure the emulator, and the
// benchmark must say so rather than print them as the library's.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace krl::bench {

// The interpreter that a binfmt_misc entry (the text of a file in
// /proc/sys/fs/binfmt_misc) names for a program starting with `header`, or ""
// when the entry is disabled or its magic does not match.
std::string InterpreterOfEntry(const std::string& entry, const std::vector<uint8_t>& header);

// The emulator the kernel starts this program under, or "" when it runs natively.
std::string EmulatorOfThisProgram();

}  // namespace krl::bench
