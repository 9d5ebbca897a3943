#include "emulator/host.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstring>
#include <fstream>
#include <utility>

#include "emulator/host_conditions.h"
#include "emulator/instance.h"

namespace krl::emu {
namespace {

std::atomic<int> gUnexpectedSlotCalls{0};

// The slots no transition uses still hold a function, as the real host's do.
template <int Slot>
KR_HOST_SLOT void UnexpectedSlot() {
  gUnexpectedSlotCalls.fetch_add(1, std::memory_order_relaxed);
}

template <size_t... Slots>
void FillUnusedSlots(t_KrHostFunctions& table, std::index_sequence<Slots...>) {
  KrUnusedSlot* slots = reinterpret_cast<KrUnusedSlot*>(&table);
  ((slots[Slots] = &UnexpectedSlot<Slots>), ...);
}

std::string Folded(const std::string& s) {
  std::string out;
  for (unsigned char c : s) {
    if (c != ' ') out += static_cast<char>(std::tolower(c));
  }
  return out;
}

}  // namespace

int UnexpectedSlotCalls() { return gUnexpectedSlotCalls.load(); }

std::u16string Utf8ToUtf16(const std::string& s) {
  std::u16string out;
  for (size_t i = 0; i < s.size();) {
    const unsigned char c = static_cast<unsigned char>(s[i]);
    uint32_t cp = 0xFFFD;
    size_t len = 1;
    if (c < 0x80) {
      cp = c;
    } else if ((c >> 5) == 6 && i + 1 < s.size()) {
      cp = ((c & 0x1Fu) << 6) | (s[i + 1] & 0x3Fu), len = 2;
    } else if ((c >> 4) == 14 && i + 2 < s.size()) {
      cp = ((c & 0x0Fu) << 12) | ((s[i + 1] & 0x3Fu) << 6) | (s[i + 2] & 0x3Fu), len = 3;
    } else if ((c >> 3) == 30 && i + 3 < s.size()) {
      cp = ((c & 0x07u) << 18) | ((s[i + 1] & 0x3Fu) << 12) | ((s[i + 2] & 0x3Fu) << 6) | (s[i + 3] & 0x3Fu), len = 4;
    }
    if (cp >= 0x10000 && cp <= 0x10FFFF) {
      cp -= 0x10000;
      out += static_cast<char16_t>(0xD800 + (cp >> 10));
      out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    } else {
      out += static_cast<char16_t>(cp > 0xFFFF ? 0xFFFD : cp);
    }
    i += len;
  }
  return out;
}

std::string Utf16ToUtf8(const std::u16string& s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    uint32_t cp = s[i];
    if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] < 0xE000) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (s[++i] - 0xDC00);
    }
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (cp >> 18));
      out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}

Host::Host(void* handle, std::string path, HostOptions options)
    : handle_(handle), path_(std::move(path)), options_(std::move(options)) {
  FillUnusedSlots(table_, std::make_index_sequence<KR_HOST_SLOT_COUNT>());
  table_.ScriptExecute = &ScriptExecuteSlot;
  table_.ScriptExecuteHi = &ScriptExecuteHiSlot;
  table_.Translate = &TranslateSlot;
  Instance::FillSlots(table_);
  record_.info.Host = &table_;
  record_.self = this;
  script_ = std::make_unique<ScriptInterpreter>(static_cast<ScriptEnvironment&>(*this));
}

Host::~Host() {
  if (handle_ != nullptr) dlclose(handle_);
}

std::unique_ptr<Host> Host::Load(const std::string& path, std::string* error, const HostOptions& options) {
  // A path without a slash would be searched for; the host loads the file it names.
  const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
  void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    *error = "cannot load " + path + ": " + dlerror();
    return nullptr;
  }
  std::unique_ptr<Host> host(new Host(handle, path, options));
  if (!host->LoadCatalogue(error)) return nullptr;
  if (host->Symbol("KrDeclare") == nullptr) {
    *error = path + " has no KrDeclare: it is not a transitions library";
    return nullptr;
  }
  host->FindSegments();
  host->Declare();
  if (!host->scriptErrors().empty()) {
    *error = path + " declares what the host cannot run: " + host->scriptErrors().front();
    return nullptr;
  }
  if (!host->diagnostics().empty()) {
    *error = path + ": " + host->diagnostics().front();
    return nullptr;
  }
  return host;
}

bool Host::LoadCatalogue(std::string* error) {
  if (options_.catalogue.empty()) return true;
  std::ifstream in(options_.catalogue);
  if (!in) {
    *error = "cannot read the translation catalogue " + options_.catalogue;
    return false;
  }
  std::string line;
  while (std::getline(in, line)) {
    const size_t a = line.find('\t');
    const size_t b = a == std::string::npos ? a : line.find('\t', a + 1);
    if (line.empty() || line[0] == '#' || b == std::string::npos) continue;
    catalogue_[{line.substr(0, a), line.substr(a + 1, b - a - 1)}] = line.substr(b + 1);
  }
  return true;
}

