#include "cli/fields.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "cli/suggest.h"

namespace krl::cli {
namespace {

std::string Lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

std::string Number(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%g", v);
  return buf;
}

bool ParseInt(const std::string& text, int32_t* out) {
  if (text.empty()) return false;
  char* end = nullptr;
  errno = 0;
  const long long v = std::strtoll(text.c_str(), &end, 0);
  if (*end != '\0' || errno != 0 || v < INT32_MIN || v > INT32_MAX) return false;
  *out = static_cast<int32_t>(v);
  return true;
}

bool ParseDouble(const std::string& text, double* out) {
  if (text.empty()) return false;
  char* end = nullptr;
  *out = std::strtod(text.c_str(), &end);
  return *end == '\0';
}

const emu::DeclaredField& FindField(const emu::DeclaredEffect& effect, const std::string& name) {
  std::string valid;
  std::vector<std::string> names;
  for (const emu::DeclaredField& f : effect.fields) {
    if (f.kind == "Input") continue;
    if (Lower(f.key) == Lower(name) || Lower(f.label) == Lower(name)) return f;
    valid += (valid.empty() ? "" : ", ") + f.key;
    names.push_back(f.key);
  }
  const std::string near = Closest(name, names);
  throw std::runtime_error(effect.DisplayName() + " has no field \"" + name + "\"; " +
                           (near.empty() ? "" : "did you mean " + near + "? ") + "its fields are " +
                           (valid.empty() ? "none" : valid));
}

int32_t SelectorValue(const emu::DeclaredField& f, const std::string& text) {
  int32_t v = 0;
  const bool numeric = ParseInt(text, &v);
  for (const emu::DeclaredItem& item : f.items) {
    if ((numeric && item.value == v) || Lower(item.label) == Lower(text)) return item.value;
  }
  throw std::runtime_error("\"" + text + "\" is no item of " + f.key + "; its items are " + ItemList(f));
}

void CheckRange(const emu::DeclaredField& f, double v, const std::string& text) {
  if (f.Limited() && !(v >= f.minimum && v <= f.maximum)) {
    throw std::runtime_error(f.key + " takes " + Number(f.minimum) + " to " + Number(f.maximum) + ", not " + text);
  }
}

// A curve value outside the field's range (0..1 where it declares none) is
// what a host may send, so it is kept; the user hears of it once a field.
void NoteCurveValue(const emu::DeclaredField& f, double v, bool* said) {
  const double low = f.hasRange ? f.minimum : 0.0, high = f.hasRange ? f.maximum : 1.0;
  if ((v >= low && v <= high) || *said) return;
  *said = true;
  std::fprintf(stderr, "krl: %s %s is outside %s..%s; the library does not clamp it: the transition computes with it "
               "as it is\n", f.key.c_str(), Number(v).c_str(), Number(low).c_str(), Number(high).c_str());
}

KrColor ParseColor(const emu::DeclaredField& f, const std::string& text) {
  unsigned r = 0, g = 0, b = 0;
  char tail = 0;
  if (text.size() == 4 && text[0] == '#' && std::isxdigit(static_cast<unsigned char>(text[1])) &&
      std::isxdigit(static_cast<unsigned char>(text[2])) && std::isxdigit(static_cast<unsigned char>(text[3]))) {
    // #RGB stands for #RRGGBB.
    const unsigned rgb = static_cast<unsigned>(std::strtoul(text.c_str() + 1, nullptr, 16));
    r = (rgb >> 8) * 17;
    g = ((rgb >> 4) & 15) * 17;
    b = (rgb & 15) * 17;
    return KrColor{static_cast<uint8_t>(b), static_cast<uint8_t>(g), static_cast<uint8_t>(r), 255};
  }
  if ((text.size() == 7 && std::sscanf(text.c_str(), "#%2x%2x%2x%c", &r, &g, &b, &tail) == 3) ||
      (std::sscanf(text.c_str(), "%u,%u,%u%c", &r, &g, &b, &tail) == 3 && r < 256 && g < 256 && b < 256)) {
    return KrColor{static_cast<uint8_t>(b), static_cast<uint8_t>(g), static_cast<uint8_t>(r), 255};
  }
  throw std::runtime_error(f.key + " is a colour: write #RRGGBB, #RGB or r,g,b, not \"" + text + "\"");
}

bool IsCurve(const emu::DeclaredField& f) { return f.kind == "Alpha" || f.kind == "FloatA"; }

// Splits "KEY=VALUE" and finds the field; `option` names the option in errors.
const emu::DeclaredField& FieldOf(const emu::Instance& instance, const std::string& setting, const char* option,
                                  std::string* value) {
  const size_t eq = setting.find('=');
  if (eq == std::string::npos) throw std::runtime_error(std::string(option) + " takes KEY=VALUE, not \"" + setting + "\"");
  *value = setting.substr(eq + 1);
  return FindField(instance.effect(), setting.substr(0, eq));
}

}  // namespace

std::string ItemList(const emu::DeclaredField& f) {
  std::string list;
  for (const emu::DeclaredItem& item : f.items) {
    list += (list.empty() ? "" : ", ") + std::to_string(item.value) + " \"" + item.label + "\"";
  }
  return list;
}

std::string RangeText(const emu::DeclaredField& f) {
  if (!f.hasRange) return "";
  return Number(f.minimum) + ".." + Number(f.maximum) + (f.Limited() ? " (enforced)" : "");
}

void ApplyCurve(emu::Instance& instance, const std::string& setting) {
  std::string text;
  const emu::DeclaredField& f = FieldOf(instance, setting, "--curve", &text);
  if (!IsCurve(f)) {
    std::string curves;
    for (const emu::DeclaredField& other : instance.effect().fields) {
      if (IsCurve(other)) curves += (curves.empty() ? "" : ", ") + other.key;
    }
    throw std::runtime_error(f.key + " is no curve; the curves of " + instance.effect().DisplayName() + " are " +
                             (curves.empty() ? "none" : curves));
  }
  std::vector<emu::CurvePoint> points;
  bool said = false;
  size_t start = 0;
  while (start <= text.size()) {
    const size_t comma = std::min(text.find(',', start), text.size());
    const std::string point = text.substr(start, comma - start);
    const size_t colon = point.find(':');
    emu::CurvePoint p{};
    if (colon == std::string::npos || !ParseDouble(point.substr(0, colon), &p.position) ||
        !ParseDouble(point.substr(colon + 1), &p.value) || !std::isfinite(p.position)) {
      throw std::runtime_error(f.key + " takes points POSITION:VALUE separated by commas (0:0,0.5:1,1:1), not \"" +
                               text + "\"");
    }
    CheckRange(f, p.value, point.substr(colon + 1));
    NoteCurveValue(f, p.value, &said);
    emu::InsertCurvePoint(points, p);
    start = comma + 1;
  }
  instance.SetCurve(f.key, std::move(points));
}

void ApplyFieldOptions(emu::Instance& instance, const std::vector<std::string>& settings,
                       const std::vector<std::string>& curves) {
  for (const std::string& setting : settings) ApplySetting(instance, setting);
  for (const std::string& curve : curves) ApplyCurve(instance, curve);
}

void ApplySetting(emu::Instance& instance, const std::string& setting) {
  std::string text;
  const emu::DeclaredField& f = FieldOf(instance, setting, "--set", &text);
  if (f.kind == "Selector") {
    instance.SetValue(f.key, SelectorValue(f, text));
  } else if (f.kind == "Long") {
    int32_t v = 0;
    if (!ParseInt(text, &v)) throw std::runtime_error(f.key + " takes a whole number, not \"" + text + "\"");
    CheckRange(f, v, text);
    instance.SetValue(f.key, v);
  } else if (f.kind == "Bool") {
    const std::string t = Lower(text);
    if (t == "on" || t == "true" || t == "yes" || t == "1") {
      instance.SetValue(f.key, 1);
    } else if (t == "off" || t == "false" || t == "no" || t == "0") {
      instance.SetValue(f.key, 0);
    } else {
      throw std::runtime_error(f.key + " is on or off, not \"" + text + "\"");
    }
  } else if (f.kind == "RGBcolor") {
    instance.SetColor(f.key, ParseColor(f, text));
  } else {  // "Alpha" and "FloatA": a constant curve
    double v = 0.0;
    if (!ParseDouble(text, &v)) throw std::runtime_error(f.key + " takes a number, not \"" + text + "\"");
    CheckRange(f, v, text);
    bool said = false;
    NoteCurveValue(f, v, &said);
    instance.SetConstant(f.key, v);
  }
}

std::string FieldValueText(const emu::Instance& instance, const emu::DeclaredField& f) {
  if (f.kind == "Input") return "";
  if (f.kind == "Selector") {
    const int32_t v = instance.Value(f.key);
    for (const emu::DeclaredItem& item : f.items) {
      if (item.value == v) return std::to_string(v) + " \"" + item.label + "\"";
    }
    return std::to_string(v);
  }
  if (f.kind == "Long") return std::to_string(instance.Value(f.key));
  if (f.kind == "Bool") return instance.Value(f.key) ? "on" : "off";
  if (f.kind == "RGBcolor") {
    const KrColor c = instance.Color(f.key);
    char buf[16];
    std::snprintf(buf, sizeof buf, "#%02X%02X%02X", c.Red, c.Green, c.Blue);
    return buf;
  }
  std::string curve = "curve";
  for (const emu::CurvePoint& p : instance.Curve(f.key)) curve += " (" + Number(p.position) + ", " + Number(p.value) + ")";
  return curve;
}

}  // namespace krl::cli
