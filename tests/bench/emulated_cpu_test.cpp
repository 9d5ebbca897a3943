// The benchmark's check for an emulated CPU reads the kernel's binfmt_misc
// entries: an entry whose magic matches the program's first bytes names the
// emulator that runs it.
#include "bench/emulated_cpu.h"

#include <gtest/gtest.h>

namespace {

// What the kernel shows for the entry scripts/i386-runner.sh registers.
const std::string kQemuEntry =
    "enabled\ninterpreter /usr/bin/qemu-i386\nflags: F\noffset 0\n"
    "magic 7f454c4601010100000000000000000002000300\n"
    "mask fffffffffffefe00fffffffffffffffffeffffff\n";

std::vector<uint8_t> ElfHeader(uint8_t elfClass, uint8_t type, uint8_t machine) {
  std::vector<uint8_t> h(52, 0);
  const uint8_t ident[] = {0x7f, 'E', 'L', 'F', elfClass, 1, 1};
  std::copy(std::begin(ident), std::end(ident), h.begin());
  h[16] = type;
  h[18] = machine;
  return h;
}

TEST(EmulatedCpu, AnEntryNamesItsInterpreterOnlyForProgramsItsMagicMatches) {
  const std::vector<uint8_t> i386Pie = ElfHeader(1, 3, 3), i386Exec = ElfHeader(1, 2, 3), x64 = ElfHeader(2, 3, 0x3e);
  struct Case {
    const char* what;
    std::string entry;
    std::vector<uint8_t> header;
    std::string interpreter;
  } cases[] = {
      {"i386 position-independent program", kQemuEntry, i386Pie, "/usr/bin/qemu-i386"},
      {"i386 fixed-address program", kQemuEntry, i386Exec, "/usr/bin/qemu-i386"},
      {"x86-64 program", kQemuEntry, x64, ""},
      {"disabled entry", "disabled" + kQemuEntry.substr(7), i386Pie, ""},
      {"entry by extension", "enabled\ninterpreter /usr/bin/wine\nflags: \nextension .exe\n", i386Pie, ""},
      {"magic past the header", "enabled\ninterpreter /x\noffset 60\nmagic 00\n", i386Pie, ""},
      {"header shorter than the magic", kQemuEntry, std::vector<uint8_t>(i386Pie.begin(), i386Pie.begin() + 8), ""},
      {"no mask: every bit counts", "enabled\ninterpreter /x\noffset 16\nmagic 0200\n", i386Pie, ""},
      {"no mask, exact bytes", "enabled\ninterpreter /x\noffset 16\nmagic 0300\n", i386Pie, "/x"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(krl::bench::InterpreterOfEntry(c.entry, c.header), c.interpreter) << c.what;
  }
}

}  // namespace
