// The frei0r parameters of a transition: Progress first, then its declared
// fields in declaration order, each mapped onto a frei0r type. frei0r values
// live in 0..1; these functions turn them into field values and back.
#pragma once

#include "frei0r/frei0r_api.h"

#include <string>
#include <vector>

#include "emulator/declared.h"
#include "emulator/instance.h"

namespace krl::frei0r {

enum class ParamKind { Progress, Selector, Long, Bool, Color, Curve };

// What a frei0r value holds: a number (double and bool parameters) or a colour.
struct ParamValue {
  double number = 0.0;
  f0r_param_color_t color{0.0f, 0.0f, 0.0f};
};

struct Param {
  ParamKind kind = ParamKind::Progress;
  const emu::DeclaredField* field = nullptr;  // null for Progress
  std::string name;                           // the field's label; "progress"
  std::string explanation;                    // the field's help and how 0..1 maps onto it
  int type = F0R_PARAM_DOUBLE;
};

// The parameters of `effect`.
std::vector<Param> ParamsOf(const emu::DeclaredEffect& effect);
// The instance's field values as frei0r values, one per parameter (Progress
// 0): what a fresh instance reports as its defaults. A curve gives the value
// it starts with.
std::vector<ParamValue> ValuesOf(const std::vector<Param>& params, const emu::Instance& instance);

// Sets the field of `param` in `instance` from a frei0r value (not Progress).
void ApplyParam(const Param& param, const ParamValue& value, emu::Instance& instance);

// The mappings, one per field kind. Every one holds its value to 0..1 and
// reads NaN as 0.
// k/steps nearest to x, as k in 0..steps (a half rounds up).
double NearestStep(double x, double steps);
int32_t SelectorValue(const emu::DeclaredField& field, double x);  // the item value
int32_t LongValue(const emu::DeclaredField& field, double x);
bool BoolValue(double x);                                          // 0.5 and above: on
KrColor ColorValue(const f0r_param_color_t& color);                // alpha 255
double CurveValue(const emu::DeclaredField& field, double x);      // the constant of the curve

}  // namespace krl::frei0r
