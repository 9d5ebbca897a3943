// The host emulator: loads a transitions library the way the editor does,
// hands it a host record and the full callback table, runs KrDeclare and
// interprets the declaration script it emits. Instances (instance.h) then
// call the declared init, render and user-data deleter functions.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "emulator/declared.h"
#include "emulator/host_conditions.h"
#include "emulator/script.h"
#include "host/host_interface.h"

namespace krl::emu {

struct HostOptions {
  // Optional translation catalogue: lines "context<TAB>source<TAB>translation".
  // Without one, Translate returns the source text as UTF-16.
  std::string catalogue;
  // Field indices handed out: first, first + step, ... Large, distinct numbers
  // catch a render that reads the wrong field variable.
  int32_t firstFieldIndex = 7001;
  int32_t fieldIndexStep = 13;
};

class Host final : private ScriptEnvironment {
 public:
  // Loads the library at `path` and declares its effects. Null, with the
  // reason in *error, when it cannot be loaded or declared cleanly.
  static std::unique_ptr<Host> Load(const std::string& path, std::string* error, const HostOptions& options = {});
  ~Host() override;
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Runs the library's KrDeclare (again): effects are declared anew and the
  // library's field variables receive new indices. Returns its result. A
  // host may call one declaration function instead (e.g. "KrDeclareWipe").
  int32_t Declare(const char* function = "KrDeclare");

  int32_t declareResult() const { return declareResult_; }
  const std::vector<DeclaredEffect>& effects() const { return script_->effects(); }
  // By menu path, display name, signature or context; case and blanks ignored.
  const DeclaredEffect* FindEffect(const std::string& name) const;
  // Every statement the library sent, in order.
  const std::vector<std::string>& statements() const { return statements_; }
  // Statements the interpreter could not run, and calls the host found wrong.
  const std::vector<std::string>& scriptErrors() const { return script_->errors(); }
  const std::vector<std::string>& diagnostics() const { return diagnostics_; }

  const TranslatedText* FindText(uint64_t address) const override;
  // Where the host stored each field index: variable address -> index.
  const std::map<uint64_t, int32_t>& storedIndices() const { return stored_; }
  void* Symbol(const char* name) const;
  const t_KrHostFunctions& table() const { return table_; }
  const std::string& path() const { return path_; }

 private:
  Host(void* handle, std::string path, HostOptions options);
  bool LoadCatalogue(std::string* error);
  void FindSegments();

  bool StoreFieldIndex(uint64_t address, int32_t index, std::string* why) override;
  bool IsCode(uint64_t address) const override;
  int32_t NextFieldIndex() override;

  struct Record {
    t_KrHostInfo info;
    Host* self;
  };
  struct Segment {
    uint64_t begin, end;
    bool writable, executable, relro;
  };
  struct StoredText {
    std::u16string wide;
    TranslatedText text;
  };

  static Host& Of(t_KrHostInfo* hi);
  KR_HOST_SLOT static int32_t ScriptExecuteSlot(t_KrHostInfo* hi, const char* statement);
  KR_HOST_SLOT static int32_t ScriptExecuteHiSlot(t_KrHostInfo* hi, t_KrHostInfo* again, const char* statement);
  KR_HOST_SLOT static const word* TranslateSlot(t_KrHostInfo* hi, const char* context, const char* text);
  int32_t Run(const char* statement);

  void* handle_;
  std::string path_;
  HostOptions options_;
  Record record_{};
  t_KrHostFunctions table_{};
  std::vector<Segment> segments_;
  std::unique_ptr<ScriptInterpreter> script_;
  std::vector<std::string> statements_;
  std::vector<std::string> diagnostics_;
  std::map<std::pair<std::string, std::string>, std::string> catalogue_;
  std::deque<StoredText> texts_;  // a deque: the wide strings never move
  std::map<uint64_t, size_t> textAt_;
  std::map<uint64_t, int32_t> stored_;
  int32_t nextIndex_ = 0;
  int32_t declareResult_ = 0;
  uint32_t oddTranslations_ = 0;
};

// Text conversions between the host's UTF-16 and the tools' UTF-8.
std::u16string Utf8ToUtf16(const std::string& text);
std::string Utf16ToUtf8(const std::u16string& text);

// Host slots no transition calls; a call is counted so tests can see it.
int UnexpectedSlotCalls();

}  // namespace krl::emu
