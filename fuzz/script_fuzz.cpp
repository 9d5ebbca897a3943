// Feeds the host emulator's declaration-script interpreter malformed,
// truncated and overlong statements, one per line of the input: it must
// report them and never crash. Addresses resolve against a fake library.
#include <cstdint>
#include <map>
#include <string>

#include "emulator/script.h"

namespace {

class FakeLibrary : public krl::emu::ScriptEnvironment {
 public:
  const krl::emu::TranslatedText* FindText(uint64_t address) const override {
    static const krl::emu::TranslatedText kTexts[] = {{"Label", "Label", "Context"}, {"Help", "Help", "Context"}};
    return address >= 0x1000 && address < 0x1002 ? &kTexts[address - 0x1000] : nullptr;
  }
  bool StoreFieldIndex(uint64_t address, int32_t index, std::string* why) override {
    if (address < 0x5000 || address >= 0x5100) {
      *why = "not writable";
      return false;
    }
    variables_[address] = index;
    return true;
  }
  bool IsCode(uint64_t address) const override { return address >= 0x9000 && address < 0xA000; }
  int32_t NextFieldIndex() override { return next_++; }

 private:
  std::map<uint64_t, int32_t> variables_;
  int32_t next_ = 7001;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FakeLibrary library;
  krl::emu::ScriptInterpreter script(library);
  const std::string text(reinterpret_cast<const char*>(data), size);
  size_t begin = 0;
  while (begin <= text.size()) {
    size_t end = text.find('\n', begin);
    if (end == std::string::npos) end = text.size();
    const bool ran = script.Execute(text.substr(begin, end - begin));
    // Every statement that did not run is reported, never ignored.
    if (!ran && script.errors().empty()) __builtin_trap();
    begin = end + 1;
  }
  return 0;
}
