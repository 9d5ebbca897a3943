#include "emulator/instance.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

#include "emulator/host_conditions.h"

namespace krl::emu {
namespace {

bool IsValueKind(const std::string& kind) { return kind == "Selector" || kind == "Long" || kind == "Bool"; }
bool IsCurveKind(const std::string& kind) { return kind == "Alpha" || kind == "FloatA"; }
bool IsColorKind(const std::string& kind) { return kind == "RGBcolor"; }

template <typename Function>
Function CodeAt(uint64_t address) {
  return reinterpret_cast<Function>(static_cast<uintptr_t>(address));
}

// Calls an init, render or deleter as the host does: under the host
// conditions when a test sets them (emulator/host_conditions.h).
template <typename Function>
auto CallEntry(uint64_t address, t_KrRenderInfo* ri) {
  using Result = decltype(CodeAt<Function>(address)(ri));
  if (HostConditionsActive()) {
    return static_cast<Result>(CallUnderConditions(reinterpret_cast<const void*>(static_cast<uintptr_t>(address)), ri));
  }
  return CodeAt<Function>(address)(ri);
}

// A copy of a frame that starts `offset` bytes past a 16-byte boundary, in a
// block of exactly the bytes it needs, so any stray access is still caught.
class OffsetFrame {
 public:
  OffsetFrame(const Frame& frame, int32_t offset)
      : offset_(static_cast<size_t>(offset)), bytes_(frame.ByteCount()),
        block_(static_cast<uint8_t*>(::operator new(offset_ + bytes_, std::align_val_t{16}))) {
    if (bytes_ != 0) std::memcpy(data(), frame.Bytes(), bytes_);
  }
  ~OffsetFrame() { ::operator delete(block_, std::align_val_t{16}); }
  OffsetFrame(const OffsetFrame&) = delete;
  OffsetFrame& operator=(const OffsetFrame&) = delete;

  uint8_t* data() { return block_ + offset_; }
  void CopyTo(Frame& frame) {
    if (bytes_ != 0) std::memcpy(frame.Bytes(), data(), bytes_);
  }

