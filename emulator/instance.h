// One instance of a declared effect, as the host keeps it: its field values,
// curves and colours, its user data, and the render record it passes.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "emulator/curve.h"
#include "emulator/frame.h"
#include "emulator/host.h"
#include "emulator/host_conditions.h"

namespace krl::emu {

class Instance {
 public:
  // Creates the instance and calls the effect's init function.
  Instance(const Host& host, const DeclaredEffect& effect);
  // Calls the effect's user-data deleter, when it declared one.
  ~Instance();
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  const DeclaredEffect& effect() const { return effect_; }
  int32_t initResult() const { return initResult_; }

  // Field values by key, as the host stores them. No range checks: the
  // host's user interface enforces ranges, and tests need to pass any value.
  void SetValue(const std::string& key, int32_t value);
  int32_t Value(const std::string& key) const;
  void SetCurve(const std::string& key, std::vector<CurvePoint> points);
  void SetConstant(const std::string& key, double value) { SetCurve(key, {{0.0, value}}); }
  const std::vector<CurvePoint>& Curve(const std::string& key) const;
  void SetColor(const std::string& key, KrColor color);
  KrColor Color(const std::string& key) const;

  // Renders: fills the record anew from the frames (all the size of `out`)
  // and calls the render function. Returns its result.
  int32_t Render(const Frame& a, const Frame& b, Frame& out, double progress);
  // The same from raw frames, with any size and pixel size.
  int32_t Render(const uint8_t* a, const uint8_t* b, uint8_t* out, int32_t width, int32_t height,
                 double progress, int32_t bitsPerPixel = 32);
  // Calls the render function with the record as it stands (a host that
  // reuses its record between frames).
  int32_t RenderAgain();
  const t_KrRenderInfo& record() const { return record_.info; }

  // Messages the library gave through ReportError.
  const std::vector<std::string>& reportedErrors() const { return reported_; }
  // Calls the host found wrong: unknown field index, wrong slot for the kind.
  const std::vector<std::string>& diagnostics() const { return diagnostics_; }
  // Calls through index 0 when the effect declared no field with it (a field
  // variable that no statement assigned). A host answers them for its field
  // 0: the emulator keeps one value for it, "field 0", of any value kind.
  // Listed apart from the diagnostics, e.g. "GetFieldValue(field 0)".
  const std::vector<std::string>& fieldZeroCalls() const { return fieldZeroCalls_; }
  void* userData() const { return userData_; }
  // What the host's SetUserData slot does; a test uses it to make a host that
  // holds no user data for the instance (the test then owns what it held).
  void ReplaceUserData(void* data) { userData_ = data; }
  // The defaults the library set, in the order it set them, e.g.
  // "SetFieldDefault(TransType, 0)".
  const std::vector<std::string>& defaultsSet() const { return defaultsSet_; }

  // Puts the per-instance slots into the host's table.
  static void FillSlots(t_KrHostFunctions& table);

 private:
  struct FieldState {
    const DeclaredField* field = nullptr;
    int32_t value = 0;
    std::vector<CurvePoint> curve;
    KrColor color{0, 0, 0, 255};
  };
  struct Record {
    t_KrRenderInfo info;
    Instance* self;
  };

  FieldState* StateOf(int32_t index, const char* slot, bool (*kindFits)(const std::string&));
  FieldState& StateOf(const std::string& key);
  void LogDefault(const FieldState& state, const char* slot, const std::string& values);
  const FieldState& StateOf(const std::string& key) const;

  static Instance& Of(t_KrRenderInfo* ri);
  KR_HOST_SLOT static int32_t ReportErrorSlot(t_KrRenderInfo* ri, const char* message);
  KR_HOST_SLOT static double GetCurveValueSlot(t_KrRenderInfo* ri, int32_t field, int32_t zero, double position);
  KR_HOST_SLOT static int32_t AddCurvePointSlot(t_KrRenderInfo* ri, int32_t field, int32_t zero, double position, double value);
  KR_HOST_SLOT static int32_t GetColorValueSlot(t_KrRenderInfo* ri, int32_t field, int32_t zero, KrColor* out, double position);
  KR_HOST_SLOT static int32_t SetColorDefaultSlot(t_KrRenderInfo* ri, int32_t field, int32_t zero, const KrColor* color,
                                     double position);
  KR_HOST_SLOT static int32_t GetFieldValueSlot(t_KrRenderInfo* ri, int32_t field, int32_t zero);
  KR_HOST_SLOT static int32_t SetFieldDefaultSlot(t_KrRenderInfo* ri, int32_t field, int32_t zero, int32_t value);
  KR_HOST_SLOT static int32_t SetUserDataSlot(t_KrRenderInfo* ri, void* data);
  KR_HOST_SLOT static void* GetUserDataSlot(t_KrRenderInfo* ri);

  const Host& host_;
  const DeclaredEffect& effect_;
  Record record_{};
  std::map<int32_t, FieldState> fields_;
  std::vector<std::string> reported_;
  std::vector<std::string> diagnostics_;
  std::vector<std::string> fieldZeroCalls_;
  DeclaredField fieldZeroField_;
  FieldState fieldZero_;
  std::vector<std::string> defaultsSet_;
  void* userData_ = nullptr;
  int32_t initResult_ = 0;
  // Created under host conditions that answer oddly: curves, fields and user
  // data are answered from odd:: (emulator/host_conditions.h).
  bool oddAnswers_ = false;
  uint32_t oddCalls_ = 0;
  std::vector<void*> oddUserData_;  // every buffer the library set while answered oddly
};

}  // namespace krl::emu