void Host::FindSegments() {
  link_map* map = nullptr;
  if (dlinfo(handle_, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr) return;
  struct Search {
    ElfW(Addr) base;
    std::vector<Segment>* segments;
  } search{map->l_addr, &segments_};
  dl_iterate_phdr(
      [](dl_phdr_info* info, size_t, void* data) {
        auto* s = static_cast<Search*>(data);
        if (info->dlpi_addr != s->base) return 0;
        for (int i = 0; i < info->dlpi_phnum; ++i) {
          const ElfW(Phdr)& ph = info->dlpi_phdr[i];
          const uint64_t begin = info->dlpi_addr + ph.p_vaddr;
          if (ph.p_type == PT_LOAD) {
            s->segments->push_back({begin, begin + ph.p_memsz, (ph.p_flags & PF_W) != 0, (ph.p_flags & PF_X) != 0, false});
          } else if (ph.p_type == PT_GNU_RELRO) {
            // Writable in the file, read-only once relocated: never a variable.
            s->segments->push_back({begin, begin + ph.p_memsz, false, false, true});
          }
        }
        return 1;
      },
      &search);
}

int32_t Host::Declare(const char* function) {
  using DeclareFunction = int32_t (*)(t_KrHostInfo*);
  auto declare = reinterpret_cast<DeclareFunction>(Symbol(function));
  script_ = std::make_unique<ScriptInterpreter>(static_cast<ScriptEnvironment&>(*this));
  statements_.clear();
  stored_.clear();
  nextIndex_ = options_.firstFieldIndex;
  if (declare == nullptr) {
    declareResult_ = 0;
  } else if (HostConditionsActive()) {
    declareResult_ = CallUnderConditions(reinterpret_cast<const void*>(declare), &record_.info);
  } else {
    declareResult_ = declare(&record_.info);
  }
  return declareResult_;
}

const DeclaredEffect* Host::FindEffect(const std::string& name) const {
  const std::string wanted = Folded(name);
  for (const DeclaredEffect& e : effects()) {
    if (wanted == Folded(e.name) || wanted == Folded(e.DisplayName()) || wanted == Folded(e.sign) ||
        wanted == Folded(e.context)) {
      return &e;
    }
  }
  return nullptr;
}

void* Host::Symbol(const char* name) const { return dlsym(handle_, name); }

const TranslatedText* Host::FindText(uint64_t address) const {
  auto it = textAt_.find(address);
  return it == textAt_.end() ? nullptr : &texts_[it->second].text;
}

bool Host::StoreFieldIndex(uint64_t address, int32_t index, std::string* why) {
  const bool readOnlyAfterLoad = std::any_of(segments_.begin(), segments_.end(), [&](const Segment& s) {
    return s.relro && address + sizeof(int32_t) > s.begin && address < s.end;
  });
  for (const Segment& s : segments_) {
    if (!readOnlyAfterLoad && s.writable && address >= s.begin && address + sizeof(int32_t) <= s.end) {
      std::memcpy(reinterpret_cast<void*>(static_cast<uintptr_t>(address)), &index, sizeof index);
      stored_[address] = index;
      return true;
    }
  }
  char buf[96];
  std::snprintf(buf, sizeof buf, "address 0x%llX is not a writable variable of the library",
                static_cast<unsigned long long>(address));
  *why = buf;
  return false;
}

bool Host::IsCode(uint64_t address) const {
  return std::any_of(segments_.begin(), segments_.end(),
                     [&](const Segment& s) { return s.executable && address >= s.begin && address < s.end; });
}

int32_t Host::NextFieldIndex() {
  const int32_t index = nextIndex_;
  nextIndex_ = static_cast<int32_t>(static_cast<uint32_t>(nextIndex_) + static_cast<uint32_t>(options_.fieldIndexStep));
  return index;
}

Host& Host::Of(t_KrHostInfo* hi) { return *reinterpret_cast<Record*>(hi)->self; }

int32_t Host::Run(const char* statement) {
  if (statement == nullptr) {
    diagnostics_.push_back("a statement pointer was null");
    return 0;
  }
  statements_.emplace_back(statement);
  return script_->Execute(statements_.back()) ? 1 : 0;
}

int32_t Host::ScriptExecuteSlot(t_KrHostInfo* hi, const char* statement) { return Of(hi).Run(statement); }

int32_t Host::ScriptExecuteHiSlot(t_KrHostInfo* hi, t_KrHostInfo* again, const char* statement) {
  Host& host = Of(hi);
  if (again != hi) host.diagnostics_.push_back("ScriptExecuteHi was given two different host records");
  return host.Run(statement);
}

const word* Host::TranslateSlot(t_KrHostInfo* hi, const char* context, const char* text) {
  Host& host = Of(hi);
  if (HostConditionsActive() && CurrentHostConditions().oddAnswers) {
    // No translation at all, or an empty one, by turns.
    static const word kEmpty[1] = {0};
    return host.oddTranslations_++ % 2 == 0 ? nullptr : kEmpty;
  }
  if (context == nullptr || text == nullptr) {
    host.diagnostics_.push_back("Translate was given a null text");
    context = context ? context : "";
    text = text ? text : "";
  }
  auto found = host.catalogue_.find({context, text});
  const std::string shown = found == host.catalogue_.end() ? text : found->second;
  host.texts_.push_back({Utf8ToUtf16(shown), {shown, text, context}});
  const word* wide = reinterpret_cast<const word*>(host.texts_.back().wide.c_str());
  host.textAt_[reinterpret_cast<uintptr_t>(wide)] = host.texts_.size() - 1;
  return wide;
}

}  // namespace krl::emu
