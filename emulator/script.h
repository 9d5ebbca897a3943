// The host's declaration-script interpreter. It knows the statements a
// library uses to declare effects and reports, with its text, every statement
// it cannot run; it never guesses.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "emulator/declared.h"

namespace krl::emu {

struct TranslatedText {
  std::string text;     // UTF-8
  std::string source;
  std::string context;
};

// What the interpreter needs from the host around it. Every address comes from
// statement text, so each is checked before it is used.
class ScriptEnvironment {
 public:
  virtual ~ScriptEnvironment() = default;
  // The text behind an address the host's Translate returned; null otherwise.
  virtual const TranslatedText* FindText(uint64_t address) const = 0;
  // Stores a field index at an address of the library; false (with a reason)
  // when the address is not a writable 32-bit place of the library.
  virtual bool StoreFieldIndex(uint64_t address, int32_t index, std::string* why) = 0;
  // Whether an address lies in the library's code.
  virtual bool IsCode(uint64_t address) const = 0;
  // The index for the next declared field.
  virtual int32_t NextFieldIndex() = 0;
};

class ScriptInterpreter {
 public:
  explicit ScriptInterpreter(ScriptEnvironment& env) : env_(env) {}

  // Runs one text of statements; false when any statement could not run (the
  // reason, quoting the statement, is appended to errors()).
  bool Execute(const std::string& text);

  const std::vector<DeclaredEffect>& effects() const { return effects_; }
  std::vector<DeclaredEffect>& effects() { return effects_; }
  const std::vector<std::string>& errors() const { return errors_; }

 private:
  ScriptEnvironment& env_;
  std::optional<DeclaredEffect> current_;
  std::vector<DeclaredEffect> effects_;
  std::vector<std::string> errors_;
  friend class StatementRunner;
};

}  // namespace krl::emu