 private:
  size_t offset_, bytes_;
  uint8_t* block_;
};

}  // namespace

Instance::Instance(const Host& host, const DeclaredEffect& effect) : host_(host), effect_(effect) {
  for (const DeclaredField& f : effect_.fields) fields_[f.index].field = &f;
  fieldZeroField_.key = "field 0";
  fieldZero_.field = &fieldZeroField_;
  record_.info.Host = const_cast<t_KrHostFunctions*>(&host_.table());
  record_.info.BitsPerPixel = 32;
  record_.self = this;
  oddAnswers_ = HostConditionsActive() && CurrentHostConditions().oddAnswers;
  initResult_ = CallEntry<KrInitFunction>(effect_.initFunction, &record_.info);
}

Instance::~Instance() {
  if (effect_.deleteUserData == 0) return;
  if (oddAnswers_) {
    // GetUserData answered null, so the library may have set several buffers:
    // the deleter is handed each, this time with honest answers.
    oddAnswers_ = false;
    for (void* data : oddUserData_) {
      userData_ = data;
      CallEntry<KrDeleteUserDataFunction>(effect_.deleteUserData, &record_.info);
    }
    return;
  }
  CallEntry<KrDeleteUserDataFunction>(effect_.deleteUserData, &record_.info);
}

void Instance::FillSlots(t_KrHostFunctions& table) {
  table.ReportError = &ReportErrorSlot;
  table.GetCurveValue = &GetCurveValueSlot;
  table.AddCurvePoint = &AddCurvePointSlot;
  table.GetColorValue = &GetColorValueSlot;
  table.SetColorDefault = &SetColorDefaultSlot;
  table.GetFieldValue = &GetFieldValueSlot;
  table.SetFieldDefault = &SetFieldDefaultSlot;
  table.SetUserData = &SetUserDataSlot;
  table.GetUserData = &GetUserDataSlot;
}

// ---- values by key -------------------------------------------------------

Instance::FieldState& Instance::StateOf(const std::string& key) {
  const DeclaredField* f = effect_.Field(key);
  if (f == nullptr) throw std::invalid_argument(effect_.DisplayName() + " has no field \"" + key + "\"");
  return fields_[f->index];
}

const Instance::FieldState& Instance::StateOf(const std::string& key) const {
  return const_cast<Instance*>(this)->StateOf(key);
}

void Instance::SetValue(const std::string& key, int32_t value) { StateOf(key).value = value; }
int32_t Instance::Value(const std::string& key) const { return StateOf(key).value; }
void Instance::SetCurve(const std::string& key, std::vector<CurvePoint> points) { StateOf(key).curve = std::move(points); }
const std::vector<CurvePoint>& Instance::Curve(const std::string& key) const { return StateOf(key).curve; }
void Instance::SetColor(const std::string& key, KrColor color) { StateOf(key).color = color; }
KrColor Instance::Color(const std::string& key) const { return StateOf(key).color; }

// ---- rendering -----------------------------------------------------------

int32_t Instance::Render(const Frame& a, const Frame& b, Frame& out, double progress) {
  if (!a.SameSize(out) || !b.SameSize(out)) throw std::invalid_argument("the three frames differ in size");
  const int32_t offset = HostConditionsActive() ? CurrentHostConditions().frameOffset : 0;
  if (offset == 0) return Render(a.Bytes(), b.Bytes(), out.Bytes(), out.width, out.height, progress);
  OffsetFrame atA(a, offset), atB(b, offset), atOut(out, offset);
  const int32_t result = Render(atA.data(), atB.data(), atOut.data(), out.width, out.height, progress);
  atOut.CopyTo(out);
  return result;
}

int32_t Instance::Render(const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t width, int32_t height,
                         double progress, int32_t bitsPerPixel) {
  t_KrRenderInfo& ri = record_.info;
  ri.Progress = progress;
  ri.Width = width;
  ri.Height = height;
  ri.BitsPerPixel = bitsPerPixel;
  // The library only reads the inputs; the record's type is the host's.
  ri.InputA = const_cast<uint8_t*>(a);
  ri.InputB = const_cast<uint8_t*>(b);
  ri.Output = out;
  return RenderAgain();
}

int32_t Instance::RenderAgain() { return CallEntry<KrRenderFunction>(effect_.renderFunction, &record_.info); }

// ---- the slots -----------------------------------------------------------

Instance& Instance::Of(t_KrRenderInfo* ri) { return *reinterpret_cast<Record*>(ri)->self; }

Instance::FieldState* Instance::StateOf(int32_t index, const char* slot, bool (*kindFits)(const std::string&)) {
  auto it = fields_.find(index);
  if (it == fields_.end() && index == 0) {
    fieldZeroCalls_.push_back(std::string(slot) + "(field 0)");
    return &fieldZero_;
  }
  if (it == fields_.end()) {
    diagnostics_.push_back(std::string(slot) + " was given " + std::to_string(index) + ", which is no field of " +
                           effect_.DisplayName());
    return nullptr;
  }
  if (!kindFits(it->second.field->kind)) {
    diagnostics_.push_back(std::string(slot) + " was given field \"" + it->second.field->key + "\" of kind " +
                           it->second.field->kind);
    return nullptr;
  }
  return &it->second;
}

int32_t Instance::ReportErrorSlot(t_KrRenderInfo* ri, const char* message) {
  Of(ri).reported_.emplace_back(message != nullptr ? message : "(null)");
  return 0;
}

double Instance::GetCurveValueSlot(t_KrRenderInfo* ri, int32_t field, int32_t, double position) {
  Instance& self = Of(ri);
  if (self.oddAnswers_) return odd::CurveValue(self.oddCalls_++);
  FieldState* s = self.StateOf(field, "GetCurveValue", IsCurveKind);
  return s != nullptr ? EvaluateCurve(s->curve, position) : 0.0;
}

int32_t Instance::AddCurvePointSlot(t_KrRenderInfo* ri, int32_t field, int32_t, double position, double value) {
  Instance& self = Of(ri);
  if (FieldState* s = self.StateOf(field, "AddCurvePoint", IsCurveKind)) {
    InsertCurvePoint(s->curve, {position, value});
    self.LogDefault(*s, "AddCurvePoint", std::to_string(position) + ", " + std::to_string(value));
  }
  return 1;
}

int32_t Instance::GetColorValueSlot(t_KrRenderInfo* ri, int32_t field, int32_t, KrColor* out, double) {
  FieldState* s = Of(ri).StateOf(field, "GetColorValue", IsColorKind);
  if (out != nullptr) *out = s != nullptr ? s->color : KrColor{0, 0, 0, 255};
  return 1;
}

int32_t Instance::SetColorDefaultSlot(t_KrRenderInfo* ri, int32_t field, int32_t, const KrColor* color,
                                      double position) {
  Instance& self = Of(ri);
  FieldState* s = self.StateOf(field, "SetColorDefault", IsColorKind);
  if (s != nullptr && color != nullptr) {
    s->color = *color;
    self.LogDefault(*s, "SetColorDefault",
                    std::to_string(color->Blue) + " " + std::to_string(color->Green) + " " + std::to_string(color->Red) +
                        " " + std::to_string(color->Alpha) + " at " + std::to_string(position));
  }
  return 1;
}

int32_t Instance::GetFieldValueSlot(t_KrRenderInfo* ri, int32_t field, int32_t) {
  Instance& self = Of(ri);
  if (self.oddAnswers_) return odd::FieldValue(self.oddCalls_++);
  FieldState* s = self.StateOf(field, "GetFieldValue", IsValueKind);
  return s != nullptr ? s->value : 0;
}

int32_t Instance::SetFieldDefaultSlot(t_KrRenderInfo* ri, int32_t field, int32_t, int32_t value) {
  Instance& self = Of(ri);
  if (FieldState* s = self.StateOf(field, "SetFieldDefault", IsValueKind)) {
    s->value = value;
    self.LogDefault(*s, "SetFieldDefault", std::to_string(value));
  }
  return 1;
}

void Instance::LogDefault(const FieldState& state, const char* slot, const std::string& values) {
  defaultsSet_.push_back(std::string(slot) + "(" + state.field->key + ", " + values + ")");
}

int32_t Instance::SetUserDataSlot(t_KrRenderInfo* ri, void* data) {
  Instance& self = Of(ri);
  self.userData_ = data;
  auto& given = self.oddUserData_;
  if (self.oddAnswers_ && data != nullptr && std::find(given.begin(), given.end(), data) == given.end()) {
    given.push_back(data);
  }
  return 1;
}

void* Instance::GetUserDataSlot(t_KrRenderInfo* ri) {
  const Instance& self = Of(ri);
  return self.oddAnswers_ ? nullptr : self.userData_;
}

}  // namespace krl::emu
