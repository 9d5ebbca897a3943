// Typed calls into the host's table, always through the record the library
// was given and with the 0 word behind every field index.
#pragma once

#include <cstring>

#include "host/declare.h"
#include "host/host_interface.h"

namespace krl {

class HostCalls {
 public:
  explicit HostCalls(t_KrRenderInfo* ri) : ri_(ri), fn_(ri->Host) {}

  int32_t Field(FieldIndex field) const { return fn_->GetFieldValue(ri_, field, 0); }
  double Curve(FieldIndex field, double position) const {
    return fn_->GetCurveValue(ri_, field, 0, position);
  }
  double Curve(FieldIndex field) const { return Curve(field, ri_->Progress); }

  // A colour as one opaque output pixel: the host's alpha byte is replaced.
  uint32_t PenColor(FieldIndex field, double position) const {
    KrColor color{};
    fn_->GetColorValue(ri_, field, 0, &color, position);
    color.Alpha = 255;
    uint32_t pixel;
    std::memcpy(&pixel, &color, sizeof pixel);
    return pixel;
  }
  uint32_t PenColor(FieldIndex field) const { return PenColor(field, ri_->Progress); }

  void SetDefault(FieldIndex field, int32_t value) const { fn_->SetFieldDefault(ri_, field, 0, value); }
  void AddCurvePoint(FieldIndex field, double position, double value) const {
    fn_->AddCurvePoint(ri_, field, 0, position, value);
  }
  void SetColorDefault(FieldIndex field, const KrColor& color) const {
    fn_->SetColorDefault(ri_, field, 0, &color, 1.0);
  }

  void ReportError(const char* message) const { fn_->ReportError(ri_, message); }
  void* UserData() const { return fn_->GetUserData(ri_); }
  void SetUserData(void* data) const { fn_->SetUserData(ri_, data); }

 private:
  t_KrRenderInfo* ri_;
  const t_KrHostFunctions* fn_;
};

}  // namespace krl
