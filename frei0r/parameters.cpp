#include "frei0r/parameters.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace krl::frei0r {
namespace {

double Clamped01(double x) { return x >= 0.0 ? std::min(x, 1.0) : 0.0; }  // NaN fails >= and gives 0

// Ranges in full (1..30000), item positions to four places (0.3333).
std::string Number(double v, const char* format = "%g") {
  char text[32];
  std::snprintf(text, sizeof text, format, v);
  return text;
}

// min..max as a span of 0..1; a field without a range spans 0..1 itself.
double Low(const emu::DeclaredField& f) { return f.hasRange ? f.minimum : 0.0; }
double Span(const emu::DeclaredField& f) { return f.hasRange ? f.maximum - f.minimum : 1.0; }

double ToUnit(const emu::DeclaredField& f, double value) {
  const double span = Span(f);
  return span > 0.0 ? Clamped01((value - Low(f)) / span) : 0.0;
}

// Item i of a selector sits at i/(n-1) of 0..1.
double ItemPosition(const emu::DeclaredField& f, size_t i) {
  return f.items.size() > 1 ? static_cast<double>(i) / static_cast<double>(f.items.size() - 1) : 0.0;
}

std::string WithHelp(const emu::DeclaredField& f, const std::string& mapping) {
  if (f.help.empty()) return mapping;
  return mapping.empty() ? f.help : f.help + " " + mapping;
}

Param ParamOf(const emu::DeclaredField& f) {
  Param param;
  param.field = &f;
  param.name = f.label;
  const std::string range = Number(Low(f)) + ".." + Number(Low(f) + Span(f));
  if (f.kind == "Selector") {
    param.kind = ParamKind::Selector;
    std::string items;
    for (size_t i = 0; i < f.items.size(); ++i) {
      items += (i == 0 ? "" : ", ") + Number(ItemPosition(f, i), "%.4g") + " = " + f.items[i].label;
    }
    param.explanation = WithHelp(f, "Items, spread evenly over 0..1 (the nearest is taken): " + items + ".");
  } else if (f.kind == "Long") {
    param.kind = ParamKind::Long;
    param.explanation = WithHelp(f, "0..1 stands for " + range + " (rounded to the nearest whole number).");
  } else if (f.kind == "Bool") {
    param.kind = ParamKind::Bool;
    param.type = F0R_PARAM_BOOL;
    param.explanation = f.help;
  } else if (f.kind == "RGBcolor") {
    param.kind = ParamKind::Color;
    param.type = F0R_PARAM_COLOR;
    param.explanation = f.help;
  } else {  // "Alpha", "FloatA": a curve the host evaluates at Progress
    param.kind = ParamKind::Curve;
    param.explanation = WithHelp(f, (f.hasRange ? "0..1 stands for " + range + ", " : std::string("The value ")) +
                                       "held for the whole transition; until it is set, the declared curve applies.");
  }
  return param;
}

// The instance's value of a field as a frei0r value; a curve by its first point.
ParamValue ValueOf(const Param& param, const emu::Instance& instance) {
  ParamValue value;
  if (param.field == nullptr) return value;
  const emu::DeclaredField& f = *param.field;
  switch (param.kind) {
    case ParamKind::Selector: {
      const int32_t current = instance.Value(f.key);
      for (size_t i = 0; i < f.items.size(); ++i) {
        if (f.items[i].value == current) value.number = ItemPosition(f, i);
      }
      break;
    }
    case ParamKind::Long: value.number = ToUnit(f, instance.Value(f.key)); break;
    case ParamKind::Bool: value.number = instance.Value(f.key) != 0 ? 1.0 : 0.0; break;
    case ParamKind::Color: {
      const KrColor c = instance.Color(f.key);
      value.color = {c.Red / 255.0f, c.Green / 255.0f, c.Blue / 255.0f};
      break;
    }
    case ParamKind::Curve: {
      const std::vector<emu::CurvePoint>& curve = instance.Curve(f.key);
      value.number = curve.empty() ? 0.0 : ToUnit(f, curve.front().value);
      break;
    }
    case ParamKind::Progress: break;
  }
  return value;
}

}  // namespace

double NearestStep(double x, double steps) {
  if (!(steps > 0.0)) return 0.0;
  return std::min(std::floor(Clamped01(x) * steps + 0.5), steps);
}

int32_t SelectorValue(const emu::DeclaredField& f, double x) {
  if (f.items.empty()) return 0;
  const double k = NearestStep(x, static_cast<double>(f.items.size() - 1));
  return f.items[static_cast<size_t>(k)].value;
}

int32_t LongValue(const emu::DeclaredField& f, double x) {
  // Held to the 32-bit range before the conversion, whatever the declared range.
  const double value = Low(f) + NearestStep(x, std::floor(Span(f)));
  return static_cast<int32_t>(std::clamp(value, -2147483648.0, 2147483647.0));
}

bool BoolValue(double x) { return x >= 0.5; }

KrColor ColorValue(const f0r_param_color_t& c) {
  auto byte = [](float v) { return static_cast<uint8_t>(NearestStep(v, 255.0)); };
  return KrColor{byte(c.b), byte(c.g), byte(c.r), 255};
}

double CurveValue(const emu::DeclaredField& f, double x) { return Low(f) + Clamped01(x) * Span(f); }

std::vector<Param> ParamsOf(const emu::DeclaredEffect& effect) {
  std::vector<Param> params(1);
  params[0].name = "progress";
  params[0].explanation =
      "Position in the transition: 0 shows the first clip, 1 the second. Animate it from 0 to 1 over the transition.";
  for (const emu::DeclaredField& f : effect.fields) {
    if (f.kind != "Input") params.push_back(ParamOf(f));
  }
  return params;
}

std::vector<ParamValue> ValuesOf(const std::vector<Param>& params, const emu::Instance& instance) {
  std::vector<ParamValue> values;
  for (const Param& param : params) values.push_back(ValueOf(param, instance));
  return values;
}

void ApplyParam(const Param& param, const ParamValue& value, emu::Instance& instance) {
  const emu::DeclaredField& f = *param.field;
  switch (param.kind) {
    case ParamKind::Selector: instance.SetValue(f.key, SelectorValue(f, value.number)); break;
    case ParamKind::Long: instance.SetValue(f.key, LongValue(f, value.number)); break;
    case ParamKind::Bool: instance.SetValue(f.key, BoolValue(value.number) ? 1 : 0); break;
    case ParamKind::Color: instance.SetColor(f.key, ColorValue(value.color)); break;
    case ParamKind::Curve: instance.SetConstant(f.key, CurveValue(f, value.number)); break;
    case ParamKind::Progress: break;
  }
}

}  // namespace krl::frei0r
